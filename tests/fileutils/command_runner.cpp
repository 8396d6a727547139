#include "fileutils/command_runner.h"

#include <sstream>

#include "host/run.h"

namespace QVTest {
CommandRun CommandRunner::Run(std::vector<std::wstring> arguments, const std::vector<std::wstring>& answers) const {
    std::vector<std::wstring> words = {L"--config", m_settings.Path()};
    for (const std::wstring& answer : answers) words.insert(words.end(), {L"--answer", answer});
    words.insert(words.end(), arguments.begin(), arguments.end());
    // The host takes the library and its texts from beside itself.
    std::ostringstream out;
    std::ostringstream error;
    std::istringstream in;
    QVHost::HostEnvironment environment = {.out = out,
                                           .error = error,
                                           .in = in,
                                           .program = QV_HOST_PROGRAM,
                                           .outIsTerminal = false,
                                           .readAnswer = {},
                                           .progressWatch = {}};
    const int status = QVHost::RunQvHost(words, environment);
    return {status, out.str(), error.str()};
}

}  // namespace QVTest
