// access_list.h - access lists of a test's files.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "win32/files.h"
#include "win32/handle.h"

#include <sddl.h>

namespace QVTest {

inline std::vector<std::byte> AccessListOf(const std::wstring& path) {
    Win32::FileState state;
    EXPECT_EQ(Win32::GetState(path, state), 0u);
    return state.accessList;
}

/// `list` in the system's text form. Gives it back as the file then has it.
inline std::vector<std::byte> GiveAccessList(const std::wstring& path, const wchar_t* list) {
    PSECURITY_DESCRIPTOR raw = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(list, SDDL_REVISION_1, &raw, nullptr));
    const Win32::LocalMemory descriptor(raw);
    const auto usual = AccessListOf(path);
    EXPECT_TRUE(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, raw));
    EXPECT_NE(AccessListOf(path), usual);
    return AccessListOf(path);
}

/// What no folder hands down to new files: administrators only.
inline constexpr wchar_t kNarrowList[] = L"D:(A;;FA;;;BA)";

}  // namespace QVTest
