// take_ownership_command.h - makes the user the owner of the selected files and folders.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// The first failure is shown and ends it. The host is asked to show the new owners. Always handled.
uint32_t RunTakeOwnership(Quorvane::SDK::IHostServices& host, uint32_t id);

/// Request 5000. Replies with the first error; with 87, and without a change, to a malformed message. The owner is the
/// user of the elevated process.
uint32_t AnswerTakeOwnershipRequest(Quorvane::SDK::IHostServices& host, Quorvane::SDK::IRequestMessage& message);

}  // namespace FileUtils
