// main.cpp - the program qvhost: binds a run to the process's command line, streams and console.
#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/run.h"
#include "host/app/unix_paths.h"
#include "win32/module.h"
#include "win32/windows.h"

namespace {

constexpr size_t kErrorBufferSize = 4096;  // bytes

std::atomic<bool> g_isInterrupted = false;

/// The first Ctrl+C asks the run to stop; the second ends the process, as it would without this.
BOOL WINAPI OnConsoleEvent(DWORD event) {
    return event == CTRL_C_EVENT && !g_isInterrupted.exchange(true);
}

bool IsConsole(DWORD standardHandle) {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(standardHandle), &mode) != FALSE;
}

/// A line typed at the console, in Unicode, which the C runtime's input is not; nothing at its end.
std::optional<std::wstring> ReadConsoleLine() {
    std::wstring line;
    wchar_t block[256];
    DWORD read = 0;
    while (ReadConsoleW(GetStdHandle(STD_INPUT_HANDLE), block, static_cast<DWORD>(std::size(block)), &read, nullptr) &&
           read > 0) {
        line.append(block, read);
        if (line.back() != L'\n') continue;
        while (!line.empty() && (line.back() == L'\n' || line.back() == L'\r')) line.pop_back();
        return line;
    }
    return std::nullopt;
}

/// The console shows UTF-8 while this lives, and what it showed before afterwards.
class Utf8Console {
public:
    Utf8Console() : m_before(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
    ~Utf8Console() { SetConsoleOutputCP(m_before); }
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;

private:
    UINT m_before;
};

/// Nobody has typed a command: the program was started by a double click, or from a menu. Then it has a console of its
/// own, or none at all; a shell's console has the shell in it too, and a script gives the program its streams.
///
/// A desktop on which Wine runs gives the programs it starts streams of its own, just as a script does. What tells them
/// apart is the screen: with one, and without a terminal, a window is what people expect.
bool IsStartedAsWindow() {
    if (QVHost::RunsUnderWine() && GetEnvironmentVariableW(L"DISPLAY", nullptr, 0) > 0 && !IsConsole(STD_INPUT_HANDLE))
        return !IsConsole(STD_OUTPUT_HANDLE) && !IsConsole(STD_ERROR_HANDLE);
    for (const DWORD stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        const HANDLE handle = GetStdHandle(stream);
        if (handle && handle != INVALID_HANDLE_VALUE && !IsConsole(stream)) return false;
    }
    DWORD processes[2] = {};
    if (GetConsoleProcessList(processes, 2) > 1) return false;
    // Under Wine a terminal of the system below counts as a console of ours, but has no window.
    return !QVHost::RunsUnderWine() || IsWindowVisible(GetConsoleWindow());
}

/// Started from a shortcut or a button, which says so by an option.
bool IsWithoutConsole(const std::vector<std::wstring>& arguments) {
    const auto operands = std::ranges::find(arguments, L"--");
    return std::find(arguments.begin(), operands, L"--no-console") != operands;
}

/// The end of it, in a window: nobody has seen the lines.
void ShowWhatWasSaid(const std::string& said) {
    constexpr size_t kLines = 20;
    const std::vector<std::string_view> lines = QVHost::LinesOf(said);
    std::wstring text;
    for (size_t at = lines.size() - std::min(lines.size(), kLines); at < lines.size(); ++at)
        text += QVHost::Wide(lines[at]) + L"\n";
    if (!text.empty()) MessageBoxW(nullptr, text.c_str(), L"QVUtils", MB_OK | MB_ICONWARNING | MB_SETFOREGROUND);
}

}  // namespace

int wmain(int count, wchar_t** words) {
    for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    // Notes are flushed one by one; without a buffer each of their bytes would be a call of the system.
    std::setvbuf(stderr, nullptr, _IOFBF, kErrorBufferSize);
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
    std::vector<std::wstring> arguments(words + 1, words + count);
    if (arguments.empty() && IsStartedAsWindow()) arguments = {L"panel", L"--no-console"};
    const bool hasConsole = !IsWithoutConsole(arguments);
    if (!hasConsole) FreeConsole();
    std::ostringstream said;
    const Utf8Console utf8Console;
    QVHost::HostEnvironment environment = {.out = hasConsole ? std::cout : said,
                                           .error = hasConsole ? std::cerr : said,
                                           .in = std::cin,
                                           .program = Win32::PathOfModule(nullptr),
                                           .outIsTerminal = IsConsole(STD_OUTPUT_HANDLE),
                                           .readAnswer = {},
                                           .progressWatch = {IsConsole(STD_ERROR_HANDLE), &g_isInterrupted}};
    if (IsConsole(STD_INPUT_HANDLE)) environment.readAnswer = ReadConsoleLine;
    const int status = QVHost::RunQvHost(arguments, environment);
    if (!hasConsole && status != QVHost::ExitStatus::Done) ShowWhatWasSaid(said.str());
    return status;
}
