// text_format.h - fills the placeholders of a text that comes from a language file.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace Quorvane::SDK {

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
