// process_file.h - find and replace in one file: detect, load, match, save.
#pragma once

#include <cstdint>
#include <string>

#include "findreplace/callback.h"
#include "findreplace/request.h"

namespace QVFindAndReplace {

inline constexpr int64_t kFileFailed = -1;
inline constexpr int64_t kFileCancelled = -99;

/// Applies the request to `source` and writes what came of it to `target`, which outside "Save as" runs is the source.
/// `options` is the run's option word, which may say more about the target than the request's.
///
/// Returns the number of changes, kFileFailed or kFileCancelled. A file without a match is not written. One that is not
/// text is reported through the callback and counts 0 changes. Failures are reported through the callback, a
/// cancellation is not; in both cases the original is there with all its bytes, under its own name where it can be.
int64_t ProcessFile(const std::wstring& source, const std::wstring& target, uint32_t options, Request& request,
                    IFindAndReplaceCallback& callback);

}  // namespace QVFindAndReplace
