// undo_command.h - qvhost undo: the sessions of earlier renames, listed, restored and deleted. Links the rooms of the
// extension, for the reason that rename_command.h gives.
#pragma once

#include "host/app/command_line.h"
#include "host/app/run.h"

namespace QVHost {

/// The exit status.
/// @throws UsageError
int RunUndo(const HostOptions& options, HostEnvironment& environment, Output& output);

}  // namespace QVHost
