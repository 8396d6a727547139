// host_run.h - one run of the stand-in host in the test's process. For tests that link the host's module.
#pragma once

#include <algorithm>
#include <atomic>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "host/app/run.h"
#include "support/second_process.h"
#include "win32/handle.h"
#include "win32/path.h"

#include <shellapi.h>

namespace QVTest {

struct HostRun {
    int status = -1;
    std::string out;
    std::string error;

    /// Log lines, results and notes.
    std::string Said() const { return out + error; }
};

/// No questions are asked, and nobody watches progress.
inline QVHost::HostEnvironment EnvironmentOf(std::ostream& out, std::ostream& error, std::istream& in,
                                             const std::wstring& program) {
    return {.out = out,
            .error = error,
            .in = in,
            .program = program,
            .outIsTerminal = false,
            .readAnswer = {},
            .progressWatch = {}};
}

/// `program` is qvhost.exe, whose neighbours are the library and the texts; `input` is on the standard input. With
/// `lines`, questions are asked on a console that answers so and then ends. `isStopped`: what Ctrl+C sets.
inline HostRun RunHost(const std::wstring& program, const std::vector<std::wstring>& arguments,
                       const std::string& input = {}, const std::optional<std::vector<std::wstring>>& lines = {},
                       const std::atomic<bool>* isStopped = nullptr) {
    std::ostringstream out;
    std::ostringstream error;
    std::istringstream in(input);
    QVHost::HostEnvironment environment = EnvironmentOf(out, error, in, program);
    environment.progressWatch.isCancelled = isStopped;
    if (lines)
        environment.readAnswer = [&, next = size_t{0}]() mutable -> std::optional<std::wstring> {
            return next < lines->size() ? std::optional((*lines)[next++]) : std::nullopt;
        };
    const int status = QVHost::RunQvHost(arguments, environment);
    return {status, out.str(), error.str()};
}

/// This program as the second process of the host in it.
inline int ServeAsHost() {
    int count = 0;
    const Win32::LocalMemory words(CommandLineToArgvW(GetCommandLineW(), &count));
    auto* const* const first = static_cast<wchar_t* const*>(words.Get());
    const std::vector<std::wstring> arguments(first + 1, first + count);
    // The library lies beside the program that this one stands for.
    const auto library = std::ranges::find(arguments, L"--library");
    const std::wstring folder(library == arguments.end() ? L"" : Win32::FolderOf(*(library + 1)));
    return RunHost(folder + L"qvhost.exe", arguments).status;
}
inline const bool kServesAsSecondProcess = (ServeAsSecondProcess() = ServeAsHost, true);

}  // namespace QVTest
