// command_runner.h - runs commands of the library in the stand-in host, in this process, on files of a folder of its
// own.
#pragma once

#include <string>
#include <vector>

#include "support/temporary_folder.h"

namespace QVTest {

struct CommandRun {
    int status = -1;    // 0: handled, and nothing failed
    std::string log;    // one line each
    std::string notes;  // questions with their answers, results, the lists handed back
};

class CommandRunner {
public:
    /// `arguments` as on the host's command line, the subcommand first; `answers` to its questions in order.
    CommandRun Run(std::vector<std::wstring> arguments, const std::vector<std::wstring>& answers = {}) const;

    const TemporaryFolder& Folder() const { return m_folder; }

private:
    TemporaryFolder m_folder;
    TemporaryFolder m_settings;
};

}  // namespace QVTest
