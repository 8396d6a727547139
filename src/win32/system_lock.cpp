#include "win32/system_lock.h"

#include "win32/windows.h"

namespace Win32 {
namespace {

// Both are one pointer, which is null at first.
static_assert(sizeof(SRWLOCK) == sizeof(void*) && sizeof(CONDITION_VARIABLE) == sizeof(void*));

SRWLOCK* LockAt(void** place) {
    return reinterpret_cast<SRWLOCK*>(place);
}

CONDITION_VARIABLE* ConditionAt(void** place) {
    return reinterpret_cast<CONDITION_VARIABLE*>(place);
}

}  // namespace

void SystemLock::lock() noexcept {
    AcquireSRWLockExclusive(LockAt(&m_lock));
}

void SystemLock::unlock() noexcept {
    ReleaseSRWLockExclusive(LockAt(&m_lock));
}

void SystemCondition::Wait(std::unique_lock<SystemLock>& lock, uint32_t milliseconds) noexcept {
    static_assert(kForever == INFINITE);
    SleepConditionVariableSRW(ConditionAt(&m_condition), LockAt(&lock.mutex()->m_lock), milliseconds, 0);
}

void SystemCondition::WakeOne() noexcept {
    WakeConditionVariable(ConditionAt(&m_condition));
}

void SystemCondition::WakeAll() noexcept {
    WakeAllConditionVariable(ConditionAt(&m_condition));
}

}  // namespace Win32
