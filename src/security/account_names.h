// account_names.h - between accounts as users write them and the identifiers in security descriptors; and the
// machine that knows the accounts of a path.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>

#include "security/security_system.h"

namespace Security {

/// The identifier of an account.
class AccountSid {
public:
    /// Looks the account up on this machine, which asks its domains where need be. A Windows error code; 1332 when
    /// there is no such account.
    uint32_t Find(const std::wstring& account, const SecuritySystem& system);
    PSID Get() { return m_sid.data(); }

private:
    alignas(void*) std::array<std::byte, 256> m_sid = {};
};

/// The names of identifiers that were looked up. Asking costs many times what reading a descriptor does, and a folder's
/// files have few owners. May be used from any thread.
class AccountNames {
public:
    /// `DOMAIN\name`, or the name alone when it has no domain. `machine` resolves it; "" is this one. False when it
    /// cannot be resolved; that is remembered too, since asking a machine that does not answer takes longest.
    bool Find(const std::wstring& machine, PSID sid, const SecuritySystem& system, std::wstring& name);
    void Clear();

private:
    std::mutex m_mutex;
    std::unordered_map<std::string, std::wstring> m_names;  // by the bytes of machine and identifier; "" for none
};

/// The user who runs this process: the bare name; "" when the system does not say.
std::wstring CurrentUserName();
/// The same as `DOMAIN\name`.
std::wstring CurrentAccountName();

/// May be used from any thread.
class UniversalNames {
public:
    /// The share (`\\server\share`) that `path` leads to, a drive or a path on it. False for a drive that is none of a
    /// network; that is asked again the next time, since a drive may be mapped at any moment.
    bool Find(const std::wstring& path, const SecuritySystem& system, std::wstring& name);
    void Clear();

private:
    std::mutex m_mutex;
    std::map<wchar_t, std::wstring> m_names;  // by the drive's letter
};

/// The text between the two leading backslashes of a share's path and the next one: `server` of `\\server\share\a`,
/// also when it is written `\\?\UNC\server\share\a`. "" when it is no such path.
std::wstring ServerOf(const std::wstring& sharePath);

}  // namespace Security
