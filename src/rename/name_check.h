// name_check.h - whether a text can be the name of a file or folder, and if not, why and where.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace BatchRename {

enum class NameFault : uint8_t {
    None,
    Empty,
    InvalidCharacter,  // a separator, a wildcard, a colon, a quote, a control character
    LoneSurrogate,     // half of a surrogate pair: most programs could not open such a file
    Reserved,          // a device's name, whatever extension follows it
    TrailingDotOrBlank,
    TooLong,
};

struct NameCheck {
    NameFault fault = NameFault::None;
    size_t position = 0;  // of the unit at fault, where there is one
};

/// The longest name that the file systems take, in UTF-16 units.
inline constexpr size_t kLongestName = 255;

/// The first fault of `name` in the order above.
NameCheck CheckName(std::wstring_view name);

/// In words, with the character where one is at fault.
std::wstring DescribeNameFault(std::wstring_view name, const NameCheck& check);

/// True for a unit that no name may hold.
bool IsForbiddenInNames(wchar_t unit);

/// Turns what no name may hold into "_": for values that come from elsewhere, which their user did not type. "\r\n" is
/// left: the rule takes line breaks out of the whole name.
void CleanForName(std::wstring& value);

}  // namespace BatchRename
