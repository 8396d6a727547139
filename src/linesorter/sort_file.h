// sort_file.h - sorts one file from disk to disk. Targets, questions and reports are the run's work.
#pragma once

#include <cstdint>
#include <string>

#include "linesorter/sort_request.h"

namespace QVLineSorter {

struct SortFileResult {
    uint32_t errorCode = 0;        // Windows error code; 0: the target is complete
    std::string errorText;         // what failed, in words
    uint32_t backupErrorCode = 0;  // with errorCode 0: why a backup that was to be deleted is still there
};

/// Reads `source`, sorts its lines and writes `target`, which may be the same file. Never throws.
///
/// 8-bit text and UTF-16 are sorted; other files are refused with code 1630 and stay untouched, and so does every
/// source that fails before writing begins. With a backup, the file is moved aside before its successor is written;
/// when that fails the backup stays, and the text says so.
SortFileResult SortFile(const std::wstring& source, const std::wstring& target, const SortRequest& request) noexcept;

}  // namespace QVLineSorter
