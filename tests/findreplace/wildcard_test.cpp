#include "findreplace/wildcard.h"

#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "fuzz/standard_wildcard.h"

using namespace QVFindAndReplace;

namespace {

using QVFuzz::WildcardResult;

template <class CharT>
WildcardResult Ours(const std::basic_string<CharT>& pattern, bool ignoreCase, std::basic_string_view<CharT> text) {
    return QVFuzz::ResultOf([&]() -> WildcardResult {
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

// Line by line; and a stretch of lines is looked at as a whole, with breaks in it that no question mark stands for.
TYPED_TEST(Wildcard, FindsWhatTheExpressionFindsAndNothingBeforeTheCandidate) {
    using CharT = TypeParam;
    std::mt19937 random(4);
    int compared = 0;
    for (int round = 0; round < 30'000; ++round) {
        const auto pattern = RandomPattern<CharT>(random);
        const std::string shown(pattern.begin(), pattern.end());
        const bool ignoreCase = random() % 2 == 0;
        std::basic_string<CharT> lines;
        size_t firstHit = lines.npos;  // where the first line with a hit ends
        for (int line = 0; line < 4; ++line) {
            const auto text = RandomLine<CharT>(random);
            const WildcardResult found = Ours<CharT>(pattern, ignoreCase, text);
            try {
                ASSERT_EQ(found, QVFuzz::SearchByTheStandard<CharT>(pattern, ignoreCase, text, 20'000)) << shown;
                ++compared;
            } catch (const QVFuzz::TooManySteps&) {
            }
            lines += text;
            if (firstHit == lines.npos && found.isFound && text.find(CharT('\n')) == text.npos) firstHit = lines.size();
            lines += CharT('\n');
        }
        if (firstHit == lines.npos) continue;
        const CharT* const candidate = MakeWildcardMatcher<CharT>(pattern, ignoreCase)->FindCandidate(lines);
        ASSERT_NE(candidate, nullptr) << shown;
        ASSERT_LE(static_cast<size_t>(candidate - lines.data()), firstHit) << shown;
    }
    EXPECT_GT(compared, 110'000);
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
    EXPECT_EQ(find("a*a"), everything);
    EXPECT_EQ(find("a{2,}"), everything);
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
