// find_replace_run.h - one find-and-replace request over all files of a selection.
#pragma once

#include <cstdint>
#include <string>

#include "fileutils/find_replace/confirm_replace.h"
#include "findreplace/request.h"
#include "sdk/owners.h"

namespace QVFindAndReplace {

/// What a run is given beside the host.
struct Run {
    Request& request;
    std::wstring targetPattern;  // of "Save as": a name, or a pattern with "*"; empty: no name
    std::wstring targetFolder;   // empty: each file's own
    IConfirmReplace& confirmation;
};

/// What came of it.
struct RunResult {
    int64_t changes = 0;
    uint32_t done = 0;    // files processed, also without any change
    uint32_t failed = 0;  // files that failed or whose target was not to be overwritten
    bool isCancelled = false;
};

/// Processes the files in list order: asks about existing targets, logs one line a file, hands the lists of done and
/// failed files back to the host and, unless silent, shows a summary. Does nothing for a missing or empty list.
RunResult RunOverFiles(Quorvane::SDK::IHostServices& host, Quorvane::SDK::IFileList* files, const Run& run);

}  // namespace QVFindAndReplace
