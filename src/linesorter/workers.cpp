#include "linesorter/workers.h"

#include <exception>
#include <new>

namespace QVLineSorter {

Workers::Workers(QVUtils::Progress& progress, uint32_t threads) : m_progress(progress) {
    m_tasks.reserve(size_t{64} * (threads + 1));
    if (threads < 2) return;
    m_threads.reserve(threads);
    try {
        while (m_threads.size() < threads)
            m_threads.emplace_back([this, worker = static_cast<uint32_t>(m_threads.size())] { WorkUntilEnd(worker); });
    } catch (const std::exception&) {
        // No thread, or no memory for one: those that there are do it, or the calling thread. They wait for an end that
        // an object which is not complete never tells them.
    }
    std::unique_lock lock(m_lock);
    while (m_started < m_threads.size()) m_isIdle.Wait(lock);
}

Workers::~Workers() {
    const std::scoped_lock lock(m_lock);
    m_isOver = true;
    m_hasWork.WakeAll();
}

void Workers::Check() {
    if (m_isStopped) throw Stopped();
    if (m_threads.empty()) m_progress.Advance(m_done, m_total);
}

void Workers::Add(const Task& task, uint32_t worker) {
    try {
        std::unique_lock lock(m_lock, std::defer_lock);
        if (!m_threads.empty()) lock.lock();
        // A relay waits for its oldest piece first.
        m_tasks.insert(task.kind == kRelayed ? m_tasks.begin() : m_tasks.end(), task);
    } catch (const std::bad_alloc&) {
        (*m_work)(task, worker);
        return;
    }
    if (!m_threads.empty()) m_hasWork.WakeOne();
}

void Workers::Run(const Work& work, const Task& first, uint64_t total) {
    m_work = &work;
    m_done = 0;
    m_total = total;
    m_tasks.clear();
    if (m_threads.empty()) {
        m_tasks.push_back(first);
        RunHere();
    } else {
        RunOnThreads(first);
    }
}

/// All tasks that there are, where there is no thread for them.
void Workers::RunHere() {
    while (m_threads.empty() && !m_tasks.empty()) {
        const Task task = m_tasks.back();
        m_tasks.pop_back();
        (*m_work)(task, 0);
        if (m_total > 0) m_progress.Advance(m_done, m_total);
    }
}

void Workers::RunOnThreads(const Task& first) {
    std::unique_lock lock(m_lock);
    m_tasks.push_back(first);
    m_failure = nullptr;
    m_isStopped = false;
    m_hasWork.WakeOne();
    std::exception_ptr cancelled;
    while (!IsIdle()) {
        m_isIdle.Wait(lock, static_cast<uint32_t>(QVUtils::Progress::kPause.count()));
        if (m_isStopped) continue;
        lock.unlock();
        try {
            m_progress.Advance(m_done, m_total);
        } catch (const std::exception&) {
            cancelled = std::current_exception();
            m_isStopped = true;
        }
        lock.lock();
        if (m_isStopped) m_tasks.clear();
    }
    m_isStopped = false;
    if (cancelled) std::rethrow_exception(cancelled);
    if (m_failure) std::rethrow_exception(std::exchange(m_failure, nullptr));
}

void Workers::Run(const Relay& relay) {
    const Work work = [&](const Task& task, uint32_t worker) {
        relay.work(task, worker);
        if (task.kind == kRelayed) FinishSlot(task.begin);
    };
    m_work = &work;
    m_total = 0;
    m_tasks.clear();
    m_doneSlots = 0;
    m_failure = nullptr;
    m_isStopped = false;
    try {
        RunRelay(relay);
    } catch (...) {
        m_isStopped = true;
        EndRelay();
        throw;
    }
    EndRelay();
    if (m_failure) std::rethrow_exception(std::exchange(m_failure, nullptr));
}

void Workers::RunRelay(const Relay& relay) {
    uint32_t finished = 0;
    uint32_t begun = 0;
    for (bool hasMore = true; hasMore || finished != begun;) {
        if (hasMore && begun - finished < relay.slots) {
            hasMore = relay.begin(begun % relay.slots);
            if (hasMore) Add({.begin = begun++ % relay.slots, .kind = kRelayed}, 0);
        } else {
            WaitForSlot(finished % relay.slots);
            if (m_isStopped) return;
            relay.finish(finished++ % relay.slots);
        }
    }
    RunHere();
}

void Workers::WaitForSlot(uint32_t slot) {
    RunHere();
    std::unique_lock lock(m_lock);
    while (!(m_doneSlots >> slot & 1) && !m_isStopped) m_isIdle.Wait(lock);
    m_doneSlots &= ~(1U << slot);
}

void Workers::FinishSlot(uint32_t slot) {
    const std::scoped_lock lock(m_lock);
    m_doneSlots |= 1U << slot;
    m_isIdle.WakeOne();
}

/// Until every thread rests.
void Workers::EndRelay() noexcept {
    std::unique_lock lock(m_lock);
    if (m_isStopped) m_tasks.clear();
    while (!IsIdle()) m_isIdle.Wait(lock);
    m_isStopped = false;
}

void Workers::WorkUntilEnd(uint32_t worker) {
    static_cast<void>(std::uncaught_exceptions());  // makes the runtime's record of this thread's exceptions now
    std::unique_lock lock(m_lock);
    ++m_started;
    m_isIdle.WakeOne();
    for (;;) {
        while (m_tasks.empty() && !m_isOver) m_hasWork.Wait(lock);
        if (m_isOver) return;
        const Task task = m_tasks.back();
        m_tasks.pop_back();
        ++m_busy;
        lock.unlock();
        DoOne(task, worker);
        lock.lock();
        if (m_isStopped) m_tasks.clear();
        --m_busy;
        if (IsIdle()) m_isIdle.WakeOne();
    }
}

void Workers::DoOne(const Task& task, uint32_t worker) noexcept {
    if (m_isStopped) return;
    try {
        (*m_work)(task, worker);
    } catch (const Stopped&) {
        // What stopped everything is known.
    } catch (...) {
        const std::scoped_lock lock(m_lock);
        if (!m_failure) m_failure = std::current_exception();
        m_isStopped = true;
    }
}

uint32_t ThreadsFor(uint64_t bytes) {
    constexpr uint64_t kWorthIt = 1 << 20;
    return bytes < kWorthIt ? 0 : std::thread::hardware_concurrency();
}

}  // namespace QVLineSorter
