// sort_file.h - sorts one file from disk to disk. Targets, questions and reports are the run's work.
#pragma once

#include <cstdint>
#include <string>

#include "linesorter/sort_request.h"
#include "textio/progress.h"

namespace QVLineSorter {

struct SortFileResult {
    uint32_t errorCode = 0;          // Windows error code; 0: the target is complete
    std::string errorText;           // what failed, in words
    uint32_t backupErrorCode = 0;    // with errorCode 0: why a backup that was to be deleted is still there
    uint64_t lines = 0;              // that were to be sorted: the kept ones do not count
    uint64_t linesTooShort = 0;      // of these, with no key: they end before its place
    uint64_t linesWithoutValue = 0;  // of these, with no number or no date, where these are the keys
};

/// Reads `source`, sorts its lines and writes `target`, which may be the same file. Never throws.
///
/// 8-bit text and UTF-16 are sorted; other files are refused with code 1630. Every file that fails stays untouched
/// under its name: its successor is written beside it, and the file is moved aside or replaced only once that is
/// complete. `tell` hears of the progress at least ten times a second, on the calling thread, and can cancel at any
/// time (code 1223).
SortFileResult SortFile(const std::wstring& source, const std::wstring& target, const SortRequest& request,
                        QVUtils::TellProgress tell = {}) noexcept;

}  // namespace QVLineSorter
