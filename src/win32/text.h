// text.h - what texts need in every module: letter case, numbers, surrogates, UTF-8. Each rule is here once.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace Win32 {

/// A to Z only, in both widths.
template <class CharT>
constexpr CharT LowerAscii(CharT unit) {
    return unit >= CharT('A') && unit <= CharT('Z') ? static_cast<CharT>(unit + ('a' - 'A')) : unit;
}
template <class CharT>
constexpr CharT UpperAscii(CharT unit) {
    return unit >= CharT('a') && unit <= CharT('z') ? static_cast<CharT>(unit - ('a' - 'A')) : unit;
}

/// By the system's table of single characters, the same for every user: a name must not come out otherwise on a Turkish
/// system. Halves of surrogate pairs, and "ß", stay as they are.
wchar_t UpperWide(wchar_t unit);
wchar_t LowerWide(wchar_t unit);

/// Unit by unit, as above; the length never changes.
std::wstring ToUpperCase(std::wstring_view text);
std::wstring ToLowerCase(std::wstring_view text);
/// Equal once both are in upper case. Two names of one folder that are equal so are one.
bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right);

/// UTF-16 writes a character beyond 16 bits as a high and a low surrogate.
constexpr bool IsHighSurrogate(wchar_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(wchar_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
constexpr bool IsSurrogate(wchar_t unit) {
    return IsHighSurrogate(unit) || IsLowSurrogate(unit);
}

template <class CharT>
constexpr bool IsDigit(CharT unit) {
    return unit >= CharT('0') && unit <= CharT('9');
}

/// Without blanks and control characters at its ends.
std::wstring_view Trimmed(std::wstring_view text);

/// The decimal number that `text` begins with, after blanks and a sign, as the C runtime reads it: 0 when there is
/// none; one beyond the type's range counts as the range's end. With `end`, how many units it takes, 0 for none.
template <std::integral Integer>
Integer LeadingNumber(std::wstring_view text, size_t* end = nullptr) {
    using Limits = std::numeric_limits<Integer>;
    size_t begin = 0;
    while (begin < text.size() && (text[begin] == L' ' || (text[begin] >= L'\t' && text[begin] <= L'\r'))) ++begin;
    if (begin < text.size() && text[begin] == L'+') ++begin;
    std::string digits;
    for (size_t at = begin; at < text.size() && (IsDigit(text[at]) || (at == begin && text[at] == L'-')); ++at)
        digits += static_cast<char>(text[at]);
    Integer number = 0;
    const auto [last, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (end) *end = last == digits.data() ? 0 : begin + digits.size();
    if (error == std::errc::result_out_of_range) return digits.front() == '-' ? Limits::min() : Limits::max();
    return number;
}

/// The decimal number that is the whole text: digits, after a "-" where the type has a sign. Nothing for any other text
/// and for a number that the type cannot hold.
template <std::integral Integer>
std::optional<Integer> WholeNumber(std::wstring_view text) {
    std::string digits;
    for (const wchar_t unit : text) digits += unit < 0x80 ? static_cast<char>(unit) : '?';
    Integer number = 0;
    const auto [last, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || last != digits.data() + digits.size()) return std::nullopt;
    return number;
}

/// For showing: a lone surrogate comes out as the replacement character.
std::string ToUtf8(std::wstring_view text);

/// Nothing when `bytes` are not valid UTF-8.
std::optional<std::wstring> FromUtf8(std::string_view bytes);
/// The same into a text that serves again for many; false when they are not.
bool FromUtf8(std::string_view bytes, std::wstring& text);
/// For names and messages of programs and libraries: empty when they are not valid UTF-8.
std::wstring Wide(std::string_view bytes);

}  // namespace Win32
