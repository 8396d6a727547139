// link_system.h - the system calls behind links, as a table that a test can replace: not every system that this library
// is tested on has them all.
#pragma once

#include <cstdint>
#include <string>

#include "fileutils/links/reparse.h"

namespace FileUtils {

/// Each gives a Windows error code, 0 for success.
struct LinkSystem {
    uint32_t (*makeHardLink)(const std::wstring& link, const std::wstring& target);
    uint32_t (*makeSymbolicLink)(const std::wstring& link, const std::wstring& target, uint32_t flags);
    /// `folder` exists and is empty.
    uint32_t (*setReparsePoint)(const std::wstring& folder, const ReparseBuffer& buffer);
    /// An empty `workingFolder` is not set. An existing file is overwritten.
    uint32_t (*saveShortcut)(const std::wstring& link, const std::wstring& target, const std::wstring& workingFolder,
                             const wchar_t* description);
};

/// The table of this system.
const LinkSystem& ThisSystem();

}  // namespace FileUtils
