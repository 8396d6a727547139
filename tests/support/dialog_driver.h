// dialog_driver.h - plays the person in front of a dialog: a second thread finds the windows that the test's thread
// opens, fills them and presses their buttons. All waits are bounded, and a dialog that nobody expects is closed.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "win32/windows.h"

#include <commctrl.h>

namespace QVTest {

/// One dialog on the screen, seen from another thread.
class DrivenDialog {
public:
    explicit DrivenDialog(HWND window) : m_window(window) {}

    HWND Window() const { return m_window; }
    HWND Control(int id) const;
    std::wstring Text(int id) const;
    bool IsEnabled(int id) const;
    bool IsVisible(int id) const;
    bool IsChecked(int id) const;
    /// Number of the control with the focus.
    int Focus() const;
    std::vector<std::wstring> Entries(int combo) const;
    int Selected(int combo) const;

    /// As if typed over what is there.
    void Enter(int edit, const std::wstring& text) const;
    void Check(int box, bool isChecked) const;
    void Select(int combo, int entry) const;
    void Press(int button) const;
    /// Without waiting for what the button does: it may open a menu.
    void PressLater(int button) const;
    /// A key goes through the dialog's message loop, as from the keyboard.
    void Key(WPARAM virtualKey) const;
    /// @throws std::runtime_error when the dialog is still there after ten seconds
    void WaitUntilClosed() const;
    void PressAndClose(int button) const {
        PressLater(button);
        WaitUntilClosed();
    }

private:
    HWND m_window;
};

class DialogDriver {
public:
    explicit DialogDriver(DWORD thread) : m_thread(thread) {}

    /// A visible dialog with this title. @throws std::runtime_error after ten seconds
    DrivenDialog WaitFor(const std::wstring& title) const;
    /// An open popup menu.
    HWND WaitForMenu() const;

private:
    HWND WaitForWindow(const wchar_t* windowClass, const std::wstring& title) const;

    DWORD m_thread;
};

/// True once `isTrue` says so; false after ten seconds.
bool WaitUntil(const std::function<bool()>& isTrue);

/// Runs `body` on this thread and `script` beside it. What goes wrong in the script is a failure of the test, and ends
/// the dialogs that are still open.
void WhileDriving(const std::function<void(DialogDriver&)>& script, const std::function<void()>& body);

/// The same for a body that opens one dialog, with this title.
inline void WhileShown(const std::wstring& title, const std::function<void(const DrivenDialog&)>& person,
                       const std::function<void()>& body) {
    WhileDriving([&](DialogDriver& driver) { person(driver.WaitFor(title)); }, body);
}

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
