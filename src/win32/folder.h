// folder.h - the names of what a folder holds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Win32 {

/// Puts the names of the folder's files and folders that match `pattern` ("*": all) into `names`, without "." and "..".
/// Windows error code, 0 for success; a folder where nothing matches is a success.
uint32_t ListFolder(const std::wstring& folder, const std::wstring& pattern, std::vector<std::wstring>& names);

}  // namespace Win32
