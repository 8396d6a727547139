// replace_in_names_command.h - replaces text in the names of the panel's selection, asked for in a dialog.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// The dialog shows the new names beforehand, so nothing is asked behind it. Always handled.
uint32_t RunReplaceInNames(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
