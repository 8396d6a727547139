// security_system.h - the system calls of this module, as a table in which a test can replace a single one: not every
// system that this library is tested on has them all. And a file's security descriptor, read through them.
#pragma once

#include <aclapi.h>
#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "win32/windows.h"

namespace Security {

struct SecuritySystem {
    decltype(&GetFileSecurityW) getFileSecurity;
    decltype(&GetNamedSecurityInfoW) getNamedSecurityInfo;
    decltype(&SetNamedSecurityInfoW) setNamedSecurityInfo;
    decltype(&GetEffectiveRightsFromAclW) getEffectiveRights;
    decltype(&LookupAccountSidW) lookupAccountSid;
    decltype(&LookupAccountNameW) lookupAccountName;
    /// As WNetGetUniversalNameW.
    DWORD(WINAPI* getUniversalName)(LPCWSTR path, DWORD level, LPVOID buffer, LPDWORD size);
    /// As NtQueryInformationFile; on failure the buffer is left as it was. `status`: an IO_STATUS_BLOCK.
    LONG(WINAPI* queryInformationFile)(HANDLE file, void* status, void* buffer, ULONG size, ULONG informationClass);
};

/// The table of this system. What few calls need (the network's names, the streams) is looked up with the first use:
/// a library that is loaded with ours costs every start of the host.
const SecuritySystem& RealSystem();

/// Most descriptors are small: they are read by one call into a buffer of the object's own. Only larger ones are asked
/// for their size and read again.
class FileDescriptor {
public:
    /// False when the file has none or may not be read. `parts`: OWNER_SECURITY_INFORMATION and its like.
    bool Read(const SecuritySystem& system, const std::wstring& path, SECURITY_INFORMATION parts);
    PSECURITY_DESCRIPTOR Get() { return m_larger ? m_larger.get() : m_buffer.data(); }

private:
    static constexpr size_t kUsualSize = 1024;  // bytes
    alignas(void*) std::array<std::byte, kUsualSize> m_buffer;
    std::unique_ptr<std::byte[]> m_larger;
};

}  // namespace Security
