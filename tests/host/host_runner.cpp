#include "host_runner.h"

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

HostRun HostRunner::Run(std::vector<std::wstring> arguments, const std::string& input,
                        std::optional<std::vector<std::wstring>> lines, const std::atomic<bool>* isStopped) const {
    const std::vector<std::wstring> common = {L"--library",  BesideThisProgram(L"test_extension.dll"),
                                              L"--config",   m_folder / L"config",
                                              L"--language", m_folder / L"texts.txt"};
    arguments.insert(arguments.begin(), common.begin(), common.end());
    return RunHost(BesideThisProgram(L"qvhost.exe"), arguments, input, lines, isStopped);
}

}  // namespace QVTest
