// sort_key.h - cuts the sort key out of a line and reads numbers. Pure functions on text, for both widths.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace QVLineSorter {

/// White space as the C runtime's "C" locale knows it. The wide functions know more characters; keys follow one rule in
/// both widths, whatever the process's locale.
template <class CharT>
constexpr bool IsWhiteSpace(CharT unit) {
    return unit == CharT(' ') || (unit >= CharT('\t') && unit <= CharT('\r'));
}

struct ParsedInteger {
    int64_t value = 0;
    size_t length = 0;  // characters read, white space and sign included; 0 when there was no digit
};

/// A base-10 integer at the text's start in the manner of strtoll: white space, a sign, digits. What does not fit into
/// 64 bits gives the nearest end of their range.
template <class CharT>
constexpr ParsedInteger ParseInteger(std::basic_string_view<CharT> text) {
    size_t position = 0;
    while (position < text.size() && IsWhiteSpace(text[position])) ++position;
    bool isNegative = false;
    if (position < text.size() && (text[position] == CharT('-') || text[position] == CharT('+'))) {
        isNegative = text[position] == CharT('-');
        ++position;
    }
    const uint64_t limit = static_cast<uint64_t>(std::numeric_limits<int64_t>::max()) + (isNegative ? 1 : 0);
    const size_t digits = position;
    uint64_t number = 0;
    for (; position < text.size() && text[position] >= CharT('0') && text[position] <= CharT('9'); ++position) {
        const auto digit = static_cast<uint64_t>(text[position] - CharT('0'));
        number = number > (limit - digit) / 10 ? limit : number * 10 + digit;
    }
    if (position == digits) return {};
    // Two's complement: the magnitude of the smallest number has no positive twin.
    return {static_cast<int64_t>(isNegative ? 0 - number : number), position};
}

/// Which part of a line is its key, in the terms of one character type.
template <class CharT>
struct KeyRule {
    enum class Kind { FromOffset, Substring, Item };

    Kind kind = Kind::FromOffset;
    uint32_t lineOffset = 0;
    bool skipLeadingSpaces = false;
    uint32_t substringLength = 0;    // 0: the substring ends by one of the next two
    bool endAtWhiteSpace = false;    // the first space or tab
    bool endAtCharacter = false;     // the first separator
    std::optional<CharT> separator;  // none: matches nothing, because this width has no such character
    uint32_t itemNumber = 0;
};

/// A key's place in its line, in characters. Length 0 means to the end of the line.
struct KeySpan {
    uint32_t offset = 0;
    uint32_t length = 0;
    bool isMissing = false;  // the line ends before the key's place, or has too few items
    bool operator==(const KeySpan&) const = default;
};

/// Finds the key of one line (without its line break, shorter than 2^32 characters).
///
/// A line that ends before the offset has an empty key at its end. A substring or an item that comes out empty, such as
/// the one between two separators side by side, has length 0 and so runs to the end of the line. compatibility: 13
template <class CharT>
KeySpan FindKey(std::basic_string_view<CharT> line, const KeyRule<CharT>& rule);

/// The number key: what ParseInteger reads from the first `longest` characters (0: from all) after the key's start.
/// The key's own length does not matter. Nothing when there is no number: it counts as 0.
template <class CharT>
std::optional<int64_t> NumberKey(std::basic_string_view<CharT> fromKey, uint32_t longest) {
    const ParsedInteger number = ParseInteger(longest == 0 ? fromKey : fromKey.substr(0, longest));
    return number.length == 0 ? std::nullopt : std::optional(number.value);
}

}  // namespace QVLineSorter
