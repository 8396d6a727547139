// own_desktop.cpp - runs a test program on a desktop of its own: windows there share the screen's front and its focus
// with no other program's, so tests with windows may run side by side. usage: own_desktop PROGRAM
#include <cstdio>
#include <string>

#include "win32/handle.h"

namespace {

struct DesktopTraits {
    using Raw = HDESK;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { CloseDesktop(raw); }
};

int Fail(const char* call) {
    std::fprintf(stderr, "own_desktop: %s failed with %lu\n", call, GetLastError());
    return 2;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 2) return std::fputs("own_desktop: one program, please\n", stderr), 2;
    std::wstring name = L"QVTests" + std::to_wstring(GetCurrentProcessId());
    const Win32::UniqueHandle<DesktopTraits> desktop(
        CreateDesktopW(name.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr));
    if (!desktop) return Fail("CreateDesktopW");
    // The test platform gives the first thread of a process the desktop that is named for it, and all others that of
    // the thread which made the process.
    if (!SetThreadDesktop(desktop.Get())) return Fail("SetThreadDesktop");

    // Where this process is killed, because the time is up, the test ends with it.
    const Win32::KernelHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (!SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits)))
        return Fail("SetInformationJobObject");

    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.lpDesktop = name.data();
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(argv[1], nullptr, nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr, &startup,
                        &process))
        return Fail("CreateProcessW");
    const Win32::KernelHandle thread(process.hThread);
    const Win32::KernelHandle test(process.hProcess);
    if (!AssignProcessToJobObject(job.Get(), test.Get()))
        return TerminateProcess(test.Get(), 2), Fail("AssignProcessToJobObject");
    ResumeThread(thread.Get());
    WaitForSingleObject(test.Get(), INFINITE);
    DWORD status = 2;
    GetExitCodeProcess(test.Get(), &status);
    return static_cast<int>(status);
}
