// host_run.h - one run of the stand-in host in the test's process. For tests that link the host's room.
#pragma once

#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "host/run.h"

namespace QVTest {

struct HostRun {
    int status = -1;
    std::string out;
    std::string error;

    /// Log lines, results and notes.
    std::string Said() const { return out + error; }
};

/// `program` is qvhost.exe, whose neighbours are the library and the texts; `input` is on the standard input. With
/// `lines`, questions are asked on a console that answers so and then ends.
inline HostRun RunHost(const std::wstring& program, const std::vector<std::wstring>& arguments,
                       const std::string& input = {}, const std::optional<std::vector<std::wstring>>& lines = {}) {
    std::ostringstream out;
    std::ostringstream error;
    std::istringstream in(input);
    QVHost::HostEnvironment environment = {.out = out,
                                           .error = error,
                                           .in = in,
                                           .program = program,
                                           .outIsTerminal = false,
                                           .readAnswer = {},
                                           .progressWatch = {}};
    if (lines)
        environment.readAnswer = [&, next = size_t{0}]() mutable -> std::optional<std::wstring> {
            return next < lines->size() ? std::optional((*lines)[next++]) : std::nullopt;
        };
    const int status = QVHost::RunQvHost(arguments, environment);
    return {status, out.str(), error.str()};
}

}  // namespace QVTest
