#include "findreplace/wildcard.h"

#include <random>

#include <gtest/gtest.h>

#include "support/small_texts.h"

using namespace QVFindAndReplace;

namespace {

template <class CharT>
class Wildcard : public testing::Test {};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Wildcard, Widths);

/// So many of the pieces, one after the other.
std::string RandomText(std::mt19937& random, size_t count, const std::vector<std::string>& pieces) {
    std::string text;
    for (; count > 0; --count) text += pieces[random() % pieces.size()];
    return text;
}

}  // namespace

// In both widths, where the target has all of it compared.
TEST(Wildcard, FindsWhatTheExpressionFinds) {
    const std::vector<std::string> units = {"a", "b", "A", "b", ".", "[", "}", ",", "\\", "-", "\n"};
    const std::vector<std::string> parts = {"a",      "b",  "A",  "?",    "*",    ".",     "[",     "}",
                                            ",",      "\\", "-",  "a{2}", "?{0}", "b{1,}", "*{0,}", "?{2,3}",
                                            "a{1,3}", "{",  "{}", "{,3}", "b{a}", "{2 }",  "{2,1}"};
    std::mt19937 random(4);
    for (int round = 0; round < 100'000; ++round)
        QVTest::RunTarget(QVFuzz::RunWildcard, {round},
                          RandomText(random, random() % 6, parts) + '\x1E' + RandomText(random, random() % 12, units));
}

TYPED_TEST(Wildcard, FindsTheSameWhateverWasSearchedBefore) {
    using CharT = TypeParam;
    const std::basic_string<CharT> pattern = {'a', '{', '0', ',', '1', '}', 'b'};
    const auto find = [](LineMatcher<CharT>& matcher, const std::basic_string<CharT>& text) {
        Span span = {99, 99};
        matcher.Find(text, span);
        return std::pair(span.start, span.length);
    };
    const auto kept = MakeWildcardMatcher<CharT>(pattern, false);
    std::mt19937 random(6);
    for (int round = 0; round < 1000; ++round) {
        const std::string line = RandomText(random, random() % 12, {"a", "b", "-"});
        const std::basic_string<CharT> text(line.begin(), line.end());
        EXPECT_EQ(find(*kept, text), find(*MakeWildcardMatcher<CharT>(pattern, false), text)) << line;
    }
}

// A stretch of lines is looked at as a whole.
TYPED_TEST(Wildcard, LongLinesNeedNoStackAndLittleTime) {
    using CharT = TypeParam;
    const std::basic_string<CharT> line(1'000'000, CharT('a'));
    const auto find = [&](const std::string& pattern) {
        Span span = {1, 1};
        const bool isFound = MakeWildcardMatcher<CharT>({pattern.begin(), pattern.end()}, false)->Find(line, span);
        return isFound ? span.length - span.start : 0;
    };
    EXPECT_EQ(find("a?*b"), 0u);
    EXPECT_EQ(find("a*a"), line.size());
    EXPECT_EQ(find("a{2,}"), line.size());
    EXPECT_THROW(find("a{99999999999999999999}"), WildcardError);
}
TYPED_TEST(Wildcard, ManyHitsInALongLineTakeTimeInProportion) {
    using CharT = TypeParam;
    constexpr size_t kHits = 1'500'000;
    // Behind each hit a character that no wildcard takes, or one like all others: then the line has no break at all.
    constexpr auto kNotAny = static_cast<CharT>(sizeof(CharT) > 1 ? 0x2028 : '\n');
    const std::pair<char, CharT> cases[] = {{'?', kNotAny}, {'*', kNotAny}, {'?', CharT('d')}};
    for (const auto& [wildcard, filler] : cases) {
        std::basic_string<CharT> line;
        for (size_t i = 0; i < kHits; ++i) line += {CharT('a'), CharT('b'), CharT('c'), filler};
        const auto matcher = MakeWildcardMatcher<CharT>({CharT('a'), static_cast<CharT>(wildcard), CharT('c')}, false);
        std::basic_string_view<CharT> ahead = line;
        size_t hits = 0;
        for (Span span; matcher->Find(ahead, span); ++hits) ahead.remove_prefix(span.start + span.length);
        EXPECT_EQ(hits, kHits) << wildcard;
    }
}

TEST(WildcardError, NamesTheFaultAndThePattern) {
    try {
        MakeWildcardMatcher<char>("if (x) {", false);
        FAIL();
    } catch (const WildcardError& error) {
        EXPECT_EQ(error.code(), std::regex_constants::error_badbrace);
        EXPECT_NE(std::string(error.what()).find("Wildcard: if (x) {"), std::string::npos) << error.what();
    }
}
