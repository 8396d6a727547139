// enabled_privileges.h - what this process may do at the moment.
#pragma once

#include <gtest/gtest.h>

#include "win32/handle.h"

namespace QVTest {

inline bool IsEnabled(const wchar_t* privilege) {
    HANDLE raw = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &raw));
    const Win32::KernelHandle token(raw);
    PRIVILEGE_SET set = {.PrivilegeCount = 1, .Control = PRIVILEGE_SET_ALL_NECESSARY, .Privilege = {}};
    EXPECT_TRUE(LookupPrivilegeValueW(nullptr, privilege, &set.Privilege[0].Luid));
    BOOL isEnabled = FALSE;
    EXPECT_TRUE(PrivilegeCheck(token.Get(), &set, &isEnabled));
    return isEnabled != FALSE;
}

}  // namespace QVTest
