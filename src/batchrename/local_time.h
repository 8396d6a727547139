// local_time.h - the clock that rules, runs and undo sessions are given the time from.
#pragma once

#include "rename/calendar_time.h"

namespace BatchRename {

/// The machine's local time.
CalendarTime LocalTimeNow();

}  // namespace BatchRename
