// progress.h - the progress display of a run: one line of a terminal, written over and over, or a window where
// questions are asked in windows and there is no terminal. Otherwise it only carries the wish to stop.
#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "host/app/output.h"
#include "host/app/progress_window.h"
#include "host/contract/shelf.h"
#include "sdk/host_objects.h"

namespace QVHost {

/// How a run is watched and stopped.
struct ProgressWatch {
    bool isShown = false;                            // standard error is a terminal
    const std::atomic<bool>* isCancelled = nullptr;  // set by Ctrl+C; null: never
    bool isInWindow = false;                         // it is shown in a window instead
};

inline bool IsStopped(const ProgressWatch& watch) {
    return watch.isCancelled && *watch.isCancelled;
}

class Progress final : public Quorvane::SDK::IProgress {
public:
    Progress(Shelf<Progress>& shelf, Output& output, ProgressWatch watch, const std::wstring& title, uint32_t total);
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
