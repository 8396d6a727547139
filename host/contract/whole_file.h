// whole_file.h - small files read and written in one go.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace QVHost {

/// Reads the file at `path` into `bytes`. Windows error code, 0 for success; a file over 256 MB is refused (223).
uint32_t ReadWholeFile(const std::wstring& path, std::string& bytes);

/// Writes beside the file and moves over it when all is on disk, so that a failure leaves the old file as it was, and
/// nothing else. The file keeps its name as it stands on disk, its attributes and its access list. Windows error code,
/// 0 for success.
uint32_t ReplaceWholeFile(const std::wstring& path, std::string_view bytes);

}  // namespace QVHost
