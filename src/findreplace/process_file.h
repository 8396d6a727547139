// process_file.h - find and replace in one file: detect, load, match, save.
#pragma once

#include <cstdint>
#include <string>

#include "findreplace/callback.h"
#include "findreplace/request.h"
#include "textio/progress.h"

namespace QVFindAndReplace {

inline constexpr int64_t kFileFailed = -1;
inline constexpr int64_t kFileCancelled = -99;

/// What a run may have to tell about a file besides its result.
struct FileNotes {
    /// The file was taken for 8-bit text of a code page, find text or replacements in it are not ASCII, and as far as
    /// it was read it is UTF-8 with characters that are not ASCII either.
    bool looksLikeUtf8 = false;
};

/// Applies the request to `source` and writes what came of it to `target`, which outside "Save as" runs is the source.
/// `options` is the run's option word, which may say more about the target than the request's.
///
/// Returns the number of changes, kFileFailed or kFileCancelled. A file without a match is not written. One that is not
/// text is reported through the callback and counts 0 changes. Failures are reported through the callback, a
/// cancellation is not; in both cases the original is there with all its bytes, under its own name where it can be.
/// `notes` are set in all cases. `tell` hears of the progress at least ten times a second, on the calling thread, and
/// can cancel until the new content takes the target's place.
int64_t ProcessFile(const std::wstring& source, const std::wstring& target, uint32_t options, Request& request,
                    IFindAndReplaceCallback& callback, FileNotes& notes, QVUtils::TellProgress tell = {});

}  // namespace QVFindAndReplace
