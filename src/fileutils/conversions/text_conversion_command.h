// text_conversion_command.h - line ends and tabs of the selected files, each replaced by its converted form.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// 30101: line ends to LF, 30102: to CR LF, 30103: to CR, 30110: tabs to spaces. Asks first, with the number of files;
/// 30110 then asks for the tab width. A file that fails is left as it was and named in the log. Always handled.
uint32_t RunTextConversion(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
