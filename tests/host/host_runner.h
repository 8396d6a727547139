// host_runner.h - runs the host in this process, as the program does, and keeps what it wrote.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "support/host_run.h"
#include "support/temporary_folder.h"

namespace QVTest {

/// A host with the test extension, settings of its own and a small language file.
class HostRunner {
public:
    HostRunner();

    /// As RunHost.
    HostRun Run(std::vector<std::wstring> arguments, const std::string& input = {},
                std::optional<std::vector<std::wstring>> lines = {},
                const std::atomic<bool>* isStopped = nullptr) const;
    /// The same for a custom command with its arguments.
    HostRun Call(std::vector<std::wstring> arguments, std::optional<std::vector<std::wstring>> lines = {}) const {
        arguments.insert(arguments.begin(), L"call");
        return Run(std::move(arguments), {}, std::move(lines));
    }

    const TemporaryFolder& Folder() const { return m_folder; }

private:
    TemporaryFolder m_folder;
};

/// A file beside the test program.
std::wstring BesideThisProgram(const wchar_t* name);

}  // namespace QVTest
