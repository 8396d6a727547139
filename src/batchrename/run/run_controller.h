// run_controller.h - one rename or restore run on a thread of its own. What is renamed to what is the planner's word;
// this only starts the run, says how far it is, and keeps its result.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "batchrename/run/rename_run.h"
#include "sdk/host_services.h"

namespace BatchRename {

inline constexpr wchar_t kSettingsSection[] = L"QVBatcheRename";  // compatibility: 29

/// Has the user asked for every step of a run to be on disk before it is taken? A number that is not 0 under
/// "FlushUndo" in the settings; a flush takes milliseconds for each file. `services` may be null.
bool IsUndoDurable(Quorvane::SDK::IHostServices* services);

struct RunRequest {
    RenameItems rows;  // with new names; the run has them for itself
    CalendarTime time;
    std::shared_ptr<BatchRenameUndo> session;  // null: a rename run; else the session that is restored
    std::vector<size_t> entries;               // of a restore: the entry of each row
    UndoStore* journal = nullptr;
};

struct RunResult {
    RenameItems rows;
    std::vector<RowOutcome> outcomes;  // one for each row; empty when the run could not begin
    std::wstring error;
    CRenameResultCallback counts;
};

class RunController {
public:
    /// `isStopped` may be set by any thread. The others are called on the run's thread; `onUnrecorded` with the error
    /// that keeps a run from its record, before its first rename.
    RunController(Quorvane::SDK::IHostServices* services, std::atomic<bool>& isStopped,
                  std::function<void(uint32_t stepCount)> onProgress, std::function<void(uint32_t code)> onUnrecorded,
                  std::function<void()> onEnd);
    /// Stops a run that is under way, after its current row or ring, and waits for it.
    ~RunController() { Stop(); }
    RunController(const RunController&) = delete;
    RunController& operator=(const RunController&) = delete;

    /// @throws std::system_error when there is no thread to be had: nothing is running then
    void Start(RunRequest request);
    void Stop() { m_isStopped = true; }
    /// After onEnd, until the next Start; waits for the last moments of the run's thread.
    std::shared_ptr<const RunResult> Result();

private:
    void Run(RunRequest request, std::shared_ptr<RunResult> result);

    Quorvane::SDK::IHostServices* m_services;
    std::atomic<bool>& m_isStopped;
    std::function<void(uint32_t)> m_onProgress;
    std::function<void(uint32_t)> m_onUnrecorded;
    std::function<void()> m_onEnd;
    std::shared_ptr<const RunResult> m_result;
    std::jthread m_thread;  // last: it uses everything above
};

}  // namespace BatchRename
