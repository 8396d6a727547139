// security_system.h - the system calls of this module, as a table in which a test can replace a single one: not every
// system that this library is tested on has them all.
#pragma once

#include "win32/windows.h"

#include <aclapi.h>

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
    /// Fills the buffer with the records of a file's or folder's streams; see stream_records.h. On failure the buffer
    /// is left as it was.
    void (*queryStreams)(HANDLE file, void* buffer, ULONG size);
};

/// The table of this system. What few calls need (the network's names, the streams) is looked up with the first use:
/// a library that is loaded with ours costs every start of the host.
const SecuritySystem& RealSystem();

}  // namespace Security
