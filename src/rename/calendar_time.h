// calendar_time.h - a moment as calendar fields, as rules and undo sessions keep it.
#pragma once

#include <cstdint>

namespace BatchRename {

struct CalendarTime {
    int year = 1970;
    int month = 1;      // 1 to 12
    int dayOfWeek = 4;  // 0: Sunday
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;

    bool operator==(const CalendarTime&) const = default;
};

/// Seconds since 1970-01-01 00:00:00, the fields taken as they stand, without a time zone. 0 for fields that are no
/// date of the years 1601 to 30827, which is what the system can convert.
int64_t SecondsOf(const CalendarTime& time);

/// The opposite. Seconds outside those years give 1970-01-01.
CalendarTime TimeOfSeconds(int64_t seconds);

}  // namespace BatchRename
