// Wildcards: against the standard expression that a pattern stands for, on texts that the standard engine survives.
#include "findreplace/wildcard.h"

#include <optional>

#include "fuzz/input.h"

namespace QVFuzz {
namespace {

struct TooManySteps {};

/// A place in a text that counts the steps of the standard engine, which can explode.
template <class CharT>
class CountedPlace {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = CharT;
    using difference_type = std::ptrdiff_t;
    using pointer = const CharT*;
    using reference = const CharT&;

    CountedPlace() = default;
    CountedPlace(const CharT* at, int* left) : m_at(at), m_left(left) {}
    reference operator*() const { return *m_at; }
    CountedPlace& operator++() { return ++m_at, *this; }
    CountedPlace operator++(int) { return {m_at++, m_left}; }
    CountedPlace& operator--() { return --m_at, *this; }
    CountedPlace operator--(int) { return {m_at--, m_left}; }
    bool operator==(const CountedPlace& other) const {
        if (m_left && --*m_left < 0) throw TooManySteps();
        return m_at == other.m_at;
    }
    const CharT* Get() const { return m_at; }

private:
    const CharT* m_at = nullptr;
    int* m_left = nullptr;
};

struct Found {
    int code = 0;  // of the error; 0: none
    bool isFound = false;
    size_t start = 0;
    size_t length = 0;
    bool operator==(const Found&) const = default;
};

/// In wchar_t, which the standard engine knows on every platform.
Found ByTheStandard(const std::wstring& pattern, bool ignoreCase, const std::wstring& text) {
    std::wstring expression;
    for (const wchar_t unit : pattern) {
        const bool isSpecial = std::wstring_view(L"\\^.$|()[]+/").find(unit) != std::wstring_view::npos;
        if (unit == L'?') {
            expression += L'.';
        } else if (unit == L'*') {
            expression += L".*";
        } else {
            if (isSpecial) expression += L'\\';
            expression += unit;
        }
    }
    try {
        auto flags = std::regex_constants::ECMAScript;
        if (ignoreCase) flags |= std::regex_constants::icase;
        const std::wregex compiled(expression, flags);
        int left = 4000;
        using Place = CountedPlace<wchar_t>;
        std::match_results<Place> match;
        const wchar_t* const begin = text.data();
        if (!std::regex_search(Place(begin, &left), Place(begin + text.size(), &left), match, compiled)) return {};
        return {0, true, static_cast<size_t>(match[0].first.Get() - begin), static_cast<size_t>(match[0].length())};
    } catch (const std::regex_error& error) {
        return {static_cast<int>(error.code())};
    }
}

template <class CharT>
Found ByOurs(const std::basic_string<CharT>& pattern, bool ignoreCase, std::basic_string_view<CharT> text) {
    try {
        const auto matcher = QVFindAndReplace::MakeWildcardMatcher<CharT>(pattern, ignoreCase);
        QVFindAndReplace::Span span;
        const bool isFound = matcher->Find(text, span);
        if (isFound) Require(matcher->FindCandidate(text) != nullptr, "a hit's text is a candidate");
        return isFound ? Found{0, true, span.start, span.length} : Found{};
    } catch (const QVFindAndReplace::WildcardError& error) {
        return {static_cast<int>(error.code())};
    }
}

template <class CharT>
void Compare(std::string_view patternBytes, bool ignoreCase, std::string_view textBytes, bool hasStandard) {
    const auto pattern = Widened<CharT>(patternBytes);
    const Exact<CharT> text(Widened<CharT>(textBytes));
    const Found ours = ByOurs<CharT>(pattern, ignoreCase, text.View());
    if (ours.isFound) Require(ours.start + ours.length <= text.View().size(), "a hit lies in the text");
    if (!hasStandard) return;
    const std::wstring wideText(text.View().begin(), text.View().end());
    try {
        const Found standard = ByTheStandard(std::wstring(pattern.begin(), pattern.end()), ignoreCase, wideText);
        Require(ours == standard, "what the standard engine finds");
    } catch (const TooManySteps&) {
    }
}

}  // namespace

void RunWildcard(Bytes bytes) {
    Input input(bytes);
    const bool ignoreCase = (input.Byte() & 1) != 0;
    const std::string pattern = input.Text();
    const std::string text(input.Rest());
    // The standard engine copies a counted piece as often as its count says, counts beyond any memory included, and
    // narrows characters outside ASCII with a guess.
    const bool isAscii =
        std::ranges::all_of(pattern + text, [](char unit) { return static_cast<uint8_t>(unit) < 0x80; });
    size_t digits = 0;
    for (size_t at = 0; at + 1 < pattern.size(); ++at)
        digits += pattern[at] >= '0' && pattern[at] <= '9' && pattern[at + 1] >= '0' && pattern[at + 1] <= '9';
    const bool hasStandard = isAscii && digits == 0 && pattern.size() <= 24 && text.size() <= 64 &&
                             std::ranges::count(pattern, '{') <= 3 && text.find('\0') == text.npos &&
                             pattern.find('\0') == pattern.npos;
    if (pattern.size() > 256 || text.size() > 4096) return;
    Compare<char>(pattern, ignoreCase, text, hasStandard);
    Compare<WideChar>(pattern, ignoreCase, text, hasStandard);
}

}  // namespace QVFuzz
