// regex.h - regular expressions for names that are typed live in somebody else's process: what matches is what the
// standard library's expressions match, but no expression and no text takes more than a bounded time, and nothing needs
// the stack, of which a host may have little. The standard library's own matcher recurses for every character, and can
// run for days.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "rename/rename_item.h"

namespace BatchRename {

class RegexMatcher;
struct RegexProgram;

/// No name and no path is longer; a text that grows beyond it is refused. UTF-16 units.
inline constexpr size_t kLongestText = 32767;

/// A pattern that does not compile; the text says why in words for the user.
class RegexFault : public std::runtime_error {
public:
    explicit RegexFault(std::wstring text)
        : std::runtime_error("invalid regular expression"), m_text(std::move(text)) {}
    const std::wstring& Text() const noexcept { return m_text; }

private:
    std::wstring m_text;
};

/// One compiled expression of the ECMAScript grammar. Ignoring case folds A to Z.
class Regex {
public:
    /// @throws RegexFault for a malformed pattern, and one of more than 100,000 states
    Regex(const std::wstring& pattern, bool isCaseSensitive);
    ~Regex();
    Regex(Regex&& other) noexcept;
    Regex& operator=(Regex&& other) noexcept;

    /// Replaces every match in `text`, by the ECMAScript format rules, into `result`. After a fault `result` is
    /// meaningless. The steps allowed for a text take some 50 ms at most. The live preview and the run have the same
    /// limit, so that the run does what the preview showed.
    RuleFault Replace(std::wstring_view text, std::wstring_view replacement, std::wstring& result,
                      int64_t steps = kStepsForAText);
    /// Whether there was a match in the text of the last Replace that had no fault.
    bool HasMatched() const { return m_hasMatched; }

    static constexpr int64_t kStepsForAText = 4'000'000;

private:
    std::unique_ptr<const RegexProgram> m_program;
    std::unique_ptr<RegexMatcher> m_matcher;  // kept for its memory
    bool m_hasMatched = false;
};

}  // namespace BatchRename
