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
    uint64_t states = 0;      // of the compiled expression
    uint64_t groups = 0;      // that keep what they match; counts do not multiply them
    uint64_t lookaheads = 0;  // for each that is tried the engine allocates and fills arrays by states and by groups
    uint64_t uncheckedCalls = 0;  // that the engine can nest without a comparison of two places of the text
    uint64_t longestClass = 0;    // units between "[" and "]"
};

PatternSize PatternSizeOf(std::wstring_view pattern);

}  // namespace BatchRename
