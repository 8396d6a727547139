// create_link_command.h - "CreateLink" as a custom command, and the elevated request that makes a link.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// LNKTYPE, LNKSRC (the link) and LNKTRG (what it leads to) must be given, and the target must exist; otherwise nothing
/// happens and the result is 0. The call's result code is the link's error, 5 where the system misses a privilege
/// (1314); without ASADMIN it is also the result text. With ASADMIN the link is made in the elevated process; in a host
/// that cannot elevate, or is elevated already, the result is 0 and nothing is made. Nonzero when the link was made.
uint32_t RunCreateLinkCommand(Quorvane::SDK::IHostServices& host, Quorvane::SDK::ICustomCommandCall& call);

/// Request 5004. Replies with the link's error; with 87, and without a link, to a message that is cut off, too long, or
/// has another value than 0 and 1 for the folder.
uint32_t AnswerCreateLinkRequest(Quorvane::SDK::IHostServices& host, Quorvane::SDK::IRequestMessage& message);

}  // namespace FileUtils
