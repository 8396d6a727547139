// command_table.h - every command of File Utils, declared once. Menus, registration and dispatch walk these tables.
#pragma once

#include <cstdint>
#include <span>

#include "fileutils/commands.h"
#include "sdk/host_services.h"

namespace FileUtils {

/// Carries out a menu command. Nonzero when it was handled.
using CommandHandler = uint32_t (*)(Quorvane::SDK::IHostServices& host, uint32_t id);

/// Carries out a custom command.
using CustomCommandHandler = CallResult (*)(Quorvane::SDK::IHostServices& host,
                                            Quorvane::SDK::ICustomCommandCall& call);

/// Carries out the elevated side of a command. Nonzero when it was handled.
using ElevatedHandler = uint32_t (*)(Quorvane::SDK::IHostServices& host, Quorvane::SDK::IRequestMessage& message);

inline constexpr uint32_t kCommandFlags = 0x801;
inline constexpr uint32_t kCustomCommandFlags = 0x100000;
inline constexpr uint32_t kCustomCommandMoreFlags = 2048;

struct CommandRow {
    uint32_t id;
    Quorvane::SDK::TextId subMenu;
    Quorvane::SDK::TextId text;  // of the menu entry and of its tooltip
    uint32_t shortcut;
    CommandHandler handler;
};

struct ParameterRow {
    const char* name;
    uint32_t flags;  // ParameterFlags
    Quorvane::SDK::TextId description;
};

struct CustomCommandRow {
    const char* name;
    uint32_t id;
    Quorvane::SDK::TextId description;
    std::span<const ParameterRow> parameters;
    CustomCommandHandler handler;
};

struct ElevatedRow {
    uint32_t requestId;
    ElevatedHandler handler;
};

/// Commands that are handled whether or not a menu has them, by ranges of ids.
struct CommandRange {
    uint32_t firstId;
    uint32_t lastId;
    CommandHandler handler;
};

/// In the order of the menus; rows of one submenu stand together.
std::span<const CommandRow> MenuCommands();
std::span<const CommandRange> CommandsWithoutEntry();
/// In the order of registration.
std::span<const CustomCommandRow> CustomCommands();
std::span<const ElevatedRow> ElevatedRequests();

}  // namespace FileUtils
