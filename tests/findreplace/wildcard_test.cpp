#include "findreplace/wildcard.h"

#include <optional>
#include <random>

#include <gtest/gtest.h>

using namespace QVFindAndReplace;

namespace {

/// Counts the reference engine's steps, which can explode.
struct TooManySteps {};

template <class CharT>
class CountingIterator {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = CharT;
    using difference_type = std::ptrdiff_t;
    using pointer = const CharT*;
    using reference = const CharT&;

    CountingIterator() = default;
    CountingIterator(const CharT* at, int* steps) : m_at(at), m_steps(steps) {}
    reference operator*() const { return *m_at; }
    CountingIterator& operator++() { return ++m_at, *this; }
    CountingIterator operator++(int) { return {m_at++, m_steps}; }
    CountingIterator& operator--() { return --m_at, *this; }
    CountingIterator operator--(int) { return {m_at--, m_steps}; }
    bool operator==(const CountingIterator& other) const {
        if (m_steps && --*m_steps < 0) throw TooManySteps();
        return m_at == other.m_at;
    }
    const CharT* Get() const { return m_at; }

private:
    const CharT* m_at = nullptr;
    int* m_steps = nullptr;
};

/// The expression that a wildcard pattern means.
template <class CharT>
std::basic_string<CharT> Expression(const std::basic_string<CharT>& pattern) {
    static const std::string kEscaped = "\\^.$|()[]+/";
    std::basic_string<CharT> expression;
    for (const CharT unit : pattern) {
        if (unit == CharT('?')) {
            expression += CharT('.');
        } else if (unit == CharT('*')) {
            expression += {CharT('.'), CharT('*')};
        } else {
            if (unit < 0x80 && kEscaped.find(static_cast<char>(unit)) != std::string::npos) expression += CharT('\\');
            expression += unit;
        }
    }
    return expression;
}

/// What a search gives: start and length, nothing, or an error code below zero.
using Result = std::optional<std::pair<int, int>>;

template <class CharT>
Result Reference(const std::basic_string<CharT>& pattern, bool ignoreCase, const std::basic_string<CharT>& text,
                 size_t column) {
    int steps = 20'000;
    try {
        const auto flags = std::regex_constants::ECMAScript |
                           (ignoreCase ? std::regex_constants::icase : std::regex_constants::syntax_option_type());
        const std::basic_regex<CharT> expression(Expression(pattern), flags);
        using Iterator = CountingIterator<CharT>;
        std::match_results<Iterator> match;
        const CharT* const begin = text.data() + column;
        const CharT* const end = text.data() + text.size();
        if (!std::regex_search(Iterator(begin, &steps), Iterator(end, &steps), match, expression)) return std::nullopt;
        return std::pair(int(match[0].first.Get() - begin), int(match[0].second.Get() - match[0].first.Get()));
    } catch (const std::regex_error& error) {
        return std::pair(-1, int(error.code()));
    }
}

template <class CharT>
Result Ours(const std::basic_string<CharT>& pattern, bool ignoreCase, const std::basic_string<CharT>& text,
            size_t column) {
    try {
        Span span;
        const auto view = std::basic_string_view<CharT>(text).substr(column);
        if (!MakeWildcardMatcher<CharT>(pattern, ignoreCase)->Find(view, span)) return std::nullopt;
        return std::pair(int(span.start), int(span.length));
    } catch (const std::regex_error& error) {
        return std::pair(-1, int(error.code()));
    }
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
    static const std::basic_string<CharT> kUnits = {'a',
                                                    'b',
                                                    'A',
                                                    'a',
                                                    'b',
                                                    '.',
                                                    '[',
                                                    '}',
                                                    ',',
                                                    '\\',
                                                    '-',
                                                    '\n',
                                                    static_cast<CharT>(sizeof(CharT) == 2 ? 0x2028 : 'a')};
    std::basic_string<CharT> text;
    for (size_t length = random() % 12; text.size() < length;) text += kUnits[random() % kUnits.size()];
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
        Result expected;
        try {
            expected = Reference(pattern, ignoreCase, text, column);
        } catch (const TooManySteps&) {
            ++skipped;
            continue;
        }
        ASSERT_EQ(Ours(pattern, ignoreCase, text, column), expected)
            << "pattern " << std::string(pattern.begin(), pattern.end()) << " text "
            << testing::PrintToString(std::string(text.begin(), text.end())) << " column " << column;
    }
    EXPECT_LT(skipped, 2000);
}

TYPED_TEST(Wildcard, LongLinesNeedNoStackAndLittleTime) {
    using CharT = TypeParam;
    std::basic_string<CharT> line(1'000'000, CharT('a'));
    const auto find = [&](const std::string& pattern) {
        return Ours(std::basic_string<CharT>(pattern.begin(), pattern.end()), false, line, 0);
    };
    EXPECT_EQ(find("a?*b"), std::nullopt);
    EXPECT_EQ(find("*a*b*c*d*z"), std::nullopt);
    EXPECT_EQ(find("a*a"), (std::pair(0, 1'000'000)));
    EXPECT_EQ(find("a{3}b"), std::nullopt);
    EXPECT_EQ(find("a{2,}"), (std::pair(0, 1'000'000)));
    EXPECT_EQ(find("a{99999}{99999}"), (std::pair(-1, int(std::regex_constants::error_space))));
    EXPECT_EQ(find("a{99999999999999999999}"), (std::pair(-1, int(std::regex_constants::error_space))));
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
