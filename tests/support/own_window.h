// own_window.h - finds top-level windows of the test's own process: others on the same screen run the same programs.
#pragma once

#include "win32/windows.h"

namespace QVTest {

/// Null when there is none. `title`: null for any.
inline HWND FindOwnWindow(const wchar_t* windowClass, const wchar_t* title = nullptr) {
    HWND found = nullptr;
    while ((found = FindWindowExW(nullptr, found, windowClass, title)) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(found, &process);
        if (process == GetCurrentProcessId()) break;
    }
    return found;
}

}  // namespace QVTest
