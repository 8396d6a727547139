// start_process.h - starts another program from a test.
#pragma once

#include <string>

#include "win32/handle.h"

namespace QVTest {

struct StartedProcess {
    Win32::KernelHandle process;  // empty when it could not be started: GetLastError tells why
    Win32::KernelHandle thread;   // its first
};

struct ProcessStart {
    DWORD flags = 0;
    bool inheritsHandles = false;
    wchar_t* desktop = nullptr;  // null: this process's own
};

/// The test platform loses one new process of some thousands before it has begun, and calls that an internal error:
/// such a start is repeated once.
/// `line`: the command line, "" for the program's path alone
inline StartedProcess StartProcess(const std::wstring& program, std::wstring line, const ProcessStart& how = {}) {
    STARTUPINFOW start = {};
    start.cb = sizeof(start);
    start.lpDesktop = how.desktop;
    PROCESS_INFORMATION started = {};
    const auto begin = [&] {
        return CreateProcessW(program.c_str(), line.empty() ? nullptr : line.data(), nullptr, nullptr,
                              how.inheritsHandles, how.flags, nullptr, nullptr, &start, &started);
    };
    if (!begin() && (GetLastError() != ERROR_INTERNAL_ERROR || !begin())) return {};
    return {Win32::KernelHandle(started.hProcess), Win32::KernelHandle(started.hThread)};
}

}  // namespace QVTest
