#include "fileutils/sort_lines/sort_form.h"

#include "support/services_of_host.h"

namespace {

using FileUtils::SortForm;
using QVLineSorter::SortRequest;
namespace SortOption = QVLineSorter::SortOption;

constexpr uint32_t kPlain = SortOption::EntireLine | SortOption::AsText | SortOption::KeepBackup;

SortForm FormWith(uint32_t options) {
    SortRequest request;
    request.options = options;
    return FileUtils::FormOf(request);
}

TEST(SortForm, ShowsPositionsCountedFromOneAndFillsWhatIsMissing) {
    const SortForm form = FileUtils::FormOf(
        {2, 0, 0xFFFFFFFF, 0, L'\t', L"", SortOption::Item | SortOption::Silent | SortOption::Overwrite, 0, L""});
    EXPECT_EQ(form.linePosition, L"4294967296");
    EXPECT_EQ(form.keepTop, L"2");
    EXPECT_EQ(form.itemSeparator, L"\\t");
    EXPECT_EQ(form.endCharacter, L"");
    EXPECT_EQ(form.options, SortOption::Item | SortOption::AsText | SortOption::KeepBackup);
    EXPECT_EQ(FormWith(0).options, kPlain);
}

TEST(SortForm, SaysWhatCannotBeUsed) {
    const uint32_t item = SortOption::Item | SortOption::AsText | SortOption::KeepBackup;
    const uint32_t substring = SortOption::Substring | SortOption::AsText | SortOption::KeepBackup;
    const struct {
        const char* why;
        uint32_t options;
        std::wstring SortForm::*field;
        const wchar_t* text;
        std::wstring fault;  // how it begins; "" for none
    } cases[] = {
        {"no number", kPlain, &SortForm::keepTop, L"2x", L"Start Line is a number"},
        {"nothing is 0", kPlain, &SortForm::keepTop, L"", L""},
        {"a position", kPlain, &SortForm::linePosition, L"-1", L"Start at line position is a number"},
        {"an unused field does not matter", kPlain, &SortForm::substringLength, L"x", L""},
        {"a used one does", substring, &SortForm::substringLength, L"x", L"Substring lenght is a number"},
        {"two characters", substring, &SortForm::endCharacter, L"ab", L"End character is one character"},
        {"no separator", item, &SortForm::itemSeparator, L"", L"Item Separator is one character"},
        {"items count from 1", item, &SortForm::itemNumber, L"0", L"Item is a number of 1 or more"},
        {"no name", kPlain | SortOption::SaveAs, &SortForm::saveAsName, L"", L"Save as needs"},
        {"no format", kPlain | SortOption::AsDate, &SortForm::dateFormat, L"", L"Dates need a format"},
        {"a bad format", kPlain | SortOption::AsDate, &SortForm::dateFormat, L"%Z", L"The date format uses %Z"},
        {"a number key that is too long", substring | SortOption::AsNumber, &SortForm::substringLength, L"64",
         L"Substring lenght is above 63"},
    };
    for (const auto& c : cases) {
        SortForm form = FormWith(c.options);
        form.itemSeparator = L";";
        form.itemNumber = L"1";
        form.saveAsName = L"x";
        form.dateFormat = L"%Y";
        form.*c.field = c.text;
        const std::wstring fault = FileUtils::RequestOf(form, {}).fault;
        EXPECT_EQ(fault.substr(0, c.fault.size()), c.fault) << c.why;
        EXPECT_EQ(fault.empty(), c.fault.empty()) << c.why;
    }
}

TEST(SortForm, KeepsWhatTheChoicesDoNotUseAndLetsALengthEndTheNumbersOfItems) {
    SortRequest before = {0, 0,  0, 64, L';', L"%Y", SortOption::Item | SortOption::AsNumber | SortOption::KeepBackup,
                          3, L""};
    SortForm form = FileUtils::FormOf(before);
    EXPECT_NE(FileUtils::RequestOf(form, before).fault, L"");
    form.substringLength = L"3";
    EXPECT_EQ(FileUtils::RequestOf(form, before).request.substringLength, 3u);
    EXPECT_NE(FileUtils::RequestOf(form, before).hint, L"");
    form.substringLength = L"0";
    EXPECT_EQ(FileUtils::RequestOf(form, before).hint, L"");

    const uint32_t both =
        SortOption::NaturalNumbers | SortOption::IgnoreCase;  // of use without a language's order only
    form.options = kPlain | both | SortOption::LanguageOrder;
    EXPECT_EQ(FileUtils::RequestOf(form, before).request.options, kPlain | SortOption::LanguageOrder);
    form.options = before.options = kPlain | both;
    EXPECT_EQ(FileUtils::RequestOf(form, before).request, before);
}

TEST(SortLinesSettings, KeepTheLastRequestUnderItsKeysAndRefuseWhatCannotBe) {
    QVTest::ServicesOfHost host(QV_HOST_PROGRAM);
    auto* const store = host.Services().GetSettings();
    const std::wstring longest(QVLineSorter::kLongestDateFormat, L'x');
    const SortRequest request = {1, 2, 3, 4, L'\t', longest, 0x00161811, 5, L""};
    FileUtils::SaveSortLinesSettings(store, request);
    std::vector<uint32_t> stored;
    for (const wchar_t* key :
         {L"KeepLinesTop", L"KeepLinesBottom", L"LineOffset", L"SubStringLen", L"LineItem", L"Options"})
        EXPECT_TRUE(store->GetNumber(1, L"SortLines", key, &stored.emplace_back())) << key;
    EXPECT_EQ(stored, (std::vector<uint32_t>{1, 2, 3, 4, 5, 0x00161811}));
    SortRequest loaded;
    FileUtils::LoadSortLinesSettings(store, loaded);
    EXPECT_EQ(loaded, request);
    store->SetString(1, L"SortLines", L"CharMatch", L"no character");
    store->SetString(1, L"SortLines", L"MatchFilter", std::wstring(1000, L'x').c_str());
    FileUtils::LoadSortLinesSettings(store, loaded);
    EXPECT_EQ(loaded.separator, 0);
    EXPECT_EQ(loaded.dateFormat.size(), QVLineSorter::kLongestDateFormat);
}

}  // namespace
