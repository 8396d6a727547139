// control_panel.h - shortcuts into the control panel: their tables, their menu, and opening one.
#pragma once

#include <cstdint>
#include <span>

#include "fileutils/command_table.h"
#include "fileutils/ids.h"
#include "sdk/host_services.h"

namespace FileUtils {

/// The menus have the texts; display names are for readers of the table.
struct ControlPanelCategory {
    const wchar_t* displayName;
    uint32_t number;
    Quorvane::SDK::TextId text;
};

/// Columns B and C of the table are data of its format: nothing reads them.
struct ControlPanelItem {
    const wchar_t* displayName;
    const wchar_t* canonicalName;  // without "Microsoft.", see hasPrefix
    bool hasPrefix;                // the canonical name follows "Microsoft."
    bool unreadB;
    bool unreadC;
    bool isInMenuD;  // in the menu of a host that uses column D
    bool isInMenuE;  // in the menu of a host that uses column E
    bool isClosed;   // cannot be opened
    uint32_t index;
    uint32_t category;
    Quorvane::SDK::TextId text;
};

/// Both in the order of the menus.
std::span<const ControlPanelCategory> ControlPanelCategories();
std::span<const ControlPanelItem> ControlPanelItems();

/// Adds the menu below `root`, into the submenu that another extension's tools are in. Adds nothing in a host that
/// cannot elevate.
void BuildControlPanelMenu(Quorvane::SDK::IHostServices& host, Quorvane::SDK::IMenuBuilder& builder,
                           Quorvane::SDK::Menu* root);

/// Starts a program with its arguments.
using LaunchProgram = void (*)(const wchar_t* program, const wchar_t* arguments);

/// Opens the item with this index, through the shell unless `launch` is given. Does nothing for an index that is none.
void OpenControlPanelItem(uint32_t index, LaunchProgram launch = nullptr);

/// A command from CommandId::FirstControlPanel to CommandId::LastControlPanel. Always handled, with or without a menu.
uint32_t RunControlPanelCommand(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
