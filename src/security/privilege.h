// privilege.h - privileges of the process, enabled for as long as they are needed.
#pragma once

#include <cstdint>
#include <string>

namespace Security {

/// Enables a privilege by its name ("SeBackupPrivilege") while the object lives, and then puts it back as it was.
///
/// A privilege belongs to the whole process, and the host asks from several threads: the first object of a name enables
/// it and the last one restores it, so none takes it away from another. Without `enable` the token is not touched.
class ScopedPrivilege {
public:
    explicit ScopedPrivilege(const wchar_t* name, bool enable = true);
    ~ScopedPrivilege();
    ScopedPrivilege(const ScopedPrivilege&) = delete;
    ScopedPrivilege& operator=(const ScopedPrivilege&) = delete;

    /// False when the user does not hold the privilege; true when nothing was to be enabled.
    bool Succeeded() const { return m_isHeld; }
    /// The token is different from what it was before.
    bool HasChangedToken() const { return m_hasChanged; }
    /// Of the system calls: a Windows error code. 0 also when the user does not hold the privilege, since the calls
    /// themselves succeed then.
    uint32_t Error() const { return m_error; }

private:
    std::wstring m_name;  // "": nothing to restore
    bool m_isHeld = true;
    bool m_hasChanged = false;
    uint32_t m_error = 0;
};

}  // namespace Security
