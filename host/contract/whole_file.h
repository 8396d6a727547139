// whole_file.h - small files read in one go.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "win32/successor.h"

namespace QVHost {

/// Reads the file at `path` into `bytes`. Windows error code, 0 for success; a file over 256 MB is refused (223).
uint32_t ReadWholeFile(const std::wstring& path, std::string& bytes);
/// The same, and `original` is what a file that takes its place must know of it.
uint32_t ReadWholeFile(const std::wstring& path, std::string& bytes, std::optional<Win32::FileState>& original);

}  // namespace QVHost
