// file_name.h - the one rule of what can be the name of a file or folder, and if a text cannot, why and where.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Win32 {

enum class NameFault : uint8_t {
    None,
    Empty,
    InvalidCharacter,    // a separator, a wildcard, a colon (drives and streams), a quote, a control character
    LoneSurrogate,       // half of a surrogate pair: most programs could not open such a file
    Reserved,            // a device's name, whatever extension follows it
    TrailingDotOrBlank,  // the system would drop it and mean another file; "." and ".." too
    TooLong,
};

struct NameCheck {
    NameFault fault = NameFault::None;
    size_t position = 0;  // of the unit at fault, where there is one
};

/// The longest name that the file systems take, in UTF-16 units.
inline constexpr size_t kLongestName = 255;

/// The first fault of `name` in the order above. Without a fault the text is one name within a folder and nothing else:
/// names come from files, scripts and archives that anybody may have written.
NameCheck CheckFileName(std::wstring_view name);
inline bool IsFileName(std::wstring_view name) {
    return CheckFileName(name).fault == NameFault::None;
}

/// True for a name that is in no path as it stands, because the system takes it for a device's or drops its end, though
/// an item can have it: see VerbatimPath.
bool IsVerbatimName(std::wstring_view name);

/// In words, with the character where one is at fault.
std::wstring DescribeNameFault(std::wstring_view name, const NameCheck& check);

/// True for a unit that no name may hold.
bool IsForbiddenInNames(wchar_t unit);

}  // namespace Win32
