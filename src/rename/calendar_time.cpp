#include "rename/calendar_time.h"

#include <chrono>

namespace BatchRename {
namespace {

constexpr int kFirstYear = 1601;
constexpr int kLastYear = 30827;
constexpr int64_t kSecondsADay = 24 * 60 * 60;

}  // namespace

int64_t SecondsOf(const CalendarTime& time) {
    const std::chrono::year_month_day date(std::chrono::year(time.year),
                                           std::chrono::month(static_cast<unsigned>(time.month)),
                                           std::chrono::day(static_cast<unsigned>(time.day)));
    const bool isTime = time.hour >= 0 && time.hour < 24 && time.minute >= 0 && time.minute < 60 && time.second >= 0 &&
                        time.second < 60;
    if (!date.ok() || time.year < kFirstYear || time.year > kLastYear || !isTime) return 0;
    const int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
    return days * kSecondsADay + time.hour * 3600 + time.minute * 60 + time.second;
}

CalendarTime TimeOfSeconds(int64_t seconds) {
    // std::chrono's years end at 32767; beyond the system's own range nothing is a date here.
    constexpr int64_t kFirst = -11644473600;
    constexpr int64_t kLast = 910670515199;
    if (seconds < kFirst || seconds > kLast) return {};
    int64_t days = seconds / kSecondsADay;
    int64_t rest = seconds % kSecondsADay;
    if (rest < 0) {
        rest += kSecondsADay;
        --days;
    }
    const std::chrono::sys_days at{std::chrono::days(days)};
    const std::chrono::year_month_day date(at);
    CalendarTime time;
    time.year = static_cast<int>(date.year());
    time.month = static_cast<int>(static_cast<unsigned>(date.month()));
    time.day = static_cast<int>(static_cast<unsigned>(date.day()));
    time.dayOfWeek = static_cast<int>(std::chrono::weekday(at).c_encoding());
    time.hour = static_cast<int>(rest / 3600);
    time.minute = static_cast<int>(rest / 60 % 60);
    time.second = static_cast<int>(rest % 60);
    return time;
}

}  // namespace BatchRename
