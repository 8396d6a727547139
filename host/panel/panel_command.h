// panel_command.h - `qvhost panel [FOLDER]`: the host as a window.
#pragma once

#include "host/app/command_line.h"
#include "host/app/session.h"

namespace QVHost {

/// Starts the extensions, shows the panel and handles messages until it is closed. The exit status.
/// @throws HostError when there is no window, or an extension does not start
int RunPanel(Session& session, const HostOptions& options);

}  // namespace QVHost
