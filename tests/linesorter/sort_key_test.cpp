#include "linesorter/sort_key.h"

#include "linesorter/sample_lines.h"
#include "linesorter/sort_request.h"

namespace {

using namespace QVLineSorter;
using QVTest::As;

TEST(FindKey, CutsTheKeyThatTheRuleNames) {
    QVTest::InBothWidths([]<class CharT>(CharT) {
        constexpr auto kFromOffset = KeyRule<CharT>::Kind::FromOffset;
        constexpr auto kSubstring = KeyRule<CharT>::Kind::Substring;
        constexpr auto kItem = KeyRule<CharT>::Kind::Item;
        const struct {
            const char *why, *line;
            KeyRule<CharT> rule;
            KeySpan expected;
        } cases[] = {
            {"the whole line has length 0", "abc", {}, {0, 0}},
            {"from an offset", "abc", {kFromOffset, 2, false, 0, false, false, {}}, {2, 0}},
            {"and so has a shorter one", "abc", {kFromOffset, 4000000000, false, 0, false, false, {}}, {3, 0, true}},
            {"an empty line", "", {kItem, 1, true, 0, false, false, ',', 2}, {0, 0, true}},
            {"spaces and tabs are skipped after the offset",
             "x \t b",
             {kFromOffset, 1, true, 0, false, false, {}},
             {4, 0}},
            {"a substring that reaches the end exactly", "abcd", {kSubstring, 1, false, 3, false, false, {}}, {1, 0}},
            {"the length comes before white space", "a bcd", {kSubstring, 0, false, 3, true, false, {}}, {0, 3}},
            {"up to a tab, before the end character", "ab,\tcd", {kSubstring, 0, false, 0, true, true, ','}, {0, 3}},
            {"an end character that this width lacks", "ab,cd", {kSubstring, 0, false, 0, false, true, {}}, {0, 5}},
            {"an empty substring means the rest", ",ab", {kSubstring, 0, false, 0, false, true, ','}, {0, 0}},
            {"the second item", "a,bb,c", {kItem, 0, false, 0, false, false, ',', 2}, {2, 2}},
            {"items after an offset", "x,a,b", {kItem, 2, false, 0, false, false, ',', 2}, {4, 1}},
            {"an empty item means the rest", "a,,c", {kItem, 0, false, 0, false, false, ',', 2}, {2, 0}},
            {"very many items asked for", "a,b", {kItem, 0, false, 0, false, false, ',', 4294967295}, {3, 0, true}},
            {"no item has number 0", "a,b", {kItem, 0, false, 0, false, false, ',', 0}, {3, 0, true}},
            {"a separator that this width lacks", "a,b", {kItem, 0, false, 0, false, false, {}, 1}, {0, 3}},
        };
        for (const auto& c : cases)
            EXPECT_EQ(FindKey<CharT>(As<CharT>(c.line), c.rule), c.expected)
                << c.why << ", " << sizeof(CharT) << " bytes a character";
    });
}

// What is read is what strtoll reads: the fuzz target compares them.
TEST(NumberKey, IsReadFromSoManyCharacters) {
    EXPECT_EQ(NumberKey<char>("12345", 3), 123);
    EXPECT_EQ(NumberKey<wchar_t>(L"  -12345", 4), -1);
    EXPECT_EQ(NumberKey<char>(std::string(80, '9'), 0), INT64_MAX);
}

TEST(SeparatorFromText, TakesOneCharacterOrTheWordForATab) {
    for (const auto& [text, separator] : {std::pair(L",", L','), {L"\\", L'\\'}, {L"\\t", L'\t'}}) {
        EXPECT_EQ(SeparatorFromText(text), separator);
        EXPECT_EQ(TextFromSeparator(separator), text);
    }
    for (const wchar_t* bad : {L"", L"ab", L"\\n", L"\xD83D", L"\xD83D\xDE00"})
        EXPECT_EQ(SeparatorFromText(bad), std::nullopt);
}

}  // namespace
