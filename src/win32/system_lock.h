// system_lock.h - the system's own lock and condition for modules that see no system header. They need no memory; what
// the runtime's need, exclusive_lock.h tells.
#pragma once

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
    void WakeOne() noexcept;
    void WakeAll() noexcept;

private:
    void* m_condition = nullptr;
};

}  // namespace Win32
