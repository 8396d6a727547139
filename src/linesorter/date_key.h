// date_key.h - reads a date from a line by a format and turns it into a time value. One implementation for 8-bit and
// for 16-bit text. Knows nothing of lines and requests.
#pragma once

#include <cstdint>
#include <string_view>

namespace QVLineSorter {

/// Calendar fields as the C runtime counts them.
struct CalendarFields {
    int32_t second = 0;
    int32_t minute = 0;
    int32_t hour = 0;
    int32_t dayOfMonth = 0;
    int32_t month = 0;      // 0 to 11
    int32_t year = 0;       // from 1900
    int32_t dayOfWeek = 0;  // 0 is Sunday
    int32_t dayOfYear = 0;  // from 0
    int32_t daylightSaving = 0;
    bool operator==(const CalendarFields&) const = default;
};

/// The conversion letter for which a format must be refused before anything is sorted ('Z' or 'c', also after the
/// modifiers E and O), or 0.
wchar_t FindUnsupportedConversion(std::wstring_view format);

/// Reads `text` by `format`: a percent sign and a letter stand for a part of the date, white space for any amount of
/// white space, anything else for itself. Returns how many characters of the text were read, or `kNoDate` when it does
/// not fit; fields read until then stay set. Never looks beyond the text's end.
///
/// Conversions: %% %A %a %B %b %h %C %d %e %H %k %I %l %j %M %m %n %p %S %t %U %V %W %u %w %Y %y %D %R %T %X %r %x.
/// Numbers may have white space and a sign before them. An unknown letter takes a percent sign from the text, or skips
/// one character and takes itself.
template <class CharT>
size_t ParseDate(std::basic_string_view<CharT> text, std::basic_string_view<CharT> format, CalendarFields& fields);
inline constexpr size_t kNoDate = static_cast<size_t>(-1);

/// The key of what is no date, or lies before 1970.
inline constexpr int64_t kNoDateKey = -1;

/// Gives lines their date keys. Remembers the last day's midnight, since the runtime's conversion costs more than all
/// the rest.
class DateKeyReader {
public:
    /// Seconds since 1970 in UTC, the date taken as local time, or kNoDateKey. A text that
    /// does not fit gives the key of the fields read until then.
    template <class CharT>
    int64_t Read(std::basic_string_view<CharT> text, std::basic_string_view<CharT> format);

private:
    int64_t TimeOf(const CalendarFields& fields);

    CalendarFields m_day;  // year, month and day of m_midnight
    int64_t m_midnight = -1;
};

}  // namespace QVLineSorter
