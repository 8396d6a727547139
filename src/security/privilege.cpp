#include "security/privilege.h"

#include <map>
#include <mutex>

#include "win32/handle.h"

namespace Security {
namespace {

/// What the first object of a name did to the token, and how many objects rely on it.
struct Use {
    uint32_t count = 0;
    uint32_t error = ERROR_SUCCESS;
    bool isHeld = false;
    TOKEN_PRIVILEGES before = {};  // empty when nothing was changed
};

struct Uses {
    std::mutex mutex;
    std::map<std::wstring, Use, std::less<>> byName;
};

Uses& UsesOfThisProcess() {
    static Uses uses;
    return uses;
}

/// Fails with the last error.
bool OpenOwnToken(Win32::KernelHandle& token) {
    HANDLE raw = nullptr;
    // To know how a privilege was before takes the right to query as well.
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &raw)) return false;
    token.Reset(raw);
    return true;
}

void Enable(const wchar_t* name, Use& use) {
    Win32::KernelHandle token;
    TOKEN_PRIVILEGES wanted = {};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    DWORD size = sizeof(use.before);
    const bool isDone = OpenOwnToken(token) && LookupPrivilegeValueW(nullptr, name, &wanted.Privileges[0].Luid) &&
                        AdjustTokenPrivileges(token.Get(), FALSE, &wanted, sizeof(use.before), &use.before, &size);
    const DWORD error = GetLastError();
    use.error = isDone ? ERROR_SUCCESS : error;
    // A call that succeeds for a privilege that the user does not hold says so in the last error.
    use.isHeld = isDone && error == ERROR_SUCCESS;
    // Some systems list a privilege here that was enabled already.
    const bool wasEnabled = (use.before.Privileges[0].Attributes & SE_PRIVILEGE_ENABLED) != 0;
    if (!use.isHeld || wasEnabled) use.before.PrivilegeCount = 0;
}

void Restore(Use& use) {
    Win32::KernelHandle token;
    if (use.before.PrivilegeCount > 0 && OpenOwnToken(token))
        AdjustTokenPrivileges(token.Get(), FALSE, &use.before, 0, nullptr, nullptr);
}

}  // namespace

ScopedPrivilege::ScopedPrivilege(const wchar_t* name, bool enable) {
    if (!enable) return;
    Uses& uses = UsesOfThisProcess();
    const std::lock_guard lock(uses.mutex);
    m_name = name;
    Use& use = uses.byName[m_name];
    if (use.count++ == 0) Enable(name, use);
    m_isHeld = use.isHeld;
    m_hasChanged = use.before.PrivilegeCount > 0;
    m_error = use.error;
}

ScopedPrivilege::~ScopedPrivilege() {
    if (m_name.empty()) return;
    Uses& uses = UsesOfThisProcess();
    const std::lock_guard lock(uses.mutex);
    const auto use = uses.byName.find(m_name);
    if (--use->second.count > 0) return;
    Restore(use->second);
    uses.byName.erase(use);
}

}  // namespace Security
