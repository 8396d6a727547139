// rename_run.h - carries out a plan: hands its steps to the host, keeps the undo session true, and says for each row
// what became of it. The order of the steps is the planner's; the renames themselves are the host's.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "batchrename/run/rename_results.h"
#include "batchrename/run/undo_store.h"
#include "rename/rename_item.h"
#include "rename/rename_plan.h"
#include "rename/restore_rows.h"
#include "sdk/services.h"
#include "sdk/words.h"

namespace BatchRename {

/// What became of a row.
struct RowOutcome {
    uint32_t code = 0;        // RenameResult, else a Windows error code
    std::wstring reason;      // in words; "" for a row that was renamed
    std::wstring name;        // under which the item is now
    bool isNotBegun = false;  // the run was stopped before this row
};

/// What a run works with; all of it outlives the run.
struct RunEnvironment {
    Quorvane::SDK::IFileOperations& host;
    ListFolder list;
    IUndoJournal* journal = nullptr;               // null: the run is not recorded
    const std::atomic<bool>* isStopped = nullptr;  // looked at between rows, never inside a ring
    std::function<void()> onStep = {};             // after each rename that the host has carried out
    bool needsRecord = false;                      // what cannot be recorded is not renamed
    /// Before the first rename of a run that goes on without its record: the Windows error code that keeps it from it.
    std::function<void(uint32_t code)> onUnrecorded = {};
};

/// Lists a folder of this machine, and looks for an item of it.
FolderNames ListFolderOnDisk(const std::wstring& folder);
std::wstring FindItemOnDisk(const ItemIdentity& item, const std::wstring& folder);

/// The plan for the rows by what their folders hold now.
RenamePlan PlanNow(const RenameItems& rows, const ListFolder& list);

/// Renames the rows. Each gets exactly one result, by its number in `rows`, through `results`, its state code, and an
/// outcome here. `time`: of the session in the journal. Before the first rename the session with all planned rows is
/// written; afterwards it is rewritten with those that were renamed, or deleted when none was. A run that needs its
/// record and cannot have it fails all the rows that it would have renamed.
std::vector<RowOutcome> RunRenames(const RenameItems& rows, const CalendarTime& time, const RunEnvironment& environment,
                                   CRenameResultCallback& results);

/// Gives the items of a session their old names back, all or those that have a row; the outcomes go by `restore.rows`.
/// The session counts as restored when all its items have their old names, also when nothing was left to do. A session
/// that the journal knows is written anew before and after, or left as it is where no item changes its name and some
/// are missing. What cannot be recorded is not restored: nobody could mend it when it ends half-way.
std::vector<RowOutcome> RunRestore(BatchRenameUndo& session, const RestoreRows& restore,
                                   const RunEnvironment& environment, CRenameResultCallback& results);

/// "2 Renamed, 1 Ignored, 3 Failed": only what is not 0. "Restored" for a restore.
std::wstring RunStatusText(const CRenameResultCallback& results, bool isRestore, const Quorvane::SDK::Words& say = {});

}  // namespace BatchRename
