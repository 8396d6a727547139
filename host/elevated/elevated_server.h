// elevated_server.h - the elevated second process: performs the requests that come through the pipe on its own copy of
// the library, one after the other, until the pipe ends.
#pragma once

#include <cstdint>
#include <string>

#include "sdk/plugin_interface.h"

namespace QVHost {

/// Serves the pipe, if this program made it: 5 when another one did, or when the system does not say, and 87 for a name
/// that RandomPipeName does not give. A malformed message is answered with 87, a request that the extension does not
/// know with 1; the next one is served all the same. Returns 0 when the other side has closed the pipe, else a Windows
/// error code.
uint32_t ServeElevatedRequests(const std::wstring& pipeName, uint32_t extensionIndex,
                               Quorvane::SDK::IPluginInterface& extension);

}  // namespace QVHost
