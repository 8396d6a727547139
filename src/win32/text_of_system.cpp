// text_of_system.cpp - what text.h asks the system for: its table of letters, and its conversion of UTF-8.
#include <array>
#include <memory>

#include "win32/text.h"
#include "win32/windows.h"

namespace Win32 {
namespace {

constexpr size_t kUnits = 0x10000;
constexpr size_t kMostBytesOfAUnit = 3;  // a character beyond 16 bits has two units and four bytes

/// Every UTF-16 unit and what the system makes of it: asked for once, because a call for each name would cost more than
/// the rest of a rename rule.
class CaseTable {
public:
    explicit CaseTable(DWORD mapping) : m_units(std::make_unique<std::array<wchar_t, kUnits>>()) {
        auto all = std::make_unique<std::array<wchar_t, kUnits>>();
        for (size_t unit = 0; unit < kUnits; ++unit) (*all)[unit] = static_cast<wchar_t>(unit);
        *m_units = *all;
        // Zero is left out: the system could take it for the text's end. With this flag alone one unit becomes one
        // unit.
        LCMapStringW(LOCALE_INVARIANT, mapping, all->data() + 1, static_cast<int>(kUnits - 1), m_units->data() + 1,
                     static_cast<int>(kUnits - 1));
    }
    wchar_t operator[](wchar_t unit) const { return (*m_units)[unit]; }

private:
    std::unique_ptr<std::array<wchar_t, kUnits>> m_units;
};

}  // namespace

wchar_t UpperWide(wchar_t unit) {
    if (unit < 0x80) return UpperAscii(unit);
    static const CaseTable table(LCMAP_UPPERCASE);
    return table[unit];
}

wchar_t LowerWide(wchar_t unit) {
    if (unit < 0x80) return LowerAscii(unit);
    static const CaseTable table(LCMAP_LOWERCASE);
    return table[unit];
}

std::string ToUtf8(std::wstring_view text) {
    if (text.empty()) return {};
    std::string bytes(kMostBytesOfAUnit * text.size(), '\0');
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<size_t>(size));
    return bytes;
}

bool FromUtf8(std::string_view bytes, std::wstring& text) {
    text.resize(bytes.size());  // no character has more units than bytes
    if (bytes.empty()) return true;
    const int units = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()),
                                          text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(units));
    return units != 0;
}

std::optional<std::wstring> FromUtf8(std::string_view bytes) {
    std::wstring text;
    return FromUtf8(bytes, text) ? std::optional(std::move(text)) : std::nullopt;
}

std::wstring Wide(std::string_view bytes) {
    return FromUtf8(bytes).value_or(std::wstring());
}

}  // namespace Win32
