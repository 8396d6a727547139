// guarded_regex.h - the standard regular expressions, made safe for names that are typed live in somebody else's
// process. The standard engine recurses for every character and can run for days; here every step is counted and every
// frame compared with the end of the stack.
#pragma once

#include <cstddef>
#include <cstdint>
#include <regex>
#include <stdexcept>
#include <string>

#include "batchrename/rename_item.h"

namespace BatchRename {

/// No name and no path is longer; a text that grows beyond it is refused. UTF-16 units.
inline constexpr size_t kLongestText = 32767;

/// A pattern that does not compile, in words for people.
class RegexFault : public std::runtime_error {
public:
    explicit RegexFault(std::wstring text)
        : std::runtime_error("invalid regular expression"), m_text(std::move(text)) {}
    const std::wstring& Text() const noexcept { return m_text; }

private:
    std::wstring m_text;
};

/// One compiled expression of the ECMAScript grammar. Ignoring case folds A to Z.
class GuardedRegex {
public:
    GuardedRegex() = default;
    /// @throws RegexFault for a malformed pattern, one of more than 4,096 units, and one nested deeper than 500
    GuardedRegex(const std::wstring& pattern, bool isCaseSensitive);

    /// Replaces every match in `text`, by the ECMAScript format rules, into `result`. After a fault `result` is
    /// meaningless. One million steps are allowed for a text: 12 to 50 ms. The live preview and the run have the same
    /// limit, so that the run does what the preview showed.
    RuleFault Replace(const std::wstring& text, const std::wstring& replacement, std::wstring& result) const;

private:
    std::wregex m_regex;
};

}  // namespace BatchRename
