#include "host/app/message_pump.h"

#include <algorithm>

#include "win32/handle.h"

#include <tlhelp32.h>

namespace QVHost {
namespace {

constexpr DWORD kLook = 100;  // milliseconds: a window that closes on another thread sends no word to this one

BOOL CALLBACK LookForForeignWindow(HWND window, LPARAM found) {
    DWORD process = 0;
    const DWORD thread = GetWindowThreadProcessId(window, &process);
    const bool isForeign =
        process == GetCurrentProcessId() && thread != GetCurrentThreadId() && IsWindowVisible(window);
    if (isForeign) *reinterpret_cast<bool*>(found) = true;
    return !isForeign;
}

/// A search for windows sets up the desktop, which takes longer than most commands; with one thread there is none to
/// find.
bool IsOnlyThread() {
    const Win32::FileHandle threads(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof(thread);
    int count = 0;
    for (BOOL isThere = Thread32First(threads.Get(), &thread); isThere; isThere = Thread32Next(threads.Get(), &thread))
        count += thread.th32OwnerProcessID == GetCurrentProcessId();
    return count == 1;
}

bool IsEaten(Session& session, MSG& message) {
    return std::ranges::any_of(session.Extensions(), [&](const auto& extension) {
        return extension->Commands() && extension->Commands()->PreTranslateMessage(&message, 0);
    });
}

void RunQueuedCommands(Session& session) {
    for (const QueuedCommand& command : session.State().commandQueue.Take())
        if (Quorvane::SDK::IPluginInterface* const extension = session.Extensions()[command.extension]->Commands())
            extension->OnCommand(command.id, 0, command.value);
}

}  // namespace

bool HasWindowsOfOtherThreads() {
    if (IsOnlyThread()) return false;
    bool isFound = false;
    EnumWindows(LookForForeignWindow, reinterpret_cast<LPARAM>(&isFound));
    return isFound;
}

void PumpWhile(Session& session, const std::function<bool()>& goesOn, const std::function<bool(MSG&)>& translate) {
    const HANDLE event = session.State().commandQueue.Event();
    while (goesOn()) {
        MsgWaitForMultipleObjects(1, &event, FALSE, kLook, QS_ALLINPUT);
        RunQueuedCommands(session);
        MSG message = {};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) return;
            if (IsEaten(session, message) || (translate && translate(message))) continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

}  // namespace QVHost
