// pattern_size.h - how much the standard engine makes of a regular expression, counted from its pattern. The engine
// does not tell, and what it spends on some parts of an expression passes every comparison by which it could be
// stopped.
#pragma once

#include <cstdint>
#include <string_view>

namespace BatchRename {

/// Upper estimates for a pattern of the ECMAScript grammar; what stands under a count such as "{5}" is counted as
/// often. For a pattern that does not compile they mean nothing. None is above a million.
struct PatternSize {
    uint64_t states = 0;        // of the compiled expression
    uint64_t groups = 0;        // that keep what they match; counts do not multiply them
    uint64_t lookaheads = 0;    // each time that one is tried, the engine makes room for all states and groups
    uint64_t turns = 0;         // nested calls that the engine can make one in another without a look at the text
    uint64_t longestClass = 0;  // units between "[" and "]"
};

PatternSize PatternSizeOf(std::wstring_view pattern);

}  // namespace BatchRename
