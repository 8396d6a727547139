// rename_group_command.h - one new name for the files that share the focused file's name, each with its own extension.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// a.txt (focused), a.jpg and b.txt with the new name "c" become c.txt, c.jpg and b.txt. The extension is what follows
/// the last "."; names without it must be equal to the letter, case included. Folders are left alone, the focused one
/// too. The host's input dialog asks for the name and is itself the confirmation. Always handled.
uint32_t RunRenameGroup(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
