#include "fileutils/command_runner.h"

#include <sstream>

#include "host/run.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVTest {
namespace {

std::wstring BesideThisProgram(const wchar_t* name) {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return Win32::JoinPath(Win32::FolderOf(path), name);
}

}  // namespace

CommandRun CommandRunner::Run(std::vector<std::wstring> arguments, const std::vector<std::wstring>& answers) const {
    std::vector<std::wstring> words = {L"--library",  BesideThisProgram(L"QVUtils.dll"),
                                       L"--language", BesideThisProgram(L"qvhost-english.txt"),
                                       L"--config",   m_settings.Path()};
    for (const std::wstring& answer : answers) words.insert(words.end(), {L"--answer", answer});
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::ostringstream out;
    std::ostringstream error;
    std::istringstream in;
    QVHost::HostEnvironment environment = {.out = out,
                                           .error = error,
                                           .in = in,
                                           .program = BesideThisProgram(L"qvhost.exe"),
                                           .outIsTerminal = false,
                                           .readAnswer = {},
                                           .progressWatch = {}};
    const int status = QVHost::RunQvHost(words, environment);
    return {status, out.str(), error.str()};
}

}  // namespace QVTest
