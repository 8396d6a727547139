// aclapi.h - the shapes of the system's security calls, for code that gets them as a table (security_system.h).
#pragma once

#include "windows.h"

DWORD GetFileSecurityW(const wchar_t*, DWORD, void*, DWORD, DWORD*);
DWORD GetNamedSecurityInfoW(wchar_t*, int, DWORD, void**, void**, void**, void**, void**);
DWORD SetNamedSecurityInfoW(wchar_t*, int, DWORD, void*, void*, void*, void*);
DWORD GetEffectiveRightsFromAclW(void*, void*, DWORD*);
BOOL LookupAccountSidW(const wchar_t*, PSID, wchar_t*, DWORD*, wchar_t*, DWORD*, SID_NAME_USE*);
BOOL LookupAccountNameW(const wchar_t*, const wchar_t*, PSID, DWORD*, wchar_t*, DWORD*, SID_NAME_USE*);
