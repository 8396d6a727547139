// subcommands.h - the functions that carry out the host's larger subcommands, each in a file named after it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/app/column_values.h"
#include "host/app/command_line.h"
#include "host/app/run.h"
#include "sdk/extension_info.h"
#include "sdk/plugin_interface.h"

namespace QVHost {

class CustomCommandTable;
class MenuModel;
class Session;

// `extensions`, `menus` and `commands`.
void PrintExtensions(Output& output, const std::vector<Quorvane::SDK::ExtensionInfo>& records);
void PrintMenus(Output& output, const MenuModel& menus);
void PrintCustomCommands(Output& output, const CustomCommandTable& table);

/// How `columns` prints: one row a file, one column for each property.
enum class ColumnFormat {
    Table,  // for people: aligned, under the columns' names
    Csv,    // comma-separated, under the columns' keys; cells in quotes where they must be
    Items,  // into the report, with the columns' keys; null for a file without the value
};

/// A server may take seconds for each owner's name, so it is asked before each file whether to stop; what is printed
/// then is whole, but holds the files so far alone.
void PrintColumns(Output& output, const ColumnValues& values, const std::vector<std::shared_ptr<FileItem>>& items,
                  ColumnFormat format, const std::function<bool()>& isStopped);

/// `panel`: starts the extensions, shows a folder in a window, or the folder of the paths with these selected, and
/// handles messages until that is closed. The exit status.
/// @throws HostError when there is no window, or an extension does not start
int RunPanel(Session& session, const HostOptions& options, std::istream& in);

/// `rename` and `undo`. The exit status. Unlike every other subcommand these two do not go through the library's
/// exports: the extension offers a window and nothing that a command line could call, so they link its modules instead.
/// @throws UsageError
int RunRename(const HostOptions& options, HostEnvironment& environment, Output& output);
int RunUndo(const HostOptions& options, HostEnvironment& environment, Output& output);

/// `send-to`: shortcuts to this program in the folder that the shell's menu shows. One that is there already is not
/// written again; a file of that name that is none of these shortcuts stays, and counts as failed. The exit status.
/// @throws HostError when the user has no such folder
int RunSendTo(const HostOptions& options, const HostEnvironment& environment, Output& output);

/// `selftest`: what the library needs of this machine, tried in a folder of its own. A line for each thing: "passed",
/// "failed" with the reason, or "not available here". The exit status: 1 when one failed.
/// @throws UsageError when the folder cannot be used
int RunSelfTest(const HostOptions& options, const HostEnvironment& environment, Output& output);

/// `completion`: a script for the shell named, made of what the command line knows and of the commands in `table`. The
/// exit status.
/// @throws UsageError for another shell
int PrintCompletion(const HostOptions& options, const CustomCommandTable& table, Output& output);

/// `elevated-server`: performs the requests that come through the pipe on this process's own copy of the library, one
/// after the other, until the pipe ends. The exit status.
///
/// Loads only a library beside this program, starts no other extension than the one asked for, keeps no settings and
/// writes no log of its own: what there is to log goes back with the reply. Serves the pipe only if this program made
/// it, as the user of this desktop. A malformed message is answered with 87, a request that the extension does not know
/// with 1; the next one is served all the same.
/// @throws UsageError, HostError
int RunElevatedServer(const HostOptions& options, HostEnvironment& environment);

}  // namespace QVHost
