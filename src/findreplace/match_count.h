// match_count.h - what a request would do to a file, found by the engine itself, which writes nothing here.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>

#include "findreplace/request.h"
#include "textio/encoding.h"
#include "textio/progress.h"

namespace QVFindAndReplace {

/// How far a count goes at the most.
struct CountBounds {
    uint64_t bytes = std::numeric_limits<uint64_t>::max();
    /// Told how much of the file is read, in percent, for each 32 KB or so and in long lines; false ends the count.
    QVUtils::TellProgress goesOn = {};
};

/// What a run with the same request would find in one file.
struct FileCount {
    QVUtils::EncodingKind kind = QVUtils::EncodingKind::NotText;  // as it is read: UTF-8 where that is forced
    uint64_t bytes = 0;                                           // of the file, looked at
    uint64_t changes = 0;                                         // 0 for a file that would fail
    bool isWhole = true;                                          // false: a bound came first, there may be more
    bool looksLikeUtf8 = false;   // read in a code page, and UTF-8 with other characters than ASCII
    bool hasLoneBreaks = false;   // a CR without LF: a changed file loses it
    bool hasMixedBreaks = false;  // LF and CR LF: a changed file has the kind of its first break
    uint32_t errorCode = 0;       // above 0: the file would fail, or cannot be read
    std::string error;            // why
};

/// A line that would change, for people to read: a long one is cut around the first difference, with an ellipsis.
struct LineChange {
    uint64_t line = 0;                   // of the file as it is, from 1; of an added line the one that it follows
    std::optional<std::wstring> before;  // nothing: the line is added
    std::optional<std::wstring> after;   // nothing: the line goes
};
using TellChange = std::function<void(const LineChange&)>;

/// Reads the file and changes nothing, wherever it is. `changes` is the number that a run would report which replaces
/// every match. With `tell`, each line that would be different is told, in the file's order; its bytes are shown as the
/// characters that they are in the encoding of the file.
///
/// For a request over several lines the text is held whole, up to the bound. Throws nothing; what `tell` throws makes
/// the file one that fails.
FileCount CountMatches(const std::wstring& path, Request& request, const CountBounds& bounds = {},
                       const TellChange& tell = {});

/// True when what a run leaves is for another run to find. Where the replacements themselves hold something to find, a
/// second run would replace what the first has put there.
bool MayBeRunAgain(Request& request);

}  // namespace QVFindAndReplace
