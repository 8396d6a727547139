#include "fileutils/sort_lines/sort_lines_run.h"

#include "fileutils/fileutils_texts.h"
#include "linesorter/sort_file.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "textio/qvutils_exception.h"
#include "textio/target_name.h"
#include "win32/code_page.h"
#include "win32/file_name.h"
#include "win32/files.h"
#include "win32/path.h"

namespace QVLineSorter {
namespace {

using namespace Quorvane::SDK;
namespace Text = FileUtils::Text;

/// The sorter's own log lines are written at this level, and those about a file with the kind of a success, whatever
/// became of it: log readers filter for them so. Only the line with the reason is of the failure kind.
constexpr uint32_t kSorterLogLevel = 0;

class SortRun {
public:
    SortRun(IHostServices& host, IFileList& files, SortRequest&& request)
        : m_host(host),
          m_files(files),
          m_request(std::move(request)),
          m_title(HostText(host, Text::SortTitle)),
          m_sorted(host.CreateFileList()),
          m_failed(host.CreateFileList()),
          m_skipped(host.CreateFileList()) {}

    SortRunResult Run() {
        const std::vector<IFileItem*> items = ItemsOf(m_files);
        const auto count = static_cast<uint32_t>(items.size());
        const OwnedProgress progress(IsSilent() ? nullptr : m_host.OpenProgress(m_title.c_str(), count));
        for (uint32_t i = 0; i < count && !m_result.isCancelled; ++i) {
            const std::wstring path = PathOf(*items[i]);
            if (path.empty()) continue;
            if (progress) {
                progress->Advance(i, path.c_str());
                m_result.isCancelled = progress->IsCancelled();
            }
            if (!m_result.isCancelled) SortItem(*items[i], path);
        }
        return m_result;
    }

    /// To be called with the progress display closed.
    void Report() {
        if (m_result.isCancelled) return;
        Mark(m_sorted, MarkKind::Done);
        Mark(m_failed, MarkKind::Failed);
        if (m_result.skipped > 0) Mark(m_skipped, MarkKind::Skipped);
        if (IsSilent()) return;
        const uint32_t notSorted = m_result.failed + m_result.skipped;
        if (notSorted > 0)
            ShowSummary(Text::SortFailed, notSorted, MB_ICONERROR);
        else
            ShowSummary(Text::SortDone, m_result.sorted, MB_ICONINFORMATION);
    }

private:
    enum class TargetAnswer { Write, Skip, Cancel };

    bool IsSilent() const { return m_request.Has(SortOption::Silent); }

    void SortItem(IFileItem& item, const std::wstring& path) {
        const std::wstring target = TargetOf(path, m_request);
        // Asked before anything looks at the target: a device exists, and takes whatever is written to it.
        if (target != path && !Win32::IsFileName(Win32::FileNameOf(target))) {
            Fail(item, path, L"The target cannot be a file name : " + target, QVUtils::ErrorCode::InvalidName);
            return;
        }
        switch (AskForTarget(target)) {
            case TargetAnswer::Write: break;
            case TargetAnswer::Skip:
                Add(m_skipped, item);
                ++m_result.skipped;
                m_result.lastErrorCode = QVUtils::ErrorCode::FileExists;
                Log(L"[SortLines] - Skipped to sortline in file : %s", path.c_str());
                return;
            case TargetAnswer::Cancel: m_result.isCancelled = true; return;
        }
        const SortFileResult result = SortFile(path, target, m_request);
        if (result.errorCode != 0) {
            Fail(item, path, Win32::FromCodePage(result.errorText, Win32::kThreadCodePage), result.errorCode);
            return;
        }
        if (result.backupErrorCode != 0) LogReason(L"Unable to delete the backup of the file", result.backupErrorCode);
        Add(m_sorted, item);
        ++m_result.sorted;
        Log(L"[SortLines] - Sorted lines in file : %s (Saved as : %s)", path.c_str(), target.c_str());
    }

    void Fail(IFileItem& item, const std::wstring& path, const std::wstring& reason, uint32_t errorCode) {
        Add(m_failed, item);
        ++m_result.failed;
        m_result.lastErrorCode = errorCode;
        LogReason(reason, errorCode);
        Log(L"[SortLines] - Failed to sortline in file : %s", path.c_str());
    }

    TargetAnswer AskForTarget(const std::wstring& target) {
        if (!m_request.Has(SortOption::SaveAs) || !Win32::Exists(target)) return TargetAnswer::Write;
        // A run that may overwrite does not ask: "yes" was said once, by the caller or by the user for the rest of the
        // run.
        if (m_request.Has(SortOption::Overwrite)) return TargetAnswer::Write;
        if (IsSilent()) return TargetAnswer::Skip;
        const std::wstring question = FormatText(HostText(m_host, Text::SortOverwrite), {target});
        switch (m_host.MessageBox(question.c_str(), m_title.c_str(), MB_YESNOCANCEL | MB_ICONQUESTION)) {
            case IDYES: m_request.options |= SortOption::Overwrite; return TargetAnswer::Write;
            case IDNO: return TargetAnswer::Skip;
            default: return TargetAnswer::Cancel;
        }
    }

    template <class... Arguments>
    void Log(const wchar_t* format, Arguments... arguments) {
        m_host.Log(kSorterLogLevel, LogKind::Success, format, arguments...);
    }

    void LogReason(const std::wstring& text, uint32_t errorCode) {
        m_host.Log(kSorterLogLevel, LogKind::Failure, L"[SortLines] - Error : %s ( ErrorCode : %d )", text.c_str(),
                   errorCode);
    }

    static void Add(const Owned<IFileList>& list, IFileItem& item) {
        if (list) list->AddItem(&item);
    }

    void Mark(const Owned<IFileList>& list, uint32_t kind) {
        if (list) m_host.RunHostCommand(HostCommand::MarkFiles, list.get(), kind, 0);
    }

    void ShowSummary(TextId pattern, uint32_t number, uint32_t style) {
        const std::wstring text = FormatText(HostText(m_host, pattern), {number});
        m_host.MessageBox(text.c_str(), m_title.c_str(), style);
    }

    IHostServices& m_host;
    IFileList& m_files;
    SortRequest m_request;
    const std::wstring m_title;
    const Owned<IFileList> m_sorted;
    const Owned<IFileList> m_failed;
    const Owned<IFileList> m_skipped;
    SortRunResult m_result;
};

}  // namespace

std::wstring TargetOf(const std::wstring& source, const SortRequest& request) {
    if (!request.Has(SortOption::SaveAs) || request.saveAsName.empty()) return source;
    const std::wstring name = QVUtils::ExpandTargetName(request.saveAsName, Win32::FileNameOf(source));
    return Win32::JoinPath(Win32::FolderOf(source), name);
}

SortRunResult SortFiles(IHostServices& host, IFileList& files, SortRequest request) {
    SortRun run(host, files, std::move(request));
    const SortRunResult result = run.Run();
    run.Report();
    return result;
}

}  // namespace QVLineSorter
