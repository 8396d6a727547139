// find_replace_command.h - find and replace over the selected files, asked for in a dialog, and as a custom command for
// one file.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// "FindAndReplace": parameters to request, then the run over the one file. 0 when a required parameter is missing or
/// empty (without a message) or the file is not found; else 1, whatever became of the file. A run that the user
/// cancelled sets the call's result code to 1223.
uint32_t RunFindAndReplaceCommand(Quorvane::SDK::IHostServices& host, Quorvane::SDK::ICustomCommandCall& call);

/// Shows the dialog with the last request and runs what it gives over the panel's selection. Nonzero also when the user
/// cancels, or nothing is selected.
uint32_t RunFindAndReplaceDialog(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
