// whole_file.h - small files read in one go.
#pragma once

#include <cstdint>
#include <string>

namespace QVHost {

/// Reads the file at `path` into `bytes`. Windows error code, 0 for success; a file over 256 MB is refused (223).
uint32_t ReadWholeFile(const std::wstring& path, std::string& bytes);

}  // namespace QVHost
