// exclusive_lock.h - holds one of the system's own locks for as long as it lives. Those need no memory: the runtime's
// std::mutex allocates a block with its first lock and std::condition_variable six with its first wait (counted), and
// where there is no memory for them a destructor that locks ends the process.
#pragma once

#include "win32/windows.h"

namespace Win32 {

class ExclusiveLock {
public:
    explicit ExclusiveLock(SRWLOCK& lock) noexcept : m_lock(lock) { AcquireSRWLockExclusive(&m_lock); }
    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;
    ~ExclusiveLock() { ReleaseSRWLockExclusive(&m_lock); }

    /// Lets others have the lock until `condition` is signalled, the time is over, or for no reason: ask again whether
    /// it holds.
    void WaitFor(CONDITION_VARIABLE& condition, DWORD milliseconds = INFINITE) {
        SleepConditionVariableSRW(&condition, &m_lock, milliseconds, 0);
    }

private:
    SRWLOCK& m_lock;
};

}  // namespace Win32
