// windows_bench.h - what a person waits for in a window. No screen is needed.
#pragma once

#include <string_view>
#include <vector>

#include "rename/rename_plan.h"

namespace Bench {

/// Prints a line for each measurement with `wanted` in its name: processor time from a key in Batch Rename to the whole
/// preview of `rows`, whose folders have `listings`, and the time from a command over 20,000 files to its dialog.
void ShowWindows(std::string_view wanted, const BatchRename::RenameItems& rows,
                 const std::vector<BatchRename::FolderNames>& listings);

}  // namespace Bench
