// sort_lines_command.h - the line sorter over the selected files, asked for in a dialog, and as a custom command for
// one file.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// "SortLines": parameters to request, then the run over the one file.
///
/// Returns 1 when the file was sorted, else 0, with the reason as the call's result code: 2 for a file that is not
/// found, 87 for a bad parameter, 1223 when the user cancelled, else what the run met. A bad parameter leaves the file
/// untouched and writes one log line that names it; without "FILE" nothing happens at all. In "ITEMSEP" and "ENDCHAR"
/// the two characters \t stand for a tab, which a script cannot hold.
uint32_t RunSortLinesCommand(Quorvane::SDK::IHostServices& host, Quorvane::SDK::ICustomCommandCall& call);

/// Shows the dialog with the last request and sorts the panel's selection by what it gives. Nonzero also when the user
/// cancels, or nothing is selected.
uint32_t RunSortLinesDialog(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
