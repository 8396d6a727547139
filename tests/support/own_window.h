// own_window.h - finds top-level windows of the test's own process (others on the same screen run the same programs),
// and reads what windows show.
#pragma once

#include <string>
#include <vector>

#include "win32/windows.h"

#include <commctrl.h>

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

/// At most 511 units of the text that a message such as WM_GETTEXT gives.
inline std::wstring ShownText(HWND window, UINT message, WPARAM parameter = 512) {
    wchar_t text[512] = {};
    SendMessageW(window, message, parameter, reinterpret_cast<LPARAM>(text));
    return text;
}

inline std::wstring CellOf(HWND list, int row, int column) {
    wchar_t text[512] = {};
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 512;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

inline std::vector<std::wstring> ColumnOf(HWND list, int column) {
    std::vector<std::wstring> cells;
    const auto count = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
    cells.reserve(static_cast<size_t>(count));
    for (int row = 0; row < count; ++row) cells.push_back(CellOf(list, row, column));
    return cells;
}

}  // namespace QVTest
