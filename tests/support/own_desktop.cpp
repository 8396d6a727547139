// own_desktop.cpp - runs a test program on a desktop of its own: windows there share the screen's front and its focus
// with no other program's, so tests with windows may run side by side. usage: own_desktop PROGRAM
#include <cstdio>
#include <string>

#include "support/start_process.h"
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

    const QVTest::StartedProcess test =
        QVTest::StartProcess(argv[1], {}, {CREATE_SUSPENDED, /*inheritsHandles=*/true, name.data()});
    if (!test.process) return Fail("CreateProcessW");
    if (!AssignProcessToJobObject(job.Get(), test.process.Get()))
        return TerminateProcess(test.process.Get(), 2), Fail("AssignProcessToJobObject");
    ResumeThread(test.thread.Get());
    WaitForSingleObject(test.process.Get(), INFINITE);
    DWORD status = 2;
    GetExitCodeProcess(test.process.Get(), &status);
    return static_cast<int>(status);
}
