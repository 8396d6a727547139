// rename_preview.h - what a rename would make of its rows, printed and not done.
#pragma once

#include "host/rename/rename_host.h"
#include "host/rename/selected_rows.h"
#include "rename/rename_rule.h"

namespace QVHost {

/// Prints a line for each row, in their order. False when one would fail.
/// @throws UsageError for a path that leads to nothing; then nothing is printed
bool PrintPreview(SelectedRows& selection, BatchRename::RenameRule& rule, RenameHost& host);

}  // namespace QVHost
