// property_texts.h - the properties of files that this host knows by name, as texts.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace QVHost {

/// The text of a property of the file or folder at `path`; nothing for a name that is none of these. Names go without
/// regard to case. A value that cannot be had (a folder has no size) is "".
///
/// - `size`: bytes. Formats: "" or "B" plain; "KB", "MB", "GB" in units of 1024, rounded up.
/// - `modified`, `created`, `accessed`: local time. The format's yyyy, yy, MM, M, dd, d, HH, H, mm, m, ss and s stand
/// for
///   the parts; everything else stays as it is. "" means yyyy-MM-dd.
std::optional<std::wstring> PropertyText(const std::wstring& path, const std::wstring& name,
                                         const std::wstring& format);

/// The name of a property, counted from 0; null beyond the last.
const wchar_t* PropertyName(size_t index);

/// `format` filled in; see above. The fields of the time are taken as they are.
struct DateParts {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};
std::wstring FormatDate(const DateParts& date, std::wstring_view format);

/// `bytes` in the unit; see above. An unknown unit counts as plain bytes.
std::wstring FormatSize(uint64_t bytes, std::wstring_view unit);

}  // namespace QVHost
