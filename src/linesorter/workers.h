// workers.h - does the pieces of a large work on all processors. The thread that asks for it does none of them: it
// tells of the progress meanwhile. Knows nothing of what the pieces are.
#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <thread>
#include <vector>

#include "textio/progress.h"
#include "win32/system_lock.h"

namespace QVLineSorter {

/// A piece of a work on lines: those from `begin` up to `end`. The rest is the work's own.
struct Task {
    uint32_t begin = 0;
    uint32_t end = 0;
    uint32_t depth = 0;
    uint16_t level = 0;
    uint16_t kind = 0;
};

/// How much of a file's work is done at the end of each part, in percent.
namespace SortPart {
inline constexpr uint32_t TextRead = 15;
inline constexpr uint32_t LinesCut = 18;
inline constexpr uint32_t KeysCut = 20;
inline constexpr uint32_t KeysRead = 30;
inline constexpr uint32_t Ordered = 70;
inline constexpr uint32_t LinesMoved = 75;
inline constexpr uint32_t BeginningsPlaced = 80;
inline constexpr uint32_t Written = 100;
}  // namespace SortPart

/// A row of pieces that the calling thread begins and finishes in order, while workers do what lies between.
struct Relay {
    uint32_t slots = 1;                        // so many pieces at most are begun and not finished; 32 at most
    std::function<bool(uint32_t slot)> begin;  // false: there are no more
    std::function<void(const Task&, uint32_t worker)> work;  // `task.begin` is the slot
    std::function<void(uint32_t slot)> finish;
};

class Workers {
public:
    /// `worker` counts from 0 to Count() - 1: no two threads have the same one at a time. A work may throw: the first
    /// exception ends everything, and Run throws it.
    using Work = std::function<void(const Task& task, uint32_t worker)>;

    /// Without threads: the calling thread does everything. `progress` must outlive the object.
    explicit Workers(QVUtils::Progress& progress) : Workers(progress, 0) {}
    /// Starts so many threads, or as many as the system gives. They are made before there is much else in memory, and
    /// are ready when this returns: what the runtime takes for a thread it cannot do without.
    Workers(QVUtils::Progress& progress, uint32_t threads);
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    uint32_t Count() const noexcept { return m_threads.empty() ? 1 : static_cast<uint32_t>(m_threads.size()); }
    QVUtils::Progress& GetProgress() noexcept { return m_progress; }

    /// Does the task and all that are added meanwhile. The work calls Finish with what is done, out of `total`.
    /// @throws what the work throws, and QVUtilsException when the user has cancelled; no thread works on after that
    void Run(const Work& work, const Task& first, uint64_t total);
    /// Does all pieces of the relay, and what `begin` and `finish` add, which must not be of kind kRelayed.
    /// @throws what its functions throw; no thread works on after that
    void Run(const Relay& relay);
    static constexpr uint16_t kRelayed = 0xFFFF;
    /// From inside a work, a `begin` or a `finish`: another task, for any thread.
    void Add(const Task& task, uint32_t worker);
    void Finish(uint64_t count) noexcept { m_done += count; }
    /// From inside a work that takes long, each few thousand lines. @throws an exception that the work lets pass, when
    /// all is to end
    void Check();

    static constexpr uint32_t kPiece = 4096;  // lines; a few milliseconds at most

    /// Calls `work(begin, end, worker)` for all of `count` lines, or other things, in pieces of so many.
    template <class PieceWork>
    void ForEach(size_t count, PieceWork&& work, uint32_t inPiece = kPiece) {
        const Work piece = [&](const Task& task, uint32_t worker) {
            uint32_t end = task.end;
            while (end - task.begin > inPiece) {  // halves, so that the pieces spread without a long list of them
                const uint32_t middle = task.begin + (end - task.begin) / 2;
                Add({.begin = middle, .end = end}, worker);
                end = middle;
            }
            work(task.begin, end, worker);
            Finish(end - task.begin);
        };
        if (count > 0) Run(piece, {.end = static_cast<uint32_t>(count)}, count);
    }

private:
    struct Stopped {};

    void RunHere();
    void RunOnThreads(const Task& first);
    void RunRelay(const Relay& relay);
    void WaitForSlot(uint32_t slot);
    void FinishSlot(uint32_t slot);
    void EndRelay() noexcept;
    void WorkUntilEnd(uint32_t worker);
    bool IsIdle() const { return m_busy == 0 && m_tasks.empty(); }
    void DoOne(const Task& task, uint32_t worker) noexcept;

    QVUtils::Progress& m_progress;
    const Work* m_work = nullptr;
    std::vector<Task> m_tasks;  // the last one is the next: the list stays short
    std::atomic<uint64_t> m_done = 0;
    uint64_t m_total = 0;
    std::atomic<bool> m_isStopped = false;

    // With threads only, under the lock.
    Win32::SystemLock m_lock;
    Win32::SystemCondition m_hasWork;
    Win32::SystemCondition m_isIdle;
    bool m_isOver = false;
    size_t m_busy = 0;
    size_t m_started = 0;
    uint32_t m_doneSlots = 0;  // of a relay; one bit each
    std::exception_ptr m_failure;
    std::vector<std::jthread> m_threads;  // last: they use everything above
};

/// How many threads help with a text of so many bytes: none where it is done before they are there.
uint32_t ThreadsFor(uint64_t bytes);

}  // namespace QVLineSorter
