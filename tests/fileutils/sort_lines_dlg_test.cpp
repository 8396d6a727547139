#include "fileutils/sort_lines/sort_lines_dlg.h"

#include <gtest/gtest.h>

#include "fileutils/fileutils_resource.h"
#include "support/dialog_driver.h"
#include "ui/host_texts.h"

namespace {

using QVLineSorter::SortRequest;
using namespace QVTest;
namespace SortOption = QVLineSorter::SortOption;

std::optional<SortRequest> Show(const SortRequest& first,
                                const std::function<void(DialogDriver&, const DrivenDialog&)>& person) {
    std::optional<SortRequest> result;
    WhileDriving([&](DialogDriver& driver) { person(driver, driver.WaitFor(L"Sort Lines")); },
                 [&] { result = FileUtils::SortLinesDlg(EchoTexts(), {L"C:\\a.txt"}, first).Show(nullptr); });
    return result;
}

TEST(SortLinesDlg, OpensWithTheRequestAndGivesItBack) {
    const uint32_t options = SortOption::Substring | SortOption::AsDate | SortOption::DeleteBackup |
                             SortOption::LanguageOrder | SortOption::Reverse | SortOption::RemoveDuplicates |
                             SortOption::RemoveBlankLines | SortOption::SkipLeadingSpaces |
                             SortOption::EndAtWhiteSpace | SortOption::EndAtCharacter;
    const SortRequest first = {1, 2, 3, 4, L',', L"%Y-%m-%d", options, 5, L""};
    const auto result = Show(first, [](DialogDriver&, const DrivenDialog& dialog) {
        EXPECT_EQ(dialog.Entries(IDC_TARGET), (std::vector<std::wstring>{L"427d", L"428d", L"429d"}));
        EXPECT_EQ(dialog.Entries(IDC_SORT_METHOD), (std::vector<std::wstring>{L"440d", L"442d", L"443d"}));
        EXPECT_FALSE(dialog.IsEnabled(IDC_REMOVE_DUPLICATES));
        dialog.PressAndClose(IDOK);
    });
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, first);
}

TEST(SortLinesDlg, FillsARequestThatCanStart) {
    const auto result = Show({}, [](DialogDriver& driver, const DrivenDialog& dialog) {
        for (const int off :
             {IDC_DATE_FORMAT, IDC_ITEM_NUMBER, IDC_NATURAL_NUMBERS, IDC_SUBSTRING_LENGTH, IDC_FILE_NAME})
            EXPECT_FALSE(dialog.IsEnabled(off)) << off;
        dialog.Select(IDC_TARGET, 0);
        EXPECT_EQ(dialog.Text(IDC_FILE_NAME), L"*_sorted.*");
        dialog.Select(IDC_SORT_METHOD, 2);
        EXPECT_FALSE(dialog.IsEnabled(IDOK)) << "dates need a format";
        dialog.PressLater(IDC_DATE_MENU);
        const HWND menu = driver.WaitForMenu();
        const auto handle = reinterpret_cast<HMENU>(SendMessageW(menu, MN_GETHMENU, 0, 0));
        wchar_t entry[100] = {};
        GetMenuStringW(handle, 1, entry, 100, MF_BYPOSITION);
        EXPECT_STREQ(entry, L"%Y-%m-%d %H:%M:%S\t2014-11-21 13:44:48");
        for (const WPARAM key : {VK_DOWN, VK_DOWN, VK_RETURN}) PostMessageW(menu, WM_KEYDOWN, key, 1);
        EXPECT_TRUE(QVTest::WaitUntil([&] { return dialog.Text(IDC_DATE_FORMAT) == L"%Y-%m-%d %H:%M:%S"; }));
        dialog.Select(IDC_SORT_METHOD, 1);
        dialog.Press(IDC_KEY_ITEM);
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        dialog.Enter(IDC_ITEM_SEPARATOR, L";");
        dialog.Enter(IDC_ITEM_NUMBER, L"2");
        dialog.Enter(IDC_KEEP_TOP, L"1x");  // as pasted
        EXPECT_EQ(dialog.Text(IDC_REASON), L"Start Line is a number from 0 to 4294967295.");
        SendMessageW(dialog.Control(IDC_KEEP_TOP), EM_SETSEL, 0, -1);
        for (const wchar_t unit : std::wstring(L"1x2")) SendMessageW(dialog.Control(IDC_KEEP_TOP), WM_CHAR, unit, 1);
        EXPECT_EQ(dialog.Text(IDC_KEEP_TOP), L"12");
        dialog.Enter(IDC_LINE_OFFSET, L"9");
        for (const int box : {IDC_SKIP_SPACES, IDC_REVERSE, IDC_REMOVE_BLANK_LINES, IDC_LANGUAGE_ORDER})
            dialog.Check(box, true);
        EXPECT_FALSE(dialog.IsEnabled(IDC_SORT_IGNORE_CASE));
        dialog.Check(IDC_NATURAL_NUMBERS, true);
        dialog.Check(IDC_LANGUAGE_ORDER, false);
        dialog.Check(IDC_SORT_IGNORE_CASE, true);
        dialog.PressAndClose(IDOK);
    });
    ASSERT_TRUE(result);
    const uint32_t options = SortOption::SaveAs | SortOption::AsNumber | SortOption::Item |
                             SortOption::SkipLeadingSpaces | SortOption::Reverse | SortOption::RemoveBlankLines |
                             SortOption::NaturalNumbers | SortOption::IgnoreCase;
    EXPECT_EQ(*result, (SortRequest{12, 0, 8, 0, L';', L"", options, 2, L"*_sorted.*"}));
}

}  // namespace
