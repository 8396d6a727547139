// rule_context.h - what the batch renamer keeps from one window to the next: the rule as it was left, and the journal;
// and the clock that they are given the time from.
#pragma once

#include <atomic>
#include <cstdint>

#include "batchrename/run/undo_store.h"
#include "rename/calendar_time.h"
#include "rename/rename_rule.h"

namespace BatchRename {

/// The machine's local time.
CalendarTime LocalTimeNow();

struct RuleContext {
    RuleDefinition rule;                  // the counter begins with start 1, step 1 and 2 digits
    UndoStore undo;                       // of the window's thread, and of a run while there is one
    std::atomic<uint16_t> hostValue = 0;  // the number under which the host keeps our texts
    std::atomic<bool> isStopped = false;  // no further row of a run is to begin
};

}  // namespace BatchRename
