#include "fileutils/commands.h"
#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/ids.h"

#include <string>
#include <vector>

#include "fileutils/file_run.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/sort_lines/sort_form.h"
#include "fileutils/sort_lines/sort_lines_dlg.h"
#include "fileutils/sort_lines/sort_parameters.h"
#include "linesorter/sort_file.h"
#include "linesorter/sort_request.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "win32/code_page.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;
using QVLineSorter::SortRequest;
namespace SortOption = QVLineSorter::SortOption;
namespace ErrorCode = QVUtils::ErrorCode;

/// The log lines about a file have this level and the kind of a success, whatever became of it: log readers filter for
/// them so. Only the line with the reason has the failure kind. compatibility: 18
constexpr uint32_t kSorterLogLevel = 0;

/// One request, applied file by file.
class SortWork {
public:
    /// `host` must outlive the object.
    SortWork(IHostServices& host, SortRequest request) : m_host(host), m_request(std::move(request)) {}

    FileRunResult RunOver(IFileList& files) {
        FileRun run;
        run.title = Text::SortTitle;
        run.overwriteQuestion = Text::SortOverwrite;
        if (m_request.Has(SortOption::SaveAs))
            run.saveAs = m_request.saveAsName.empty() ? L"*.*" : m_request.saveAsName;
        run.mayOverwrite = m_request.Has(SortOption::Overwrite);
        run.isSilent = m_request.Has(SortOption::Silent);
        run.showsProgress = !run.isSilent;
        run.marks = {{MarkKind::Done, true}, {MarkKind::Failed, true}, {MarkKind::Skipped, false}};
        run.process = [&](const FileTask& task) { return Process(task); };
        run.tellBadTarget = [&](const FileTask& task) {
            TellFailure(task, L"The target cannot be a file name : " + task.target, ErrorCode::InvalidName);
        };
        run.tellSkipped = [&](const FileTask& task) {
            m_lastErrorCode = ErrorCode::FileExists;
            Log(L"[SortLines] - Skipped to sortline in file : %s", task.source.c_str());
        };
        run.summary = [&](const FileRunResult& result) { return Summary(result); };
        return RunOverFiles(m_host, files, run);
    }

    /// Of the last file that failed or was skipped; else 0.
    uint32_t GetLastErrorCode() const noexcept { return m_lastErrorCode; }

private:
    FileResult Process(const FileTask& task) {
        if (task.mayOverwrite) m_request.options |= SortOption::Overwrite;
        const QVLineSorter::SortFileResult result =
            QVLineSorter::SortFile(task.source, task.target, m_request, task.tell);
        if (result.errorCode == ErrorCode::Cancelled) return FileResult::Cancelled;
        if (result.errorCode != 0) {
            TellFailure(task, Win32::FromCodePage(result.errorText, Win32::kThreadCodePage), result.errorCode);
            TellTarget(m_host, L"SortLines", task);
            return FileResult::Failed;
        }
        if (result.backupErrorCode != 0)
            LogReason(L"Unable to delete the backup (.bak) of the file", result.backupErrorCode);
        Log(L"[SortLines] - Sorted lines in file : %s (Saved as : %s)", task.source.c_str(), task.target.c_str());
        NoteLines(Text::LinesTooShort, result.linesTooShort, result.lines);
        NoteLines(m_request.Has(SortOption::AsDate) ? Text::LinesWithoutDate : Text::LinesWithoutNumber,
                  result.linesWithoutValue, result.lines);
        return FileResult::Done;
    }

    void NoteLines(const CountedText& what, uint64_t count, uint64_t all) {
        if (count == 0) return;
        const Words say([&](TextId id) { return HostText(m_host, id); });
        Log(L"[SortLines] - Note : %s", say(what, count, {say(Text::LinesOf, all, {count, all})}).c_str());
    }

    RunSummary Summary(const FileRunResult& result) const {
        const uint32_t notSorted = result.failed + result.skipped;
        if (notSorted > 0) return {FormatText(HostText(m_host, Text::SortFailed), {notSorted}), MB_ICONERROR};
        return {FormatText(HostText(m_host, Text::SortDone), {result.done}), MB_ICONINFORMATION};
    }

    void TellFailure(const FileTask& task, const std::wstring& reason, uint32_t errorCode) {
        m_lastErrorCode = errorCode;
        LogReason(reason, errorCode);
        Log(L"[SortLines] - Failed to sortline in file : %s", task.source.c_str());
    }

    template <class... Arguments>
    void Log(const wchar_t* format, Arguments... arguments) {
        m_host.Log(kSorterLogLevel, LogKind::Success, format, arguments...);
    }

    void LogReason(const std::wstring& text, uint32_t errorCode) {
        m_host.Log(kSorterLogLevel, LogKind::Failure, L"[SortLines] - Error : %s ( ErrorCode : %d )", text.c_str(),
                   errorCode);
    }

    IHostServices& m_host;
    SortRequest m_request;
    uint32_t m_lastErrorCode = 0;
};

CallResult SortOneFile(IHostServices& host, ICustomCommandCall& call, IFileItem& item, SortRequest request) {
    const Owned<IFileList> list(host.CreateFileList());
    if (!list || !list->AddItem(&item)) return {false, ErrorCode::OutOfMemory};
    const std::vector<std::wstring> notes = NotesOnSortParameters(call, request);
    SortWork work(host, std::move(request));
    const FileRunResult result = work.RunOver(*list);
    for (const std::wstring& note : notes)
        host.Log(kLogLevel, LogKind::Success, L"[SortLines] - Note : %s", note.c_str());
    return {result.done > 0, result.isCancelled ? ErrorCode::Cancelled : work.GetLastErrorCode()};
}

}  // namespace

CallResult RunSortLinesCommand(IHostServices& host, ICustomCommandCall& call) {
    const wchar_t* const file = call.HasParameter(Parameter::File) ? call.GetTextParameter(Parameter::File) : nullptr;
    if (!file) return {false, ErrorCode::InvalidParameter};
    const std::wstring fileName = file;
    try {
        SortRequest request = ReadSortParameters(call);
        const AcquiredService<IFileOperations> files(host, ServiceNumber::FileOperations);
        if (!files) return CallWithout(host, L"file operations");
        const Owned<IFileItem> item(files->CreateFileItem(fileName.c_str(), 1));
        if (item) return SortOneFile(host, call, *item, std::move(request));
        host.Log(kLogLevel, LogKind::Failure, L"[Custom Cmd - SortLines] - FILE : %s not found", fileName.c_str());
        return {false, ErrorCode::FileNotFound};
    } catch (const BadParameter& bad) {
        const std::wstring name(bad.name, bad.name + std::char_traits<char>::length(bad.name));
        host.Log(kLogLevel, LogKind::Failure, L"[Custom Cmd - SortLines] - %s : %s", name.c_str(), bad.reason.c_str());
        return {false, ErrorCode::InvalidParameter};
    }
}

uint32_t RunSortLinesDialog(IHostServices& host, uint32_t) {
    const Owned<IFileList> files = GatherSelection(host, SelectionFlags::Files);
    if (!files || files->GetCount() == 0) return 1;

    SortRequest last;
    last.itemNumber = 1;  // until the user asks for another item
    LoadSortLinesSettings(host.GetSettings(), last);
    SortLinesDlg dialog([&](TextId id) { return HostText(host, id); }, PathsOf(*files), std::move(last));
    dialog.UseHost(DialogHostFor(host, IDD_SORT_LINES));
    auto chosen = dialog.Show(host.GetMainWindow());
    if (!chosen) return 1;
    SaveSortLinesSettings(host.GetSettings(), *chosen);
    SortWork(host, std::move(*chosen)).RunOver(*files);
    return 1;
}

}  // namespace FileUtils
