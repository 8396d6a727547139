#include "batchrename/rule_context.h"

#include "win32/windows.h"

namespace BatchRename {

CalendarTime LocalTimeNow() {
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDayOfWeek, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

}  // namespace BatchRename
