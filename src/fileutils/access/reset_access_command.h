// reset_access_command.h - gives the selected files and folders the access rights that they inherit, and no others.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// Asks first. The first failure is shown and ends it. Always handled.
uint32_t RunResetAccess(Quorvane::SDK::IHostServices& host, uint32_t id);

/// Request 5003. Replies with the first error; with 87, and without a change, to a malformed message.
uint32_t AnswerResetAccessRequest(Quorvane::SDK::IHostServices& host, Quorvane::SDK::IRequestMessage& message);

}  // namespace FileUtils
