#include "host/language.h"

#include <map>
#include <regex>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "host/panel/panel_texts.h"
#include "host/text.h"
#include "host/whole_file.h"
#include "host_runner.h"

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
    const struct {
        const wchar_t* section;
        TextId id;
        const wchar_t* text;
    } cases[] = {
        {L"", 2100_m, L"Upper case"}, {L"", 10_c, L"one\ntwo \\ C:\\x"}, {L"", 511_d, L"a=b"},
        {L"Other", 10_c, L"mine"},    {L"Other", 511_d, L"a=b"},         {L"", 9_e, L"9e"},
        {L"", 0, L"0x00000000"},
    };
    for (const auto& c : cases) EXPECT_STREQ(texts.Find(c.section, c.id), c.text);
    EXPECT_EQ(texts.Find(L"", 2100_m), texts.Find(L"", 2100_m)) << "the pointer is kept by its reader";
    EXPECT_EQ(texts.SectionOf(texts.ModuleOf(L"Other")), L"Other");
    EXPECT_EQ(texts.SectionOf(999), L"");
}

TEST(LanguageTexts, AreCompleteInEnglish) {
    std::string bytes;
    ASSERT_EQ(ReadWholeFile(QVTest::BesideThisProgram(L"qvhost-english.txt"), bytes), 0u);
    LanguageTexts texts;
    for (const std::wstring& fault : texts.Read(bytes)) ADD_FAILURE() << ToUtf8(fault);
    const struct {
        uint32_t first, last;
        char category;
        std::set<uint32_t> unused;
    } ranges[] = {
        {2001, 2004, 'm', {}},       {2100, 2102, 'm', {}}, {2110, 2110, 'm', {}},
        {2120, 2120, 'm', {}},       {2201, 2204, 'm', {}}, {2210, 2211, 'm', {}},
        {2220, 2221, 'm', {}},       {2240, 2241, 'm', {}}, {2300, 2301, 'm', {}},
        {2310, 2311, 'm', {}},       {2400, 2401, 'm', {}}, {200, 200, 'm', {}},
        {2600, 2672, 'm', {2610}},   {10, 17, 'c', {13}},   {50, 54, 'c', {}},
        {60, 82, 'c', {}},           {90, 97, 'c', {}},     {200, 213, 'd', {201, 206, 208, 209}},
        {250, 251, 'd', {}},         {427, 429, 'd', {}},   {440, 443, 'd', {441}},
        {508, 514, 'd', {509, 510}}, {521, 524, 'd', {}},   {571, 575, 'd', {572, 574}},
        {581, 581, 'd', {}},         {3, 3, 'g', {}},       {10, 11, 'e', {}},
        {100, 100, 'e', {}},         {120, 120, 'e', {}},   {125, 126, 'e', {}},
        {210, 210, 'e', {}},         {100, 100, 'p', {}},   {111, 114, 'p', {}},
    };
    for (const auto& range : ranges)
        for (uint32_t number = range.first; number <= range.last; ++number) {
            const TextId id = MakeTextId(number, range.category);
            if (range.unused.contains(number)) continue;
            EXPECT_NE(texts.Find(L"", id), NameOfTextId(id)) << ToUtf8(NameOfTextId(id));
        }
    EXPECT_STRNE(texts.Find(L"QVBatchRename", 2006_m), L"2006m");
    const auto expectText = [&](uint32_t number, char category) {
        const TextId id = MakeTextId(number, category);
        EXPECT_NE(texts.Find(L"QVBatchRename", id), NameOfTextId(id)) << ToUtf8(NameOfTextId(id));
    };
    for (uint32_t number = 300; number <= 310; ++number) expectText(number, 'm');
    for (uint32_t number = 320; number <= 322; ++number) expectText(number, 'm');
    for (uint32_t number = 330; number <= 338; ++number) expectText(number, 'd');
    for (uint32_t number = 340; number <= 342; ++number) expectText(number, 'd');
    EXPECT_STRNE(texts.Find(L"QVBatchRename", 10_c), texts.Find(L"", 10_c));
}

/// The ids of a language file with their sections, and of each text its placeholders in order.
std::map<std::string, std::string> PlaceholdersOf(const wchar_t* file) {
    std::string bytes;
    EXPECT_EQ(ReadWholeFile(QVTest::BesideThisProgram(file), bytes), 0u);
    LanguageTexts texts;
    for (const std::wstring& fault : texts.Read(bytes)) ADD_FAILURE() << ToUtf8(fault);
    std::map<std::string, std::string> placeholders;
    std::string section;
    const std::regex placeholder("%(I64)?[a-z%]");
    for (const std::string_view view : LinesOf(bytes)) {
        const std::string line(view);
        if (line.starts_with('[')) section = line;
        const size_t equals = line.find('=');
        if (line.empty() || line.front() == '#' || equals == std::string::npos) continue;
        std::string& found = placeholders[section + line.substr(0, equals)];
        for (std::sregex_iterator at(line.begin() + static_cast<std::ptrdiff_t>(equals), line.end(), placeholder), end;
             at != end; ++at)
            found += at->str() + " ";
    }
    return placeholders;
}

TEST(LanguageTexts, HaveTheSameIdsAndPlaceholdersInEachLanguage) {
    EXPECT_EQ(PlaceholdersOf(L"qvhost-german.txt"), PlaceholdersOf(L"qvhost-english.txt"));
}

TEST(LanguageTexts, HaveNoAccessKeyTwiceInOneMenuOrDialog) {
    for (const wchar_t* file : {L"qvhost-english.txt", L"qvhost-german.txt"}) {
        std::string bytes;
        ASSERT_EQ(ReadWholeFile(QVTest::BesideThisProgram(file), bytes), 0u);
        // The panel's own menu, and the dialog that grants access: the only ones whose texts come from here.
        const std::pair<std::string, std::string> groups[] = {{"w", "3 4 5 6 7 8 9 10"}, {"d", "202 203 204 205"}};
        for (const auto& [category, numbers] : groups) {
            std::set<char> keys;
            std::istringstream words(numbers);
            for (std::string number; words >> number;) {
                const size_t at = bytes.find("\n" + number + category + "=");
                ASSERT_NE(at, std::string::npos) << number;
                const std::string line = bytes.substr(at + 1, bytes.find('\n', at + 1) - at - 1);
                const size_t mark = line.find('&');
                ASSERT_LT(mark + 1, line.size()) << line;
                EXPECT_TRUE(keys.insert(static_cast<char>(line[mark + 1] | 0x20)).second) << line;
            }
        }
    }
}

TEST(LanguageTexts, AreCompleteForThePanel) {
    std::string bytes;
    ASSERT_EQ(ReadWholeFile(QVTest::BesideThisProgram(L"qvhost-english.txt"), bytes), 0u);
    LanguageTexts texts;
    texts.Read(bytes);
    for (uint32_t number = 1; number <= static_cast<uint32_t>(PanelText::Last); ++number) {
        const TextId id = TextIdOf(static_cast<PanelText>(number));
        EXPECT_NE(TextOf(texts, static_cast<PanelText>(number)), NameOfTextId(id)) << number;
    }
}

}  // namespace
