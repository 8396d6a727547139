#include "host/contract/language.h"

#include <regex>
#include <set>

#include "batchrename/batchrename_texts.h"
#include "batchrename/dialogs/rename_dialog_pages.h"
#include "fileutils/control_panel/control_panel.h"
#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_texts.h"
#include "host/app/host_text.h"
#include "host/contract/whole_file.h"
#include "host/panel/panel_texts.h"
#include "host_runner.h"
#include "security/ntfs_prop.h"
#include "ui/guide.h"
#include "ui/name_fault_texts.h"

namespace {

using namespace QVHost;
using namespace Quorvane::SDK;

TEST(LanguageTexts, FindsTheTextsOfAFile) {
    LanguageTexts texts;
    const auto faults = texts.Read(
        "\xEF\xBB\xBF# comment\r\n2100m=Upper case\r\n\n10c=one\\ntwo \\\\ C:\\x\n511d=a=b\n"
        "nonsense\n70000m=x\n1M=x\n5d\xFF=x\n10c=again\n[Other]\n10c=mine\n");
    EXPECT_EQ(faults.size(), 5u);
    EXPECT_EQ(faults.front(), L"line 6: has no =");
    const std::tuple<const wchar_t*, TextId, const wchar_t*> cases[] = {
        {L"", 2100_m, L"Upper case"}, {L"", 10_c, L"one\ntwo \\ C:\\x"}, {L"", 511_d, L"a=b"},
        {L"Other", 10_c, L"mine"},    {L"Other", 511_d, L"a=b"},         {L"", 9_e, L"9e"},
        {L"", 0, L"0x00000000"},
    };
    for (const auto& [section, id, text] : cases) EXPECT_STREQ(texts.Find(section, id), text);
    EXPECT_EQ(texts.Find(L"", 2100_m), texts.Find(L"", 2100_m)) << "the pointer is kept by its reader";
    EXPECT_EQ(texts.SectionOf(texts.ModuleOf(L"Other")), L"Other");
    EXPECT_EQ(texts.SectionOf(999), L"");
}

/// The language file's bytes; all its lines must be good.
std::string Load(const wchar_t* file, LanguageTexts& texts) {
    std::string bytes;
    EXPECT_EQ(ReadWholeFile(QVTest::BesideThisProgram(file), bytes), 0u);
    for (const std::wstring& fault : texts.Read(bytes)) ADD_FAILURE() << fault;
    return bytes;
}

TEST(LanguageTexts, AreThereForEveryIdOfTheLibraryAndThePanel) {
    LanguageTexts texts;
    Load(L"qvhost-english.txt", texts);
    const auto expectText = [&](const wchar_t* section, TextId id) {
        EXPECT_NE(texts.Find(section, id), NameOfTextId(id)) << section;
    };
    for (const TextId id : FileUtils::Text::kAll) expectText(L"", id);
    for (const auto& row : FileUtils::ControlPanelCategories()) expectText(L"", row.text);
    for (const auto& row : FileUtils::ControlPanelItems()) expectText(L"", row.text);
    for (const TextId id : Security::PropertyText::kAll) expectText(L"", id);
    for (const TextId id : BatchRename::Text::kAll) expectText(L"QVBatchRename", id);
    EXPECT_STRNE(texts.Find(L"QVBatchRename", 10_c), texts.Find(L"", 10_c)) << "one id, two extensions";
    for (const TextId id : Ui::Text::kAll) expectText(L"", id);
    for (const Ui::DialogPage& page : FileUtils::DialogPages())
        for (const Ui::Tip& tip : page.tips) expectText(L"", tip.text);
    for (const Ui::DialogPage& page : BatchRename::DialogPages())
        for (const Ui::Tip& tip : page.tips) expectText(L"QVBatchRename", tip.text);
    const auto expectEnglish = [&](const wchar_t* section, std::span<const OwnText> own) {
        for (const OwnText& text : own) EXPECT_STREQ(texts.Find(section, text.id), text.english) << section;
    };
    for (const auto& own : {std::span<const OwnText>(FileUtils::Text::kOwn), {FileUtils::Text::kReasons}})
        expectEnglish(L"", own);
    expectEnglish(L"", Ui::Text::kNameFaults);
    for (const auto& own : {std::span<const OwnText>(BatchRename::Text::kOwn), {BatchRename::Text::kReasons}})
        expectEnglish(L"QVBatchRename", own);
    for (uint32_t number = 1; number <= static_cast<uint32_t>(PanelText::Last); ++number) {
        const auto text = static_cast<PanelText>(number);
        EXPECT_NE(TextOf(texts, text), NameOfTextId(TextIdOf(text)));
    }
}

/// The ids of a language file with their sections, and of each text its placeholders in order.
std::map<std::string, std::string> PlaceholdersOf(const wchar_t* file) {
    LanguageTexts texts;
    const std::string bytes = Load(file, texts);
    std::map<std::string, std::string> placeholders;
    std::string section;
    const std::regex placeholder("%(I64)?[a-z%]");
    for (const std::string_view view : LinesOf(bytes)) {
        const std::string line(view);
        if (line.starts_with('[')) section = line;
        const size_t equals = line.find('=');
        if (line.empty() || line.front() == '#' || equals == std::string::npos) continue;
        std::string& found = placeholders[section + line.substr(0, equals)];
        for (std::sregex_iterator at(line.begin(), line.end(), placeholder), end; at != end; ++at)
            found += at->str() + " ";
    }
    return placeholders;
}

TEST(LanguageTexts, HaveTheSameIdsAndPlaceholdersInEachLanguage) {
    EXPECT_EQ(PlaceholdersOf(L"qvhost-german.txt"), PlaceholdersOf(L"qvhost-english.txt"));
}

// The panel's own menu, and the dialog that grants access: the only ones whose texts come from the language file.
TEST(LanguageTexts, HaveNoAccessKeyTwiceInOneMenuOrDialog) {
    for (const wchar_t* file : {L"qvhost-english.txt", L"qvhost-german.txt"}) {
        LanguageTexts texts;
        Load(file, texts);
        const auto expectOwnKeys = [&](const wchar_t* section, TextId first, TextId last) {
            std::set<wchar_t> keys;
            for (TextId id = first; id <= last; id += 1 << 16) {
                const std::wstring text = texts.Find(section, id);
                const size_t mark = text.find(L'&');
                ASSERT_LT(mark, text.size() - 1) << text;
                EXPECT_TRUE(keys.insert(text[mark + 1] | 0x20).second) << text;
            }
        };
        expectOwnKeys(kPanelSection, TextIdOf(PanelText::OpenFolder), TextIdOf(PanelText::Exit));
        // What the menus over the files and over the log have besides.
        expectOwnKeys(kPanelSection, TextIdOf(PanelText::Open), TextIdOf(PanelText::GoToFile));
        expectOwnKeys(L"", 202_d, 205_d);
    }
}

}  // namespace
