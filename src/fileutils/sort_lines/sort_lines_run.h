// sort_lines_run.h - one sort over a selection: targets, questions, log lines, lists handed back, summary. Sorting a
// file is sort_file.h's work.
#pragma once

#include "linesorter/sort_request.h"
#include "sdk/host_services.h"

namespace QVLineSorter {

struct SortRunResult {
    uint32_t sorted = 0;
    uint32_t failed = 0;
    uint32_t skipped = 0;        // their target exists and stays as it is
    bool isCancelled = false;    // by the user: the files behind are as they were
    uint32_t lastErrorCode = 0;  // of the last file that failed or was skipped
};

/// Where a file's sorted lines go: the file itself, or with SaveAs the pattern's name in the file's own folder.
std::wstring TargetOf(const std::wstring& source, const SortRequest& request);

/// Sorts the files in the list's order. A file that fails is reported and the run goes on.
SortRunResult SortFiles(Quorvane::SDK::IHostServices& host, Quorvane::SDK::IFileList& files, SortRequest request);

}  // namespace QVLineSorter
