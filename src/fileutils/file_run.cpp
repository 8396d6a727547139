#include "fileutils/file_run.h"

#include <algorithm>
#include <new>
#include <set>

#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "textio/qvutils_exception.h"
#include "win32/file_name.h"
#include "win32/files.h"
#include "win32/path.h"
#include "win32/successor.h"
#include "win32/target_name.h"
#include "win32/windows.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

/// Lets what killed runs have left in a folder go before files of that folder are worked on.
class FolderCare {
public:
    void LookBeside(const std::wstring& path) {
        const std::wstring folder(Win32::FolderOf(path));
        if (m_done.insert(folder).second) Win32::RemoveLeftovers(folder);
    }

private:
    std::set<std::wstring> m_done;
};

/// The host's display of the progress of a run; a host may have none.
class RunProgress {
public:
    RunProgress() = default;
    RunProgress(IHostServices& host, const std::wstring& title, uint32_t count)
        : m_display(host.OpenProgress(title.c_str(), count)) {}

    /// Shows the item that is next. False when the user has cancelled.
    bool GoesOn(uint32_t index, const std::wstring& shown) const {
        if (!m_display) return true;
        m_display->Advance(index, shown.c_str());
        return !m_display->IsCancelled();
    }

    /// For a file that takes long: how much of it is done stands in front of its path. `path` must outlive it.
    QVUtils::TellProgress TellOf(uint32_t index, const std::wstring& path) const {
        if (!m_display) return {};
        return
            [this, index, &path](uint32_t percent) { return GoesOn(index, std::to_wstring(percent) + L" % " + path); };
    }

    void Close() { m_display.reset(); }

private:
    OwnedProgress m_display;
};

class FileRunner {
public:
    FileRunner(IHostServices& host, IFileList& files, const FileRun& run)
        : m_host(host),
          m_files(files),
          m_run(run),
          m_mayOverwrite(run.mayOverwrite),
          m_title(HostText(host, run.title)) {
        for (const FileMark& mark : run.marks) m_lists.push_back({mark, Owned<IFileList>(host.CreateFileList())});
    }

    FileRunResult Execute() {
        const std::vector<IFileItem*> items = ItemsOf(m_files);
        const auto count = static_cast<uint32_t>(items.size());
        if (m_run.showsProgress) m_progress.emplace(m_host, m_title, count);
        for (uint32_t index = 0; index < count && !m_result.isCancelled; ++index) ProcessItem(*items[index], index);
        MakeWay();
        if (!m_result.isCancelled) Report();
        return m_result;
    }

private:
    enum class TargetAnswer { Write, Skip, Cancel };

    struct MarkedList {
        FileMark mark;
        Owned<IFileList> list;
        bool isEmpty = true;
    };

    void ProcessItem(IFileItem& item, uint32_t index) {
        FileTask task = {.source = PathOf(item), .target = {}};
        if (task.source.empty()) return;
        m_result.isCancelled = m_progress && !m_progress->GoesOn(index, task.source);
        if (m_result.isCancelled) return;
        task.target = TargetOf(task.source);
        m_care.LookBeside(task.source);
        // Asked before anything looks at the target: a device exists, and takes whatever is written to it.
        if (task.target != task.source && !Win32::IsFileName(Win32::FileNameOf(task.target))) {
            m_run.tellBadTarget(task);
            Count(m_result.failed, MarkKind::Failed, item);
            return;
        }
        switch (AskForTarget(task.target)) {
            case TargetAnswer::Write: Process(task, item, index); break;
            case TargetAnswer::Skip: Skip(task, item); break;
            case TargetAnswer::Cancel: m_result.isCancelled = true; break;
        }
    }

    std::wstring TargetOf(const std::wstring& source) const {
        if (!m_run.saveAs) return source;
        return Win32::JoinPath(Win32::FolderOf(source),
                               Win32::ExpandTargetName(*m_run.saveAs, Win32::FileNameOf(source)));
    }

    TargetAnswer AskForTarget(const std::wstring& target) {
        if (!m_run.saveAs || m_mayOverwrite || !Win32::Exists(target)) return TargetAnswer::Write;
        if (m_run.isSilent) return TargetAnswer::Skip;
        MakeWay();
        const std::wstring question = FormatText(HostText(m_host, m_run.overwriteQuestion), {target});
        switch (m_host.MessageBox(question.c_str(), m_title.c_str(), MB_YESNOCANCEL | MB_ICONQUESTION)) {
            case IDYES: m_mayOverwrite = true; return TargetAnswer::Write;
            case IDNO: return TargetAnswer::Skip;
            default: return TargetAnswer::Cancel;
        }
    }

    void Process(FileTask& task, IFileItem& item, uint32_t index) {
        task.mayOverwrite = m_mayOverwrite;
        if (m_progress) task.tell = m_progress->TellOf(index, task.source);
        switch (m_run.process(task)) {
            case FileResult::Done: Count(m_result.done, MarkKind::Done, item); break;
            case FileResult::Failed: Count(m_result.failed, MarkKind::Failed, item); break;
            case FileResult::Cancelled: m_result.isCancelled = true; break;
        }
    }

    void MakeWay() {
        if (m_run.makeWay) m_run.makeWay();
    }

    void Skip(const FileTask& task, IFileItem& item) {
        m_run.tellSkipped(task);
        if (std::ranges::find(m_run.marks, MarkKind::Skipped, &FileMark::kind) != m_run.marks.end())
            Count(m_result.skipped, MarkKind::Skipped, item);
        else
            Count(m_result.failed, MarkKind::Failed, item);
    }

    void Count(uint32_t& number, uint32_t kind, IFileItem& item) {
        ++number;
        for (MarkedList& marked : m_lists) {
            if (marked.mark.kind != kind) continue;
            if (marked.list) marked.list->AddItem(&item);
            marked.isEmpty = false;
        }
    }

    void Report() {
        if (!m_run.marksBeforeProgressEnds) m_progress.reset();
        for (const MarkedList& marked : m_lists)
            if (marked.list && (marked.mark.alsoWhenEmpty || !marked.isEmpty))
                m_host.RunHostCommand(HostCommand::MarkFiles, marked.list.get(), marked.mark.kind, 0);
        m_progress.reset();
        if (m_run.isSilent) return;
        const RunSummary summary = m_run.summary(m_result);
        m_host.MessageBox(summary.text.c_str(), m_title.c_str(), MB_OK | summary.icon);
    }

    IHostServices& m_host;
    IFileList& m_files;
    const FileRun& m_run;
    bool m_mayOverwrite;  // set for the rest of the run when the user answers Yes
    const std::wstring m_title;
    std::vector<MarkedList> m_lists;
    FolderCare m_care;
    std::optional<RunProgress> m_progress;
    FileRunResult m_result;
};

}  // namespace

FileRunResult RunOverFiles(IHostServices& host, IFileList& files, const FileRun& run) {
    return FileRunner(host, files, run).Execute();
}

CallResult CallWithout(IHostServices& host, const wchar_t* what) {
    TellMissing(host, what);
    return {false, ERROR_SERVICE_NOT_FOUND};
}

void TellTarget(IHostServices& host, const wchar_t* command, const FileTask& task) {
    if (task.target != task.source)
        host.Log(kLogLevel, LogKind::Success, L"[%s] - Note : The target is : %s", command,
                 Win32::FullPath(task.target).c_str());
}

void ForEachFile(IHostServices& host, IFileList& list, TextId title,
                 const std::function<void(const std::wstring&, IFileOperations&, const QVUtils::TellProgress&)>& work,
                 const std::function<void(const std::wstring&, const std::wstring&, uint32_t)>& tellFailure) {
    FolderCare care;
    const std::vector<std::wstring> paths = PathsOf(list);
    RunProgress progress(host, HostText(host, title), static_cast<uint32_t>(paths.size()));
    for (uint32_t index = 0; index < paths.size() && progress.GoesOn(index, paths[index]); ++index) {
        const std::wstring& path = paths[index];
        try {
            care.LookBeside(path);
            const AcquiredService<IFileOperations> files(host, ServiceNumber::FileOperations);
            if (!files)
                tellFailure(path, L"The host gives no file operations", ERROR_SERVICE_NOT_FOUND);
            else if (!files->Exists(path.c_str()))
                tellFailure(path, L"There is no such file", QVUtils::ErrorCode::FileNotFound);
            else
                work(path, *files.Get(), progress.TellOf(index, path));
        } catch (const QVUtils::QVUtilsException& error) {
            const std::string_view reason = error.what();
            tellFailure(path, std::wstring(reason.begin(), reason.end()), error.GetErrorCode());
        } catch (const std::bad_alloc&) {
            tellFailure(path, {}, QVUtils::ErrorCode::OutOfMemory);
        }
    }
}

}  // namespace FileUtils
