// grant_access_command.h - gives an account access to the selected files and folders, asked for in a dialog.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// The first failure is shown and ends it. Always handled.
uint32_t RunGrantAccess(Quorvane::SDK::IHostServices& host, uint32_t id);

/// Request 5001. Replies with the first error; with 87, and without a change, to a malformed message.
uint32_t AnswerGrantAccessRequest(Quorvane::SDK::IHostServices& host, Quorvane::SDK::IRequestMessage& message);

}  // namespace FileUtils
