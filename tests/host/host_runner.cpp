#include "host_runner.h"

#include <sstream>

#include "host/run.h"
#include "host/text.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVTest {

std::wstring BesideThisProgram(const wchar_t* name) {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return Win32::JoinPath(Win32::FolderOf(path), name);
}

HostRunner::HostRunner() {
    m_folder.Write(L"texts.txt", "1m=Test\n2m=Sub\n3m=Do it\n1c=Says it again\n2c=Name:\n");
}

HostRun HostRunner::Run(std::vector<std::wstring> arguments, const std::string& input) const {
    return Run(std::move(arguments), input, std::nullopt);
}

HostRun HostRunner::RunOnConsole(std::vector<std::wstring> arguments, std::vector<std::wstring> lines) const {
    return Run(std::move(arguments), {}, std::move(lines));
}

HostRun HostRunner::Run(std::vector<std::wstring> arguments, const std::string& input,
                        std::optional<std::vector<std::wstring>> lines) const {
    const std::vector<std::wstring> common = {L"--library",  BesideThisProgram(L"test_extension.dll"),
                                              L"--config",   m_folder / L"config",
                                              L"--language", m_folder / L"texts.txt"};
    arguments.insert(arguments.begin(), common.begin(), common.end());
    std::ostringstream out;
    std::ostringstream error;
    std::istringstream in(input);
    QVHost::HostEnvironment environment = {.out = out,
                                           .error = error,
                                           .in = in,
                                           .program = BesideThisProgram(L"qvhost.exe"),
                                           .outIsTerminal = false,
                                           .readAnswer = {},
                                           .progressWatch = {}};
    size_t next = 0;
    if (lines)
        environment.readAnswer = [&]() -> std::optional<std::wstring> {
            if (next == lines->size()) return std::nullopt;
            return (*lines)[next++];
        };
    const int status = QVHost::RunQvHost(arguments, environment);
    return {status, out.str(), error.str()};
}

}  // namespace QVTest
