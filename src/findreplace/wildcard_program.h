// wildcard_program.h - a wildcard pattern read into what can be searched with: the steps of all ways through it, and
// the same without counts where there is such a pattern.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "textio/byte_search.h"

namespace QVFindAndReplace {

/// One step of a compiled pattern. Targets are relative, so that a piece of program can be copied as it is.
template <class CharT>
struct State {
    enum class Kind : uint8_t {
        Unit,   // this character, then the next state
        Any,    // any character but a line break, then the next state
        Split,  // the next state first, then the one at `target`
        Jump,   // the one at `target`
    };
    Kind kind;
    CharT unit = 0;
    int32_t target = 0;
};

template <class CharT>
using Program = std::vector<State<CharT>>;

/// What a pattern comes to.
template <class CharT>
struct Compiled {
    Program<CharT> program;
    /// The same pattern without counts, where there is such a one: "x{3}?{2,}" is "xxx??*".
    std::optional<std::basic_string<CharT>> flat = std::basic_string<CharT>();
    /// The longest run of characters that every hit holds.
    std::basic_string<CharT> required;
};

/// `folding`: null where case counts. @throws WildcardError
template <class CharT>
Compiled<CharT> CompileWildcard(const std::basic_string<CharT>& pattern, const QVUtils::CaseFolding<CharT>* folding);

}  // namespace QVFindAndReplace
