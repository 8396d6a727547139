// listings.h - what `qvhost extensions`, `menus` and `commands` print.
#pragma once

#include <vector>

#include "host/app/output.h"
#include "host/contract/custom_commands.h"
#include "host/contract/menus.h"
#include "sdk/extension_info.h"

namespace QVHost {

void PrintExtensions(Output& output, const std::vector<Quorvane::SDK::ExtensionInfo>& records);
void PrintMenus(Output& output, const MenuModel& menus);
void PrintCustomCommands(Output& output, const CustomCommandTable& table);

}  // namespace QVHost
