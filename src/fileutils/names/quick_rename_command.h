// quick_rename_command.h - the quick renames of the panel's selection, after one question.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// `id` says what becomes of the names: see quick_rename.h. Items whose name would stay are left out, and when none is
/// left nothing is asked. Always handled.
uint32_t RunQuickRename(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
