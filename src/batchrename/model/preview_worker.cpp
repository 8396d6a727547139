#include "batchrename/model/preview_worker.h"

#include <utility>

#include "batchrename/host_properties.h"
#include "batchrename/run/rename_run.h"
#include "sdk/boundary.h"

namespace BatchRename {

PreviewWorker::PreviewWorker(Quorvane::SDK::IHostServices* services, std::function<void()> notify)
    : m_services(services),
      m_notify(std::move(notify)),
      m_folders(ListFolderOnDisk, FindItemOnDisk),
      m_thread([this](const std::stop_token& stop) {
          Quorvane::SDK::ReserveExceptionRecord();
          Run(stop);
      }) {}

PreviewWorker::~PreviewWorker() {
    {
        const std::lock_guard lock(m_mutex);
        m_thread.request_stop();
        m_newest = UINT64_MAX;
    }
    m_wake.WakeOne();
}

void PreviewWorker::Request(PreviewRequest request, int delay) {
    {
        const std::lock_guard lock(m_mutex);
        m_newest = request.generation;
        m_readsFolders = m_readsFolders || request.readsFolders;
        m_request = std::move(request);
        m_delay = delay;
    }
    m_wake.WakeOne();
}

void PreviewWorker::Cancel(uint64_t generation) {
    const std::lock_guard lock(m_mutex);
    m_newest = generation;
    m_request.reset();
}

std::shared_ptr<const Preview> PreviewWorker::Take() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_published, nullptr);
}

void PreviewWorker::Dispose(std::shared_ptr<const void> object) {
    if (!object) return;
    {
        const std::lock_guard lock(m_mutex);
        m_disposed.push_back(std::move(object));
    }
    m_wake.WakeOne();
}

void PreviewWorker::Publish(std::shared_ptr<const Preview> preview) {
    {
        const std::lock_guard lock(m_mutex);
        if (preview->generation != m_newest) return;
        m_published = std::move(preview);
    }
    m_notify();
}

void PreviewWorker::MakePass(const PreviewRequest& request) {
    try {
        if (!m_failure) {
            m_failure = std::make_shared<Preview>();
            m_failure->error = L"The new names could not be computed; there may be too little memory.";
        }
        std::optional<HostProperties> properties;
        if (m_services) properties.emplace(*m_services);
        MakePreview(
            request, m_folders, properties ? &*properties : nullptr, [&] { return m_newest != request.generation; },
            [&](std::shared_ptr<const Preview> preview) { Publish(std::move(preview)); });
    } catch (const RegexFault& fault) {
        // Memory may be what the expression lacked. Then there is none for its own words.
        Quorvane::SDK::AtBoundary(false, [&] {
            m_failure->error = fault.Text();
            return true;
        });
        PublishFailure(request.generation);
    } catch (...) {
        PublishFailure(request.generation);
    }
}

void PreviewWorker::PublishFailure(uint64_t generation) {
    if (!m_failure) return;  // not even that much memory; the window goes on showing what it shows
    m_failure->generation = generation;
    Publish(std::exchange(m_failure, nullptr));
}

void PreviewWorker::Run(const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    while (!stop.stop_requested()) {
        if (!m_disposed.empty()) {
            std::vector<std::shared_ptr<const void>> disposed = std::move(m_disposed);
            m_disposed.clear();
            lock.unlock();
            disposed.clear();
            lock.lock();
            continue;
        }
        if (!m_request) {
            m_wake.WaitUntil(lock, [&] { return stop.stop_requested() || m_request || !m_disposed.empty(); });
            continue;
        }
        if (const uint64_t generation = m_request->generation; m_delay > 0) {
            const auto isOvertaken = [&] {
                return stop.stop_requested() || !m_request || m_request->generation != generation;
            };
            if (m_wake.WaitUntil(lock, isOvertaken, static_cast<uint32_t>(m_delay))) continue;
        }
        PreviewRequest request = std::move(*m_request);
        m_request.reset();
        request.readsFolders = std::exchange(m_readsFolders, false);
        lock.unlock();
        MakePass(request);
        request = {};
        lock.lock();
    }
}

}  // namespace BatchRename
