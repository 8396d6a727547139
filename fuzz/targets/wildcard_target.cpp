// Wildcards: against the standard expression that a pattern stands for, on texts that the standard engine survives.
#include "findreplace/wildcard.h"

#include "fuzz/input.h"
#include "fuzz/standard_wildcard.h"

namespace QVFuzz {
namespace {

constexpr int kWildcardSteps = 4000;

template <class CharT>
WildcardResult ByOurs(const std::basic_string<CharT>& pattern, bool ignoreCase, std::basic_string_view<CharT> text) {
    return ResultOf([&]() -> WildcardResult {
        const auto matcher = QVFindAndReplace::MakeWildcardMatcher<CharT>(pattern, ignoreCase);
        QVFindAndReplace::Span span;
        if (!matcher->Find(text, span)) return {};
        const CharT* const candidate = matcher->FindCandidate(text);
        const size_t lineEnd = std::min(text.find(CharT('\n'), span.start + span.length), text.size());
        Require(candidate && candidate <= text.data() + lineEnd, "no line with a hit lies before the candidate");
        return {0, true, span.start, span.length};
    });
}

/// A matcher keeps marks between its searches: what it finds must not depend on the searches before.
template <class CharT>
void RequireNoMemory(const std::basic_string<CharT>& pattern, bool ignoreCase, std::basic_string_view<CharT> text) {
    const auto make = [&] { return QVFindAndReplace::MakeWildcardMatcher<CharT>(pattern, ignoreCase); };
    const auto used = make();
    for (size_t from : {size_t{0}, text.size() / 2, text.size() / 4}) {
        QVFindAndReplace::Span ours;
        QVFindAndReplace::Span fresh;
        const bool isFound = used->Find(text.substr(from), ours);
        Require(isFound == make()->Find(text.substr(from), fresh), "found as by a matcher that has searched nothing");
        if (isFound) Require(ours.start == fresh.start && ours.length == fresh.length, "the same hit");
    }
}

template <class CharT>
void Compare(std::string_view patternBytes, bool ignoreCase, std::string_view textBytes, bool hasStandard) {
    const auto pattern = Widened<CharT>(patternBytes);
    const Exact<CharT> text(Widened<CharT>(textBytes));
    const WildcardResult ours = ByOurs<CharT>(pattern, ignoreCase, text.View());
    if (ours.isFound) Require(ours.start + ours.length <= text.View().size(), "a hit lies in the text");
    constexpr size_t kShort = 256;  // units: a few searches more of a long text cost too many runs
    if (ours.error == 0 && text.View().size() <= kShort) RequireNoMemory<CharT>(pattern, ignoreCase, text.View());
    if (!hasStandard) return;
    // In wchar_t, which the standard engine knows on every platform.
    const std::wstring widePattern(pattern.begin(), pattern.end());
    const std::wstring wideText(text.View().begin(), text.View().end());
    try {
        const WildcardResult standard = SearchByTheStandard<wchar_t>(widePattern, ignoreCase, wideText, kWildcardSteps);
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
