#include <random>

#include <gtest/gtest.h>

#include "fuzz/standard_regex.h"
#include "rename/regex.h"
#include "rename/search_and_replace_items.h"

namespace {

using namespace BatchRename;

std::wstring Repeated(const std::wstring& text, int times) {
    std::wstring result;
    for (int at = 0; at < times; ++at) result += text;
    return result;
}

TEST(Regex, RefusesInWordsWhatDoesNotCompile) {
    const std::tuple<const char*, std::wstring, const wchar_t*> cases[] = {
        {"an open group", L"(a", L"\"(\""},
        {"a lone escape", L"a\\", L"backslash"},
        {"no count", L"a{x}", L"count"},
        {"a group around its own reference", L"(a\\1)", L"group"},
        {"an unknown class", L"[[:no:]]", L"unknown"},
        {"a range with one end", L"[a-\\d]", L"range"},
        {"too many states", L"a{100001}", L"too large"},
        {"too many by counts of counts", L"(((a{99}){99}){99}){99}", L"too large"},
        {"too long", std::wstring(1'000'000, L'a'), L"too large"},
    };
    for (const auto& [why, pattern, words] : cases) {
        try {
            const Regex regex(pattern, true);
            ADD_FAILURE() << why;
        } catch (const RegexFault& fault) {
            const std::wstring& text = fault.Text();
            EXPECT_NE(text.find(words), std::wstring::npos) << why << ": " << text;
        }
    }
}

TEST(Regex, EndsWhateverTheExpressionAndTheTextAndGivesUsualOnesWhatTheyNeed) {
    const std::wstring name(255, L'a');
    const std::wstring longText(32000, L'a');
    const std::tuple<const char*, std::wstring, std::wstring, RuleFault> cases[] = {
        {"explodes", L"(a+)+$", name + L"b", RuleFault::TooComplex},
        {"explodes with empty loops", L"(.*)*(.*)*(.*)*x", name, RuleFault::TooComplex},
        {"explodes with counts", L"((a{1,9}){1,9}){1,9}b", name, RuleFault::TooComplex},
        {"a group of every length, for each character", L"a.*b", longText, RuleFault::TooComplex},
        {"more to try than the memory allowed", L"(?:a||)*b", std::wstring(400'000, L'a'), RuleFault::TooDeep},
        {"lookaheads beside states", L"(?:(?=a)a|(?=a)a)*b|x{90000}", name, RuleFault::TooComplex},
        {"lookaheads beside groups", Repeated(L"()", 30000) + L"b|(?:(?=a)a)+b", name, RuleFault::TooComplex},
        {"lookaheads in lookaheads", Repeated(L"(?!", 20000) + L"a" + Repeated(L")", 20000), name,
         RuleFault::TooComplex},
        {"what lookaheads leave in groups", L"(?=(?:(?=(a)(a)?)a|(?=(a))a)*c)x", longText, RuleFault::TooComplex},
        {"references", L"(a*)*\\1\\1\\1\\1\\1\\1\\1\\1b", name, RuleFault::TooComplex},
        {"a reference to a long text", L"(a*)(?:\\1|x)*b", longText, RuleFault::TooComplex},
        {"groups in a row", Repeated(L"()", 30000), name, RuleFault::TooComplex},
        {"groups in groups", Repeated(L"(", 30000) + Repeated(L")", 30000), name, RuleFault::TooComplex},
        {"plain groups in groups", Repeated(L"(?:", 30000) + L"b" + Repeated(L")", 30000), name, RuleFault::None},
        {"a long class", L"[" + Repeated(L"\u4E00-\u4E05\u4E10", 50000) + L"]*!", std::wstring(255, L'\u4E02'),
         RuleFault::None},
        {"a lookahead at each place", L"(?:(?!foo).)*bar", name, RuleFault::None},
        {"lookaheads in a row", L"^(?=.*\\d)(?=.*[a-z])(?=.*[A-Z]).{8,}$", std::wstring(250, L'a') + L"B1",
         RuleFault::None},
        {"a loop over a long text", L"(?:a|b)*c", longText + L"c", RuleFault::None},
        {"many groups", Repeated(L"(a?)", 200), name, RuleFault::None},
        {"many alternatives", Repeated(L"a|", 500) + L"b", std::wstring(255, L'b'), RuleFault::None},
        {"a result without end", L"a", longText, RuleFault::ResultTooLong},
    };
    for (const auto& [why, pattern, text, fault] : cases) {
        std::wstring result;
        EXPECT_EQ(Regex(pattern, false).Replace(text, L"bb", result), fault) << why;
    }
}

TEST(Regex, FindsWhatTheStandardExpressionsFind) {
    const QVFuzz::RegexCase rare[] = {
        {L"(?:()|\\1b)*c", L"bc", L"<$&>"},  // a loop is entered twice at one place, not once
        {L"B{0}{0,1}{2,3}?(?!B*???{0,1}?a)", L"bABaBbA", L"<$&>",
         true},  // each try of a lookahead counts its loops anew
    };
    for (const QVFuzz::RegexCase& given : rare)
        EXPECT_EQ(QVFuzz::CompareWithStandard(given, 4000), QVFuzz::RegexVerdict::Same) << given.pattern;
    std::mt19937 random(20260401);
    QVFuzz::RegexMaker maker([&](size_t below) { return random() % below; });
    int same = 0;
    for (int number = 0; number < 20'000; ++number) {
        const QVFuzz::RegexCase given = maker.Make();
        const QVFuzz::RegexVerdict verdict = QVFuzz::CompareWithStandard(given, 4000);
        ASSERT_NE(verdict, QVFuzz::RegexVerdict::Different)
            << given.pattern << " in " << given.text << " with " << given.replacement << ", number " << number;
        same += verdict == QVFuzz::RegexVerdict::Same;
    }
    EXPECT_GT(same, 10'000);
}

}  // namespace
