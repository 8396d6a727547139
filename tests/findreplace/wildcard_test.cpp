#include "findreplace/wildcard.h"

#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "support/standard_wildcard.h"

using namespace QVFindAndReplace;

namespace {

using QVTest::WildcardResult;

template <class CharT>
WildcardResult Ours(const std::basic_string<CharT>& pattern, bool ignoreCase, std::basic_string_view<CharT> text) {
    return QVTest::ResultOf([&]() -> WildcardResult {
        Span span;
        if (!MakeWildcardMatcher<CharT>(pattern, ignoreCase)->Find(text, span)) return {};
        return {0, true, span.start, span.length};
    });
}

template <class CharT>
std::basic_string<CharT> RandomPattern(std::mt19937& random) {
    static const std::basic_string<CharT> kAtoms = {
        'a', 'b', 'A', '?', '*', '.', '[', '}', ',', '\\', '-', static_cast<CharT>(sizeof(CharT) == 2 ? 0x2028 : '-')};
    static const std::string kQuantifiers[] = {"{2}", "{0}", "{1,}", "{0,}", "{2,3}", "{1,2}", "{02}", "{0,1}"};
    static const std::string kDamaged[] = {"{",     "{}",   "{,3}", "{a}", "{2 }", "{-1}",
                                           "{2,1}", "{2}{", "{2",   "{2,", "{2,3"};
    std::basic_string<CharT> pattern;
    const auto append = [&](const std::string& text) { pattern.append(text.begin(), text.end()); };
    for (size_t atoms = random() % 7; atoms > 0; --atoms) {
        pattern += kAtoms[random() % kAtoms.size()];
        for (size_t count = random() % 8; count > 4; --count) append(kQuantifiers[random() % std::size(kQuantifiers)]);
        if (random() % 100 < 4) append(kDamaged[random() % std::size(kDamaged)]);
    }
    if (random() % 100 == 0) pattern.insert(0, 1, CharT('{'));
    return pattern;
}

template <class CharT>
std::basic_string<CharT> RandomLine(std::mt19937& random) {
    static constexpr std::string_view kAscii = "abAab.[},\\-\n";
    std::basic_string<CharT> units(kAscii.begin(), kAscii.end());
    units += static_cast<CharT>(sizeof(CharT) == 2 ? 0x2028 : 'a');
    std::basic_string<CharT> text;
    for (size_t length = random() % 12; text.size() < length;) text += units[random() % units.size()];
    return text;
}

template <class CharT>
class Wildcard : public testing::Test {};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Wildcard, Widths);

}  // namespace

TYPED_TEST(Wildcard, FindsWhatTheExpressionFinds) {
    using CharT = TypeParam;
    std::mt19937 random(4);
    int skipped = 0;
    for (int round = 0; round < 50'000; ++round) {
        const auto pattern = RandomPattern<CharT>(random);
        const auto text = RandomLine<CharT>(random);
        const size_t column = random() % (text.size() + 1);
        const bool ignoreCase = random() % 2 == 0;
        const auto searched = std::basic_string_view<CharT>(text).substr(column);
        WildcardResult expected;
        try {
            expected = QVTest::SearchByTheStandard<CharT>(pattern, ignoreCase, searched, 20'000);
        } catch (const QVTest::TooManySteps&) {
            ++skipped;
            continue;
        }
        ASSERT_EQ(Ours<CharT>(pattern, ignoreCase, searched), expected)
            << "pattern " << std::string(pattern.begin(), pattern.end()) << " text "
            << testing::PrintToString(std::string(text.begin(), text.end())) << " column " << column;
    }
    EXPECT_LT(skipped, 2000);
}

// A stretch of lines is looked at as a whole, with breaks in it that no question mark stands for.
TYPED_TEST(Wildcard, NoLineBeforeTheCandidateHasAHit) {
    using CharT = TypeParam;
    std::mt19937 random(5);
    for (int round = 0; round < 20'000; ++round) {
        const auto pattern = RandomPattern<CharT>(random);
        const bool ignoreCase = random() % 2 == 0;
        std::unique_ptr<LineMatcher<CharT>> matcher;
        try {
            matcher = MakeWildcardMatcher<CharT>(pattern, ignoreCase);
        } catch (const WildcardError&) {
            continue;
        }
        std::basic_string<CharT> lines;
        size_t firstHit = lines.npos;  // where the first line with a hit ends
        for (int line = 0; line < 5; ++line) {
            auto text = RandomLine<CharT>(random);
            std::erase(text, CharT('\n'));
            Span span;
            lines += text;
            if (firstHit == lines.npos && matcher->Find(text, span)) firstHit = lines.size();
            lines += CharT('\n');
        }
        const CharT* const candidate = matcher->FindCandidate(lines);
        if (firstHit == lines.npos) continue;
        ASSERT_NE(candidate, nullptr) << std::string(pattern.begin(), pattern.end());
        ASSERT_LE(static_cast<size_t>(candidate - lines.data()), firstHit)
            << std::string(pattern.begin(), pattern.end());
    }
}

TYPED_TEST(Wildcard, LongLinesNeedNoStackAndLittleTime) {
    using CharT = TypeParam;
    std::basic_string<CharT> line(1'000'000, CharT('a'));
    const auto find = [&](const std::string& pattern) {
        return Ours<CharT>(std::basic_string<CharT>(pattern.begin(), pattern.end()), false, line);
    };
    const WildcardResult nothing;
    const WildcardResult everything = {0, true, 0, 1'000'000};
    const WildcardResult tooLarge = {static_cast<int>(std::regex_constants::error_space) + 1};
    EXPECT_EQ(find("a?*b"), nothing);
    EXPECT_EQ(find("*a*b*c*d*z"), nothing);
    EXPECT_EQ(find("a*a"), everything);
    EXPECT_EQ(find("a{3}b"), nothing);
    EXPECT_EQ(find("a{2,}"), everything);
    EXPECT_EQ(find("a{99999}{99999}"), tooLarge);
    EXPECT_EQ(find("a{99999999999999999999}"), tooLarge);
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
