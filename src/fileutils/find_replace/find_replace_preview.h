// find_replace_preview.h - what is told of a find and replace besides its result: what it would do, and notes on what
// it leaves or costs.
#pragma once

#include <string>

#include "fileutils/commands.h"
#include "findreplace/match_count.h"
#include "sdk/host_services.h"

namespace FileUtils {

/// True when find text or replacement has other characters than ASCII: then it matters whether an 8-bit file is read as
/// UTF-8.
bool DependsOnEncoding(const QVFindAndReplace::Request& request);

/// Logs each line of the file that the request would change, as "3- " with the line as it is and "3+ " with what it
/// would be, and how many changes there are. Nothing is written, asked or marked. The progress can be cancelled.
///
/// A file that the run could not do fails the call with its error. One that is not text is told, as a run does.
CallResult PreviewFile(Quorvane::SDK::IHostServices& host, const std::wstring& path,
                       QVFindAndReplace::Request& request);

/// A note in the log: the file looks like UTF-8 and was not read so.
void NoteUtf8(Quorvane::SDK::IHostServices& host, const std::wstring& path);

/// A note in the log when matches are left in a file that the request has just been run over, and another run would
/// get them. Counts in the first 4 MB of the file.
void NoteMatchesLeft(Quorvane::SDK::IHostServices& host, const std::wstring& path, QVFindAndReplace::Request& request);

}  // namespace FileUtils
