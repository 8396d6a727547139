// wildcard.h - the wildcard pattern: "?" for one character, "*" for any number of them, and counts in braces.
#pragma once

#include <memory>
#include <regex>
#include <string>

#include "findreplace/line_matcher.h"
#include "textio/byte_search.h"

namespace QVFindAndReplace {

/// A pattern that cannot be read. `what` is the regular-expression library's own text for the fault and the pattern.
class WildcardError final : public std::regex_error {
public:
    WildcardError(std::regex_constants::error_type code, const std::string& pattern)
        : std::regex_error(code), m_text(std::string(std::regex_error::what()) + " Wildcard: " + pattern) {}
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    std::string m_text;
};

/// A matcher for a wildcard pattern.
///
/// The language, and what it finds, is that of the ECMAScript expression which one gets by escaping every special
/// character but the braces, and turning "?" into "." and "*" into ".*": the leftmost hit, each part as long as it can
/// be. "x{2}", "x{2,}" and "x{2,4}" count the character (or the counted character) before them; a brace that is no
/// such count is an error. "?" and "*" stand for every character but line breaks (in 16-bit text also U+2028 and
/// U+2029). With `ignoreCase`, characters that `folding` makes one are one; it must outlive the matcher.
///
/// Time is at most pattern times text, and a few looks at the text where counts say exactly how many, or at least so
/// many of "?". Nothing recurses.
/// @throws WildcardError
template <class CharT>
std::unique_ptr<LineMatcher<CharT>> MakeWildcardMatcher(
    const std::basic_string<CharT>& pattern, bool ignoreCase,
    const QVUtils::CaseFolding<CharT>& folding = QVUtils::PlainCaseFolding<CharT>());

}  // namespace QVFindAndReplace
