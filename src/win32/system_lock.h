// system_lock.h - the system's own lock and condition. They need no memory: the runtime's std::mutex allocates a block
// with its first lock and std::condition_variable six with its first wait (counted), and where there is no memory for
// them a destructor that locks ends the process. Some test runs hung in a wait for the runtime's condition, and not one
// in a wait for this one.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>

namespace Win32 {

/// To be held by std::unique_lock and its like.
class SystemLock {
public:
    SystemLock() = default;
    SystemLock(const SystemLock&) = delete;
    SystemLock& operator=(const SystemLock&) = delete;

    void lock() noexcept;
    void unlock() noexcept;

private:
    friend class SystemCondition;
    void* m_lock = nullptr;
};

class SystemCondition {
public:
    static constexpr uint32_t kForever = ~uint32_t{0};

    SystemCondition() = default;
    SystemCondition(const SystemCondition&) = delete;
    SystemCondition& operator=(const SystemCondition&) = delete;

    /// Lets others have the lock until the condition is signalled, the time is over, or for no reason: ask again
    /// whether it holds.
    void Wait(std::unique_lock<SystemLock>& lock, uint32_t milliseconds = kForever) noexcept;
    /// Until `holds` gives true, which is asked under the lock, or the time is over: what it gives then.
    template <class Predicate>
    bool WaitUntil(std::unique_lock<SystemLock>& lock, Predicate&& holds, uint32_t milliseconds = kForever) {
        const auto begin = std::chrono::steady_clock::now();
        while (!holds()) {
            const auto passed = std::chrono::steady_clock::now() - begin;
            const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(passed).count();
            if (milliseconds != kForever && waited >= milliseconds) return false;
            Wait(lock, milliseconds == kForever ? kForever : milliseconds - static_cast<uint32_t>(waited));
        }
        return true;
    }
    void WakeOne() noexcept;
    void WakeAll() noexcept;

private:
    void* m_condition = nullptr;
};

}  // namespace Win32
