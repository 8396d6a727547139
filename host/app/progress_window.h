// progress_window.h - the progress of a run in a small window with a Cancel button, where there is no terminal to show
// it in.
#pragma once

#include <cstdint>
#include <string>

#include "host/app/main_window.h"

namespace QVHost {

/// To be made, used and destroyed on one thread, which is the one that does the work: the window is alive while Show
/// and IsCancelled are called, that is between two files.
class ProgressWindow {
public:
    /// Without a display there is no window, and every call does nothing.
    explicit ProgressWindow(const std::wstring& title);
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;

    void Show(const std::wstring& text);
    /// Cancel was pressed, or the window closed.
    bool IsCancelled();

private:
    static INT_PTR CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void HandleInput();

    bool m_isCancelled = false;
    // Each has a pause of its own: else the one asked more often would leave no turn to the other.
    ULONGLONG m_lastShown = 0;  // milliseconds
    ULONGLONG m_lastLook = 0;   // milliseconds
    UniqueWindow m_window;
};

}  // namespace QVHost
