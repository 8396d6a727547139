#include "batchrename/run/run_controller.h"

#include <utility>

#include "sdk/boundary.h"
#include "sdk/owners.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

constexpr ULONGLONG kProgressPause = 100;  // milliseconds between two reports of progress

constexpr uint32_t kLoggedRenames = 1000;  // the undo session has them all; a log of many thousands is read by nobody

/// What became of the run, for the time after the window is closed.
void LogRun(IHostServices& host, const RunResult& result, bool isRestore) {
    uint32_t renameCount = 0;
    uint32_t restCount = 0;
    for (size_t row = 0; row < result.outcomes.size(); ++row) {
        const RowOutcome& outcome = result.outcomes[row];
        const BatchRenameItem& item = *result.rows[row];
        if (outcome.isNotBegun) ++restCount;
        if (outcome.code == RenameResult::Renamed) {
            if (++renameCount <= kLoggedRenames)
                host.Log(kLogLevel, LogKind::Success, L"[Batch Rename] - %s : %s : was \"%s\"",
                         isRestore ? L"Restored" : L"Renamed", Win32::JoinPath(item.location, outcome.name).c_str(),
                         item.currentName.c_str());
        } else if (outcome.code != RenameResult::Ignored && outcome.code != ERROR_CANCELLED) {
            host.Log(kLogLevel, LogKind::Failure, L"[Batch Rename] - Failed : %s : %s",
                     Win32::JoinPath(item.location, item.currentName).c_str(), outcome.reason.c_str());
        }
    }
    if (renameCount > kLoggedRenames)
        host.Log(kLogLevel, LogKind::Success, L"[Batch Rename] - and %u more", renameCount - kLoggedRenames);
    if (restCount > 0) host.Log(kLogLevel, LogKind::Failure, L"[Batch Rename] - Stopped before the last %u", restCount);
    const std::wstring counts = RunStatusText(result.counts, isRestore);
    const uint32_t kind = result.counts.FailedCount() == 0 ? LogKind::Success : LogKind::Failure;
    if (!counts.empty()) host.Log(kLogLevel, kind, L"[Batch Rename] - %s", counts.c_str());
    if (!result.error.empty()) host.Log(kLogLevel, LogKind::Failure, L"[Batch Rename] - %s", result.error.c_str());
}

constexpr wchar_t kFailed[] = L"The run failed before its end. The undo manager shows what was renamed.";

}  // namespace

bool IsUndoDurable(IHostServices* services) {
    ISettings* const settings = services ? services->GetSettings() : nullptr;
    uint32_t value = 0;
    return settings && settings->GetNumber(1, kSettingsSection, L"FlushUndo", &value) && value != 0;
}

RunController::RunController(IHostServices* services, std::atomic<bool>& isStopped,
                             std::function<void(uint32_t)> onProgress, std::function<void(uint32_t)> onUnrecorded,
                             std::function<void()> onEnd)
    : m_services(services),
      m_isStopped(isStopped),
      m_onProgress(std::move(onProgress)),
      m_onUnrecorded(std::move(onUnrecorded)),
      m_onEnd(std::move(onEnd)) {}

void RunController::Start(RunRequest request) {
    m_result.reset();
    // Made here, with memory for the text of the failure, so that the thread needs none to say that there is none.
    auto result = std::make_shared<RunResult>();
    result->error.reserve(std::size(kFailed));
    m_thread = std::jthread([this, given = std::move(request), kept = std::move(result)]() mutable {
        ReserveExceptionRecord();
        Run(std::move(given), std::move(kept));
    });
}

std::shared_ptr<const RunResult> RunController::Result() {
    if (m_thread.joinable()) m_thread.join();
    return m_result;
}

void RunController::Run(RunRequest request, std::shared_ptr<RunResult> result) {
    try {
        if (!m_services) throw std::runtime_error("no host");
        const AcquiredService<IFileOperations> files(*m_services, ServiceNumber::FileOperations);
        if (!files) throw std::runtime_error("no file operations");
        if (request.journal) request.journal->ForgetError();
        uint32_t stepCount = 0;
        ULONGLONG lastWord = GetTickCount64();
        RunEnvironment environment = {*files.Get(), ListFolderOnDisk, request.journal, &m_isStopped};
        environment.onStep = [&] {
            ++stepCount;
            const ULONGLONG now = GetTickCount64();
            if (now - lastWord < kProgressPause) return;
            lastWord = now;
            m_onProgress(stepCount);
        };
        environment.onUnrecorded = [&](uint32_t code) {
            m_services->Log(kLogLevel, LogKind::Failure, L"[Batch Rename] - Cannot be recorded for undo : error %u",
                            code);
            m_onUnrecorded(code);
        };
        if (request.session)
            result->outcomes =
                RunRestore(*request.session, {request.rows, std::move(request.entries)}, environment, result->counts);
        else
            result->outcomes = RunRenames(request.rows, request.time, environment, result->counts);
        if (request.journal && request.journal->LastError() != ERROR_SUCCESS)
            result->error = L"The renames could not be recorded for undo (error " +
                            std::to_wstring(request.journal->LastError()) + L").";
    } catch (...) {
        // What was renamed until then is in the undo session.
        result->error = kFailed;
    }
    result->rows = std::move(request.rows);
    if (m_services)
        AtBoundary(false, [&] {
            LogRun(*m_services, *result, request.session != nullptr);
            return true;
        });
    m_result = std::move(result);
    m_onEnd();
}

}  // namespace BatchRename
