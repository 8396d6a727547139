// session.h - the host with a library in it: everything made in order, and ended in the opposite one; and its message
// loop, for extensions that keep a window of their own open after their command.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/app/command_line.h"
#include "host/app/host_state.h"
#include "host/app/loaded_library.h"
#include "host/app/run.h"
#include "host/contract/extension_services.h"

namespace QVHost {

/// What the host has, without a library in it.
/// @throws HostError when the log file cannot be opened
HostState MakeHostState(const HostOptions& options, const HostEnvironment& environment, Output& output);

/// "" for a variable that is not set.
std::wstring EnvironmentText(const wchar_t* name);

/// The library to load: the one that the options name, else the one beside the program.
std::wstring LibraryPath(const HostOptions& options, const HostEnvironment& environment);

/// The texts of the language file that the options name, else of one beside the program: for windows the one in the
/// user's language, where there is such a one, and the English one for everything else. What cannot be read is noted.
/// @throws UsageError when the file that the options name cannot be read
void ReadLanguage(LanguageTexts& texts, const HostOptions& options, const HostEnvironment& environment, Output& output);

class Session {
public:
    /// Loads the library and reads the language file; no extension is made yet.
    /// @throws UsageError when a file named on the command line does not exist
    /// @throws HostError when the library cannot be loaded
    Session(const HostOptions& options, HostEnvironment& environment, Output& output);

    /// Makes and starts every extension of the library.
    /// @throws HostError when one does not start
    void StartExtensions();
    /// One of them alone.
    /// @throws UsageError when there is none of this index
    LoadedExtension& StartExtension(uint32_t index);

    /// Gives the command to the extension that made it, or, when none did, to one after the other until it is handled:
    /// some commands have no entry in a menu. False when none handles it.
    bool RunCommand(uint32_t id);

    /// Ends what extensions have running on threads of their own, which may report to the panel and keep settings until
    /// then. They take no commands afterwards.
    void ShutdownExtensions();

    HostState& State() { return m_state; }
    const LoadedLibrary& Library() const { return m_library; }
    /// In the order in which they were started: after StartExtensions, that of the library.
    const std::vector<std::unique_ptr<LoadedExtension>>& Extensions() const { return m_extensions; }

private:
    HostState m_state;
    LoadedLibrary m_library;
    std::vector<std::unique_ptr<HostServices>> m_services;
    std::vector<std::unique_ptr<LoadedExtension>> m_extensions;
};

/// True when this process has administrator rights.
bool IsProcessElevated();

/// True while a thread of this process other than the calling one shows a window.
bool HasWindowsOfOtherThreads();

/// Handles messages and queued commands of this thread for as long as `goesOn` says so; it is asked at least ten times
/// a second. Messages are offered to the extensions first, then to `translate`, where there is one: true ends the
/// matter.
void PumpWhile(Session& session, const std::function<bool()>& goesOn, const std::function<bool(MSG&)>& translate = {});

}  // namespace QVHost
