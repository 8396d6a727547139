// file_run.h - one run over a selection: targets, the question about those that exist, progress, and the lists that are
// handed back to the host. What is done with a file is a function of the caller's; the run knows nothing of it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "fileutils/commands.h"
#include "sdk/host_services.h"
#include "textio/progress.h"

namespace FileUtils {

/// One file of a run.
struct FileTask {
    std::wstring source;
    std::wstring target;        // full path: the source's own, or that of "Save as"
    bool mayOverwrite = false;  // a target of "Save as" that exists may be replaced
    /// For a file that takes long: shown beside its name. Empty where the run shows no progress.
    QVUtils::TellProgress tell = {};
};

enum class FileResult { Done, Failed, Cancelled };

/// What came of a run.
struct FileRunResult {
    uint32_t done = 0;
    uint32_t failed = 0;
    uint32_t skipped = 0;      // their target exists and stays as it is
    bool isCancelled = false;  // by the user: the files after that are as they were
};

/// A list that is handed back to the host, to be marked in its panel.
struct FileMark {
    uint32_t kind;  // MarkKind
    bool alsoWhenEmpty;
};

struct RunSummary {
    std::wstring text;
    uint32_t icon;  // MB_ICON...
};

/// What one run does, and what is told of it.
struct FileRun {
    Quorvane::SDK::TextId title = {};              // of the progress display and the boxes
    Quorvane::SDK::TextId overwriteQuestion = {};  // with the target's path
    /// "Save as": the target's name in the source's folder, or a pattern for it (see Win32::ExpandTargetName). Without,
    /// each file is its own target.
    std::optional<std::wstring> saveAs;
    bool mayOverwrite = false;
    bool isSilent = false;  // shows neither question nor summary; targets that exist stay unless mayOverwrite
    bool showsProgress = true;
    bool marksBeforeProgressEnds = false;
    /// In the order in which they are handed back. Where no list is for skipped files, they count as failed.
    std::vector<FileMark> marks;

    std::function<FileResult(const FileTask&)> process;
    std::function<void()> makeWay;                       // the run is to show something, or is over; may be empty
    std::function<void(const FileTask&)> tellBadTarget;  // the target's name is not one that a file may have: failed
    std::function<void(const FileTask&)> tellSkipped;
    std::function<RunSummary(const FileRunResult&)> summary;
};

/// Processes the files in the list's order; items without a path are left out. A file that fails does not end the run.
/// Asks about each target of "Save as" that exists: Yes holds for the rest of the run, Cancel ends it. Neither lists
/// nor summary come of a cancelled run.
FileRunResult RunOverFiles(Quorvane::SDK::IHostServices& host, Quorvane::SDK::IFileList& files, const FileRun& run);

/// The end of a custom command for which the host does not give what it needs; the log says what.
CallResult CallWithout(Quorvane::SDK::IHostServices& host, const wchar_t* what);

/// Logs the full path of the target, where that is not the source: of a file that failed the messages of the run name
/// the source alone, and a target is named within the source's folder.
void TellTarget(Quorvane::SDK::IHostServices& host, const wchar_t* command, const FileTask& task);

/// Calls `work` for each path of the list, and shows the progress under `title`; `tell` is for a file that takes long.
/// One that the host's file operations do not find, one that throws QVUtilsException or runs out of memory is told,
/// with the reason in words ("" for want of memory) and the Windows error code, and the next one follows, unless the
/// user has cancelled.
void ForEachFile(
    Quorvane::SDK::IHostServices& host, Quorvane::SDK::IFileList& files, Quorvane::SDK::TextId title,
    const std::function<void(const std::wstring& path, Quorvane::SDK::IFileOperations&,
                             const QVUtils::TellProgress& tell)>& work,
    const std::function<void(const std::wstring& path, const std::wstring& reason, uint32_t error)>& tellFailure);

}  // namespace FileUtils
