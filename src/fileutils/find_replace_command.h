// find_replace_command.h - find and replace as a custom command, for one file.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// "FindAndReplace": parameters to request, then the run over the one file. 0 when a required parameter is missing or
/// empty (without a message) or the file is not found; else 1, whatever became of the file. A run that the user
/// cancelled sets the call's result code to 1223.
uint32_t RunFindAndReplaceCommand(Quorvane::SDK::IHostServices& host, Quorvane::SDK::ICustomCommandCall& call);

}  // namespace FileUtils
