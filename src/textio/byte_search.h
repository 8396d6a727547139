// byte_search.h - searching text at the memory's speed. The one place that knows the processor's wide registers; every
// function here gives exactly what the obvious loop over single units would give.
#pragma once

#include <cstddef>
#include <cstdint>

namespace QVUtils {

/// The case of the letters A to Z and of nothing else. Find and replace uses it wherever it ignores case in 16-bit text
/// and in wildcards, so that both agree and do not depend on the user's language.
template <class CharT>
constexpr CharT FoldCase(CharT unit) {
    return unit >= CharT('A') && unit <= CharT('Z') ? static_cast<CharT>(unit + 0x20) : unit;
}

// All take the text as [begin, end) and give a pointer into it, or `end` when there is no hit. CharT is a type of one
// or two bytes: char, wchar_t on Windows, char16_t elsewhere.

/// The first CR or LF.
template <class CharT>
const CharT* FindLineBreak(const CharT* begin, const CharT* end);

/// The first unit equal to `unit`.
template <class CharT>
const CharT* FindUnit(const CharT* begin, const CharT* end, CharT unit);

/// The first place where the `length` units of `item` stand; `begin` for an empty item. With `ignoreCase`, A to Z equal
/// a to z. Time: one look at each unit plus one comparison for each place where the item's first and last unit fit.
template <class CharT>
const CharT* FindSequence(const CharT* begin, const CharT* end, const CharT* item, size_t length, bool ignoreCase);

/// The last such place; `end` for an empty item.
template <class CharT>
const CharT* FindLastSequence(const CharT* begin, const CharT* end, const CharT* item, size_t length, bool ignoreCase);

}  // namespace QVUtils
