// base64_command.h - selected files as Base64 text with a MIME header, and such files back.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// 30210: each file a.txt is encoded into a.txt.b64 beside it. 30211: each file is decoded into the name its header
/// gives, in its own folder, or into its own name without the last extension. An existing target is asked about; the
/// file itself is never a target. A file that fails is named in the log. Always handled.
uint32_t RunBase64(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
