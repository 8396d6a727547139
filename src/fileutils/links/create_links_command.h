// create_links_command.h - links to the panel's selection, asked for in a dialog.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// Each link is logged; when some could not be made a message says how many. Always handled.
uint32_t RunCreateLinks(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
