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

/// The orders of some pairs, one after the other; "=" for equal ones.
template <class CharT>
std::string Orders(LineCompare_TextBase<CharT>&& compare) {
    std::string orders;
    for (const auto& [left, right] :
         {std::pair("", ""), {"", "a"}, {"abc", "abcd"}, {"a", "A"}, {"B", "a"}, {"_", "A"}, {"file10", "file9"}}) {
        const std::string one = left, other = right;
        const std::basic_string<CharT> wideOne(one.begin(), one.end()), wideOther(other.begin(), other.end());
        const std::string order = Order<CharT>(compare, wideOne, wideOther);
        orders += order.empty() ? "=" : order;
    }
    return orders;
}

TEST(LineCompare, FollowsEachClassesOwnRules) {
    constexpr char kLanguage[] = "=<<=><<", kNatural[] = "=<<=><>";
    EXPECT_EQ(Orders<char>(LineCompare_OrdinalA(false)), "=<=><><");
    EXPECT_EQ(Orders<char>(LineCompare_OrdinalA(true)), "=<==><<");
    EXPECT_EQ(Orders<wchar_t>(LineCompare_OrdinalW(false)), "=<<><><");
    EXPECT_EQ(Orders<char>(LineCompare_LanguageAware_StringCompareA()), kLanguage);
    EXPECT_EQ(Orders<char>(LineCompare_LanguageAware_WFallback()), kNatural);
    for (const bool isNew : {true, false})
        EXPECT_EQ(Orders<wchar_t>(LineCompare_LanguageAware_StringCompareEx<wchar_t>(false, isNew)), kLanguage);
    EXPECT_EQ(Orders<wchar_t>(LineCompare_LanguageAware_StringCompareEx<wchar_t>(true, true)), kNatural);
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
