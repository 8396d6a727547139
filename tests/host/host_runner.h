// host_runner.h - runs the host in this process, as the program does, and keeps what it wrote.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "support/temporary_folder.h"

namespace QVTest {

struct HostRun {
    int status = -1;
    std::string out;
    std::string error;
};

/// A host with the test extension, settings of its own and a small language file.
class HostRunner {
public:
    HostRunner();

    HostRun Run(std::vector<std::wstring> arguments, const std::string& input = {}) const;
    /// Questions are asked on a console that answers with these lines and then ends.
    HostRun RunOnConsole(std::vector<std::wstring> arguments, std::vector<std::wstring> lines) const;

    const TemporaryFolder& Folder() const { return m_folder; }

private:
    HostRun Run(std::vector<std::wstring> arguments, const std::string& input,
                std::optional<std::vector<std::wstring>> lines) const;

    TemporaryFolder m_folder;
};

/// A file beside the test program.
std::wstring BesideThisProgram(const wchar_t* name);

}  // namespace QVTest
