#include <random>
#include <regex>

#include <gtest/gtest.h>

#include "rename/guarded_regex.h"
#include "rename/search_and_replace_items.h"

namespace {

using namespace BatchRename;

std::wstring Repeated(const std::wstring& text, int times) {
    std::wstring result;
    for (int at = 0; at < times; ++at) result += text;
    return result;
}

TEST(GuardedRegex, RefusesInWordsWhatDoesNotCompile) {
    const std::tuple<const char*, std::wstring, const wchar_t*> cases[] = {
        {"an open group", L"(a", L"\"(\""},
        {"a lone escape", L"a\\", L"backslash"},
        {"no count", L"a{x}", L"count"},
        {"too many states", L"a{100001}", L"too large"},
        {"groups in a row", Repeated(L"()", 1500), L"too long or nested"},
        {"groups by a count", L"(?:){20000}", L"too long or nested"},
        {"a class with brackets", L"(?:()[()]){20000}", L"too long or nested"},
        {"lookaheads in a row beside states", Repeated(L"(?!a)", 200) + L"|x{90000}", L"too complex"},
        {"groups in groups", Repeated(L"(", 501) + Repeated(L")", 501), L"500 groups"},
        {"too long", std::wstring(4097, L'a'), L"4096 characters"},
        {"long and nested", Repeated(L"(", 500) + std::wstring(3000, L'a') + Repeated(L")", 500),
         L"too long or nested"},
    };
    for (const auto& [why, pattern, words] : cases) {
        try {
            const GuardedRegex regex(pattern, true);
            ADD_FAILURE() << why;
        } catch (const RegexFault& fault) {
            const std::wstring text = fault.Text();
            EXPECT_NE(text.find(words), std::wstring::npos) << why << ": " << text;
        }
    }
}

TEST(GuardedRegex, StopsWhatWouldHangOrOverflow) {
    const std::tuple<const char*, std::wstring, std::wstring> cases[] = {
        {"explodes", L"(a+)+$", std::wstring(40, L'a') + L"b"},
        {"explodes", L"(.*)*(.*)*(.*)*x", std::wstring(200, L'a')},
        {"a frame for each character", L"a.*b", std::wstring(32000, L'a')},
        {"lookaheads beside 5,000 states", L"(?:(?=a)a|(?=a)a)*b|x{5000}", std::wstring(41, L'a')},
        {"lookaheads beside groups", Repeated(L"()", 300) + L"b|(?:(?=a)a)+b", std::wstring(200, L'a')},
        {"lookaheads in lookaheads", Repeated(L"(?=", 400) + L"a" + Repeated(L")", 400), std::wstring(10, L'a')},
        {"a search for each character", L"x{90000}|a", std::wstring(255, L'a')},
        {"a class of ranges", L"[" + Repeated(L"b-df-h", 650) + L"a]+!", std::wstring(250, L'a')},
    };
    for (const auto& [why, pattern, text] : cases) {
        std::wstring result;
        const RuleFault fault = GuardedRegex(pattern, false).Replace(text, L"", result);
        EXPECT_TRUE(fault == RuleFault::TooComplex || fault == RuleFault::TooDeep) << why;
    }
}

TEST(GuardedRegex, GivesUsualExpressionsWhatTheyNeed) {
    const std::pair<std::wstring, std::wstring> cases[] = {
        {std::wstring(4096, L'a'), L""},
        {Repeated(L"(", 500) + L"a" + Repeated(L")", 500), L""},
        {Repeated(L"a|", 2000), L""},
        {L"(?:(?!foo).)*bar", std::wstring(255, L'a')},
        {L"^(?=.*\\d)(?=.*[a-z])(?=.*[A-Z]).{8,}$", std::wstring(250, L'a') + L"B1"},
        {L"^(\\d{4})[-_. ](\\d\\d)[-_. ](\\d\\d)(.*?)(?: \\((\\d+)\\))?$", L"2016-03-07 a day out (12)"},
        {L".{0,255}x", std::wstring(100, L'a')},
    };
    for (const auto& [pattern, text] : cases) {
        std::wstring result;
        EXPECT_EQ(GuardedRegex(pattern, false).Replace(text, L"$&", result), RuleFault::None) << pattern;
        EXPECT_EQ(result, text);
    }
}

TEST(GuardedRegex, DoesWhatTheStandardExpressionsDo) {
    std::mt19937 random(20260401);
    const auto pick = [&](size_t count) { return random() % count; };
    const wchar_t* const pieces[] = {L"a",    L"B",   L"b",     L"(\\w)", L"(a|b)", L"(.)(.)", L"\\1",    L"\\2",
                                     L"(?=b", L"(?!", L")",     L"[A-C]", L"[^a]",  L"\\b",    L"^",      L"$",
                                     L"*",    L"+?",  L"{1,2}", L"|",     L"(?:",   L"(",      L"\u00E4", L"\u00C4"};
    const std::wstring units = L"aAbBcC1_ \u00E4\u00C4";
    int compared = 0;
    for (int number = 0; number < 20'000; ++number) {
        std::wstring pattern;
        for (size_t count = 1 + pick(7); count > 0; --count) pattern += pieces[pick(std::size(pieces))];
        std::wstring text;
        for (size_t count = pick(9); count > 0; --count) text += units[pick(units.size())];
        const bool isCaseSensitive = pick(3) == 0;
        std::wstring expected;
        try {
            using namespace std::regex_constants;
            const std::wregex standard(pattern, isCaseSensitive ? ECMAScript : ECMAScript | icase);
            expected = std::regex_replace(text, standard, L"<$&$1>");
        } catch (const std::regex_error&) {
            EXPECT_THROW(GuardedRegex(pattern, isCaseSensitive), RegexFault) << pattern;
            continue;
        }
        std::wstring result;
        ASSERT_EQ(GuardedRegex(pattern, isCaseSensitive).Replace(text, L"<$&$1>", result), RuleFault::None) << pattern;
        ASSERT_EQ(result, expected) << pattern << " in " << text << (isCaseSensitive ? "" : ", ignoring case");
        ++compared;
    }
    EXPECT_GT(compared, 2000);
}

TEST(GuardedRegex, TakesNoForeignCharacterForASign) {
    for (const wchar_t* text : {L"\uFF0E", L"\uFF0A", L"\u250C\u2510", L"\uFF08x\uFF09", L"\uFF3Bx\uFF3D", L"\uFF04"}) {
        std::wstring result;
        EXPECT_EQ(GuardedRegex(text, false).Replace(std::wstring(L"a") + text, L"_", result), RuleFault::None);
        EXPECT_EQ(result, L"a_");
    }
}

TEST(CheckRegularExpressions, NamesTheFirstItemAtFaultAndSkipsEmptyOnes) {
    EXPECT_EQ(CheckRegularExpressions({{L"a", L""}, {L"", L""}}, false).item, 0);
    const ItemFault fault = CheckRegularExpressions({{L"a", L""}, {L"", L""}, {L"[", L""}, {L"(", L""}}, false);
    EXPECT_EQ(fault.item, 3);
    EXPECT_FALSE(fault.error.empty());
}

}  // namespace
