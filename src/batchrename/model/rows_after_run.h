// rows_after_run.h - the rows as they are once a run has renamed them.
#pragma once

#include <vector>

#include "batchrename/run/rename_run.h"

namespace BatchRename {

/// Copies of the rows under the names that they have now, ready for another rule. Rows within a folder that was renamed
/// by the same run follow it.
RenameItems RowsAfterRun(const RenameItems& rows, const std::vector<RowOutcome>& outcomes);

}  // namespace BatchRename
