// case_conversion.h - upper and lower case for names: the rule's case options, and the folding by which the file system
// takes two names for one.
#pragma once

#include <cstdint>
#include <string>

namespace BatchRename {

/// Applies the lowest case bit of `options` (RenameOption) to a new name and extension.
///
/// The plain conversions change only the letters A to Z; the first letters that CapitaliseWords and Sentence make know
/// all letters, and so does the lowering of CapitaliseWords. The difference is on purpose: it is what people's rules
/// and profiles were made for.
void ApplyCase(std::wstring& name, std::wstring& extension, uint32_t options);

/// A to Z only.
constexpr wchar_t LowerAscii(wchar_t unit) {
    return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + (L'a' - L'A')) : unit;
}
constexpr wchar_t UpperAscii(wchar_t unit) {
    return unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - (L'a' - L'A')) : unit;
}

/// By the system's table of single characters, whatever the locale. Halves of surrogate pairs stay as they are.
wchar_t UpperWide(wchar_t unit);
wchar_t LowerWide(wchar_t unit);

}  // namespace BatchRename
