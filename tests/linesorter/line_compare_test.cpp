#include "linesorter/line_compare.h"

#include <gtest/gtest.h>

namespace {

using namespace QVLineSorter;

template <class CharT>
bool Less(LineCompare_TextBase<CharT>& compare, std::basic_string_view<CharT> left,
          std::basic_string_view<CharT> right) {
    const auto size = [](auto text) { return static_cast<uint32_t>(text.size()); };
    return compare.Less(left.data(), size(left), right.data(), size(right));
}

/// "<", "" or ">"; both for an order that contradicts itself.
template <class CharT>
std::string Order(LineCompare_TextBase<CharT>& compare, std::basic_string_view<CharT> left,
                  std::basic_string_view<CharT> right) {
    return std::string(Less(compare, left, right) ? "<" : "") + (Less(compare, right, left) ? ">" : "");
}

TEST(LineCompare, FollowsEachClassesOwnRules) {
    const struct {
        const char *left, *right;
        const char* bytes;  // the orders
        const char *bytesIgnoringCase, *units, *language, *natural;
    } cases[] = {
        {"", "", "", "", "", "", ""},
        {"", "a", "<", "<", "<", "<", "<"},
        {"abc", "abcd", "", "", "<", "<", "<"},
        {"a", "A", ">", "", ">", "", ""},
        {"B", "a", "<", ">", "<", ">", ">"},
        {"_", "A", ">", "<", ">", "<", "<"},
        {"file10", "file9", "<", "<", "<", "<", ">"},
    };
    LineCompare_OrdinalA bytes(false);
    LineCompare_OrdinalA bytesIgnoringCase(true);
    LineCompare_OrdinalW units(false);
    LineCompare_LanguageAware_StringCompareA language;
    LineCompare_LanguageAware_WFallback natural;
    LineCompare_LanguageAware_StringCompareEx<wchar_t> languageW(false, true);
    LineCompare_LanguageAware_StringCompareEx<wchar_t> olderW(false, false);
    LineCompare_LanguageAware_StringCompareEx<wchar_t> naturalW(true, true);
    for (const auto& c : cases) {
        const std::string_view left = c.left, right = c.right;
        const std::wstring wideLeft(left.begin(), left.end()), wideRight(right.begin(), right.end());
        const std::wstring_view leftW = wideLeft, rightW = wideRight;
        SCOPED_TRACE(std::string(c.left) + " and " + c.right);
        EXPECT_EQ(Order<char>(bytes, left, right), c.bytes);
        EXPECT_EQ(Order<char>(bytesIgnoringCase, left, right), c.bytesIgnoringCase);
        EXPECT_EQ(Order<wchar_t>(units, leftW, rightW), c.units);
        EXPECT_EQ(Order<char>(language, left, right), c.language);
        EXPECT_EQ(Order<char>(natural, left, right), c.natural);
        EXPECT_EQ(Order<wchar_t>(languageW, leftW, rightW), c.language);
        EXPECT_EQ(Order<wchar_t>(olderW, leftW, rightW), c.language);
        EXPECT_EQ(Order<wchar_t>(naturalW, leftW, rightW), c.natural);
    }
}

TEST(LineCompare, OrdinalBytesEndAtAZeroByte) {
    LineCompare_OrdinalA compare(false);
    EXPECT_EQ(Order<char>(compare, std::string_view("a\0b", 3), std::string_view("a\0c", 3)), "");
    EXPECT_EQ(Order<char>(compare, std::string_view("a\0b", 3), std::string_view("ab", 2)), "<");
}

TEST(LineCompare, CaseTablesAgreeWithTheComparisons) {
    LineCompare_OrdinalA bytes(true);
    const auto ranks = bytes.ByteRanks();
    for (int left = 1; left < 256; ++left)
        for (int right = 1; right < 256; ++right) {
            const char a = static_cast<char>(left), b = static_cast<char>(right);
            ASSERT_EQ(Less<char>(bytes, {&a, 1}, {&b, 1}), ranks[left] < ranks[right]) << left << " and " << right;
        }
    LineCompare_OrdinalW units(true);
    const auto table = Win32::OrdinalCaseTable();
    ASSERT_EQ(table.size(), 0x10000u);
    for (uint32_t left = 1; left < 0x10000; ++left)
        for (const uint32_t right : {left ^ 0x20u, left ^ 1u, uint32_t{table[left]}, left * 40503u & 0xFFFF}) {
            const wchar_t a = static_cast<wchar_t>(left), b = static_cast<wchar_t>(right);
            ASSERT_EQ(Less<wchar_t>(units, {&a, 1}, {&b, 1}), table[left] < table[right]) << left << " and " << right;
        }
}

}  // namespace
