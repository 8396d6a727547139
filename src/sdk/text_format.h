// text_format.h - texts are named by number; the host resolves the numbers from its language files. Here the numbers,
// and how the placeholders of such a text are filled.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace Quorvane::SDK {

/// High 16 bits: the text number. Low 16 bits: a category letter.
using TextId = uint32_t;

constexpr TextId MakeTextId(uint32_t number, char category) {
    return number << 16 | static_cast<uint8_t>(category);
}

// One literal per category, so that text 2100 of category "m" reads 2100_m.
inline namespace TextIdLiterals {
constexpr TextId operator""_m(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'm');
}
constexpr TextId operator""_c(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'c');
}
constexpr TextId operator""_d(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'd');
}
constexpr TextId operator""_e(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'e');
}
constexpr TextId operator""_g(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'g');
}
constexpr TextId operator""_p(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'p');
}
}  // namespace TextIdLiterals

static_assert(2100_m == 0x0834006D);

inline constexpr TextId kNoText = 0;

/// One value for a placeholder: a number or a text.
class TextArgument {
public:
    TextArgument(int64_t number) : m_text(std::to_wstring(number)) {}
    TextArgument(uint64_t number) : m_text(std::to_wstring(number)) {}
    TextArgument(int number) : m_text(std::to_wstring(number)) {}
    TextArgument(uint32_t number) : m_text(std::to_wstring(number)) {}
    TextArgument(const std::wstring& text) : m_text(text) {}
    TextArgument(const wchar_t* text) : m_text(text ? text : L"") {}
    const std::wstring& Text() const { return m_text; }

private:
    std::wstring m_text;
};

/// `pattern` with its placeholders (%d, %u, %i, %s, with any of the length prefixes l, ll, h, I64) replaced in order by
/// the arguments and %% by a percent sign.
///
/// A language file is written by hand: whatever a placeholder's letter says, the argument is put there in its own form,
/// and a placeholder without an argument stays as it is. So a wrong text reads oddly, and never harms the host.
std::wstring FormatText(std::wstring_view pattern, std::initializer_list<TextArgument> arguments);

}  // namespace Quorvane::SDK
