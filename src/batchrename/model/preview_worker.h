// preview_worker.h - the thread that makes the previews. It gets snapshots and gives snapshots back; the window's
// thread never waits for it but at the very end.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "batchrename/model/preview.h"
#include "sdk/host_services.h"
#include "win32/system_lock.h"

namespace BatchRename {

class PreviewWorker {
public:
    /// `services` may be null, and outlives the worker. `notify` is called on the worker's thread whenever there is
    /// something to take. @throws std::system_error when there is no thread to be had
    PreviewWorker(Quorvane::SDK::IHostServices* services, std::function<void()> notify);
    /// Cancels, and waits for the thread.
    ~PreviewWorker();
    PreviewWorker(const PreviewWorker&) = delete;
    PreviewWorker& operator=(const PreviewWorker&) = delete;

    /// Makes every pass before this one void. The pass begins when nothing newer has come for `delay` milliseconds, so
    /// that a word being typed costs one pass and not one for each letter.
    void Request(PreviewRequest request, int delay);
    /// Makes every pass so far void.
    void Cancel(uint64_t generation);

    /// What was published last; null when that was taken before.
    std::shared_ptr<const Preview> Take();

    /// Lets go of something large on the worker's thread: giving back the memory of many rows takes its time.
    void Dispose(std::shared_ptr<const void> object);

private:
    void Run(const std::stop_token& stop);
    void Publish(std::shared_ptr<const Preview> preview);
    void MakePass(const PreviewRequest& request);
    void PublishFailure(uint64_t generation);

    Quorvane::SDK::IHostServices* m_services;
    std::function<void()> m_notify;
    FolderCache m_folders;
    std::atomic<uint64_t> m_newest = 0;  // generation
    Win32::SystemLock m_mutex;
    Win32::SystemCondition m_wake;
    // Under the mutex.
    std::optional<PreviewRequest> m_request;
    int m_delay = 0;
    bool m_readsFolders = false;  // a request that was overtaken wanted it
    std::shared_ptr<const Preview> m_published;
    std::vector<std::shared_ptr<const void>> m_disposed;
    // The worker's thread's: says that memory has run out, and so is made while there is some.
    std::shared_ptr<Preview> m_failure;
    std::jthread m_thread;  // last: it uses everything above
};

}  // namespace BatchRename
