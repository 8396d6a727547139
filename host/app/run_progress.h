// run_progress.h - the progress display of a run: one line of a terminal, written over and over, or a window where
// questions are asked in windows and there is no terminal. Otherwise it only carries the wish to stop.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "host/app/output.h"
#include "host/contract/shelf.h"
#include "sdk/host_objects.h"
#include "win32/handle.h"

namespace QVHost {

struct WindowTraits {
    using Raw = HWND;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { DestroyWindow(raw); }
};
using UniqueWindow = Win32::UniqueHandle<WindowTraits>;

/// A window that is never shown: it only owns the dialogs of extensions, which see by it that somebody is there to
/// answer them. To be destroyed on the same thread. Empty when the system gives none.
UniqueWindow MakeMainWindow();

struct ProgressTitle {
    std::wstring title;
    std::wstring cancel;  // the word on the button
};

/// To be made, used and destroyed on one thread, which is the one that does the work: the window is alive while Show
/// and IsCancelled are called, that is between two files, and inside those that take long.
class ProgressWindow {
public:
    /// Without a display there is no window, and every call does nothing.
    explicit ProgressWindow(const ProgressTitle& words);
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

/// How a run is watched and stopped.
struct ProgressWatch {
    bool isShown = false;                            // standard error is a terminal
    const std::atomic<bool>* isCancelled = nullptr;  // set by Ctrl+C; null: never
    bool isInWindow = false;                         // it is shown in a window instead
    uint32_t begun = 0;  // files of a list for which calls are made one by one: those before this call
    uint32_t all = 0;    // and all of them; 0: no list
};

inline bool IsStopped(const ProgressWatch& watch) {
    return watch.isCancelled && *watch.isCancelled;
}

class Progress final : public Quorvane::SDK::IProgress {
public:
    Progress(Shelf<Progress>& shelf, Output& output, ProgressWatch watch, const ProgressTitle& words, uint32_t total);
    ~Progress();

    void Advance(uint32_t done, const wchar_t* currentItem) override;
    bool IsCancelled() override;
    void Close() override;

private:
    void Show(std::wstring text);

    Shelf<Progress>& m_shelf;
    Output& m_output;
    ProgressWatch m_watch;
    std::wstring m_title;
    uint32_t m_total;
    size_t m_shown = 0;  // units on the line
    std::optional<ProgressWindow> m_window;
};

}  // namespace QVHost
