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
/// 8-bit text and UTF-16 are sorted; other files are refused with code 1630. Every file that fails stays untouched
/// under its name: its successor is written beside it, and the file is moved aside or replaced only once that is
/// complete.
SortFileResult SortFile(const std::wstring& source, const std::wstring& target, const SortRequest& request) noexcept;

}  // namespace QVLineSorter
