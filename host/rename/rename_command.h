// rename_command.h - qvhost rename: batch renaming from the command line.
#pragma once

#include "host/app/command_line.h"
#include "host/app/run.h"

namespace QVHost {

/// The exit status. Unlike every other command of this host, this one and `undo` do not go through the library's
/// exports: the extension offers a window and nothing that a command line could call, so they link its rooms instead.
/// @throws UsageError
int RunRename(const HostOptions& options, HostEnvironment& environment, Output& output);

}  // namespace QVHost
