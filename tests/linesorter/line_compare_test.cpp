#include "linesorter/line_compare.h"

#include <gtest/gtest.h>

#include "linesorter/sample_lines.h"

namespace {

using namespace QVLineSorter;

template <class CharT>
bool Less(LineCompare_TextBase<CharT>& compare, std::basic_string_view<CharT> left,
          std::basic_string_view<CharT> right) {
    return compare.Less(left.data(), static_cast<uint32_t>(left.size()), right.data(),
                        static_cast<uint32_t>(right.size()));
}

/// "<", "=" or ">".
template <class CharT>
std::string Order(LineCompare_TextBase<CharT>& compare, std::basic_string_view<CharT> left,
                  std::basic_string_view<CharT> right) {
    const bool less = Less(compare, left, right);
    const bool greater = Less(compare, right, left);
    return less && greater ? "both" : less ? "<" : greater ? ">" : "=";
}

TEST(LineCompare, FollowsEachClassesOwnRules) {
    struct Case {
        const char* left;
        const char* right;
        const char* bytes;
        const char* bytesIgnoringCase;
        const char* units;
        const char* language;
        const char* natural;
    };
    const Case cases[] = {
        {"", "", "=", "=", "=", "=", "="},
        {"", "a", "<", "<", "<", "<", "<"},
        {"abc", "abcd", "=", "=", "<", "<", "<"},
        {"abd", "abcd", ">", ">", ">", ">", ">"},
        {"a", "A", ">", "=", ">", "=", "="},
        {"B", "a", "<", ">", "<", ">", ">"},
        {"_", "a", "<", "<", "<", "<", "<"},
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
    for (const Case& c : cases) {
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
    EXPECT_EQ(Order<char>(compare, std::string_view("a\0b", 3), std::string_view("a\0c", 3)), "=");
    EXPECT_EQ(Order<char>(compare, std::string_view("a\0b", 3), std::string_view("ab", 2)), "<");
}

/// The sign of what memcmp says of two sort keys, shorter first.
template <class CharT, class Compare>
std::string OrderOfSortKeys(Compare& compare, std::basic_string_view<CharT> left, std::basic_string_view<CharT> right) {
    const auto keyOf = [&](std::basic_string_view<CharT> text) {
        std::string key;
        if (text.empty()) return key;
        const auto length = static_cast<uint32_t>(text.size());
        key.resize(compare.MakeSortKey(text.data(), length, nullptr, 0));
        EXPECT_EQ(compare.MakeSortKey(text.data(), length, reinterpret_cast<uint8_t*>(key.data()),
                                      static_cast<uint32_t>(key.size())),
                  key.size());
        return key;
    };
    const int order = keyOf(left).compare(keyOf(right));
    return order < 0 ? "<" : order > 0 ? ">" : "=";
}

template <class CharT, class Compare>
void ExpectSortKeysToAgree(Compare&& compare) {
    const auto lines = QVTest::SampleLines<CharT>(500, 1);
    for (size_t i = 0; i < lines.size(); ++i)
        for (const size_t other : {i * 7 % lines.size(), i * 31 % lines.size(), (i + 1) % lines.size()}) {
            const std::basic_string_view<CharT> left = lines[i], right = lines[other];
            ASSERT_EQ((OrderOfSortKeys<CharT>(compare, left, right)), (Order<CharT>(compare, left, right)))
                << testing::PrintToString(lines[i]) << " and " << testing::PrintToString(lines[other]);
        }
}

TEST(LineCompare, SortKeysHaveTheOrderOfTheComparison) {
    ExpectSortKeysToAgree<char>(LineCompare_LanguageAware_StringCompareA());
    ExpectSortKeysToAgree<char>(LineCompare_LanguageAware_WFallback());
    ExpectSortKeysToAgree<wchar_t>(LineCompare_LanguageAware_StringCompareEx<wchar_t>(false, true));
    ExpectSortKeysToAgree<wchar_t>(LineCompare_LanguageAware_StringCompareEx<wchar_t>(true, true));
    ExpectSortKeysToAgree<wchar_t>(LineCompare_LanguageAware_StringCompareEx<wchar_t>(false, false));
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
    const auto table = OrdinalCaseTable();
    ASSERT_EQ(table.size(), 0x10000u);
    for (uint32_t left = 1; left < 0x10000; ++left)
        for (const uint32_t right : {left ^ 0x20u, left ^ 1u, uint32_t{table[left]}, left * 40503u & 0xFFFF}) {
            const wchar_t a = static_cast<wchar_t>(left), b = static_cast<wchar_t>(right);
            ASSERT_EQ(Less<wchar_t>(units, {&a, 1}, {&b, 1}), table[left] < table[right]) << left << " and " << right;
        }
}

}  // namespace
