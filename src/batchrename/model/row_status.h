// row_status.h - what the list and the status bar say about rows, as text and as a mark. Free functions over verdicts
// and outcomes; drawing is the view's work.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "batchrename/run/rename_run.h"
#include "rename/rename_plan.h"

namespace BatchRename {

/// The state of a row at a glance; the view has an icon for each but None.
enum class RowMark : uint8_t { None, Change, Problem, Done };

RowMark MarkOfPlan(const RowPlan& plan);
RowMark MarkOfOutcome(const RowOutcome& outcome);

/// The status column before a run: "Will be renamed", "Unchanged", or why not.
std::wstring StatusOfPlan(const BatchRenameItem& row, const RowPlan& plan);
/// The status column after it.
std::wstring StatusOfOutcome(const RowOutcome& outcome, bool isRestore);

struct RowCounts {
    size_t all = 0;
    size_t changes = 0;
    size_t problems = 0;
};

/// "20 items, 12 will be renamed, 3 problems"
std::wstring TextOfCounts(const RowCounts& counts, bool isRestore);

/// The question before a run in which some rows cannot take part.
std::wstring QuestionBeforeRun(const RowCounts& counts);

/// What the status bar says after a run: the error while there is one, else the counts of the run.
std::wstring TextAfterRun(const std::wstring& error, const CRenameResultCallback& results, bool isRestore);

/// The next place with a problem after `from` (before it, when `isBack`), going round at the end; nothing when there
/// is none. `from` may be beyond the end: then the search begins at the first place, or at the last.
std::optional<size_t> NextProblem(const std::vector<RowMark>& marks, size_t from, bool isBack);

}  // namespace BatchRename
