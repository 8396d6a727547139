#include <gtest/gtest.h>

#include "batchrename/guarded_regex.h"
#include "batchrename/search_and_replace_items.h"

namespace {

using namespace BatchRename;

std::wstring Repeated(const std::wstring& text, int times) {
    std::wstring result;
    for (int at = 0; at < times; ++at) result += text;
    return result;
}

TEST(GuardedRegex, RefusesInWordsWhatDoesNotCompile) {
    const struct {
        const char* why;
        std::wstring pattern;
        const wchar_t* words;
    } cases[] = {
        {"an open group", L"(a", L"\"(\""},
        {"an open class", L"[a", L"\"[\""},
        {"a lone escape", L"a\\", L"backslash"},
        {"no such group", L"(a)\\2", L"group"},
        {"no count", L"a{x}", L"count"},
        {"too many states", L"((a{300}){300}){300}", L"too large"},
        {"groups in groups", Repeated(L"(", 501) + Repeated(L")", 501), L"500 groups"},
        {"too long", std::wstring(4097, L'a'), L"4096 characters"},
        {"long and nested", Repeated(L"(", 500) + std::wstring(3000, L'a') + Repeated(L")", 500),
         L"too long or nested"},
    };
    for (const auto& c : cases) {
        try {
            const GuardedRegex regex(c.pattern, true);
            ADD_FAILURE() << c.why;
        } catch (const RegexFault& fault) {
            const std::wstring text = fault.Text();
            EXPECT_NE(text.find(c.words), std::wstring::npos) << c.why << ": " << text;
        }
    }
}

TEST(GuardedRegex, TakesThePatternsThatAreStillAllowed) {
    EXPECT_NO_THROW(GuardedRegex(std::wstring(4096, L'a'), false));
    EXPECT_NO_THROW(GuardedRegex(Repeated(L"(", 500) + L"a" + Repeated(L")", 500), false));
    EXPECT_NO_THROW(GuardedRegex(Repeated(L"a|", 2000), false));
}

TEST(GuardedRegex, StopsWhatWouldHangOrOverflow) {
    const struct {
        const char* why;
        std::wstring pattern;
        std::wstring text;
    } cases[] = {
        {"explodes", L"(a+)+$", std::wstring(40, L'a') + L"b"},
        {"explodes", L"(.*)*(.*)*(.*)*x", std::wstring(200, L'a')},
        {"a frame for each character", L"a.*b", std::wstring(32000, L'a')},
        {"many groups", L"((((((((a))))))))*b", std::wstring(32000, L'a')},
        {"a back reference", L"(a*)*\\1b", std::wstring(1000, L'a')},
    };
    for (const auto& c : cases) {
        std::wstring result;
        const RuleFault fault = GuardedRegex(c.pattern, false).Replace(c.text, L"", result);
        EXPECT_TRUE(fault == RuleFault::TooComplex || fault == RuleFault::TooDeep) << c.why;
    }
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
