// run_report.h - what a command has done to the files of the panel: counted by the files themselves, before and after,
// since many commands say nothing of it; and where a line of the log leads to.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/contract/panel_view.h"
#include "host/panel/folder_rows.h"

namespace QVHost {

struct RunCounts {
    size_t changed = 0;  // files with other content; these are of the folder shown
    size_t added = 0;
    size_t gone = 0;
    size_t renamed = 0;  // files and folders anywhere
    size_t told = 0;     // told of as done, where no other number above says what was done
    size_t failed = 0;
    size_t skipped = 0;
    uint64_t replaced = 0;  // matches

    bool operator==(const RunCounts&) const = default;
};

/// Of one command. Everything is told on the panel's thread.
class RunReport {
public:
    /// `rows`: what the folder holds before.
    void Begin(std::vector<FolderRow> rows);
    void Mark(uint32_t kind);
    void Rename(const std::wstring& before, const std::wstring& now) { m_renamings.emplace_back(before, now); }
    void Line(std::wstring_view text, Tone tone);
    /// `rows`: what the folder holds afterwards.
    RunCounts End(const std::vector<FolderRow>& rows);

private:
    std::vector<FolderRow> m_before;
    std::vector<std::pair<std::wstring, std::wstring>> m_renamings;
    RunCounts m_counts;
    size_t m_doneLines = 0;
    size_t m_failureLines = 0;
};

/// Whether a log line of a success tells that something was done, and not only what may be of interest about it.
bool TellsWhatWasDone(std::wstring_view line);

/// How many changes a log line of a find and replace tells of: "[Find and Replace] - 7 changes made to file : ...". The
/// lines' form is fixed, as scripts read them. 0 for any other line.
uint64_t ChangesIn(std::wstring_view line);

/// The file or folder that a log line names by its full path: of a renamed one the new name, of one that is gone its
/// folder. "" where there is none. `exists` says of a path whether it leads anywhere.
std::wstring PathIn(std::wstring_view line, const std::function<bool(const std::wstring&)>& exists);

}  // namespace QVHost
