#include "fileutils/find_replace/find_replace_run.h"

#include "fileutils/fileutils_texts.h"
#include "fileutils/find_replace/find_and_replace_callback.h"
#include "findreplace/process_file.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "textio/qvutils_exception.h"
#include "textio/target_name.h"
#include "win32/file_name.h"
#include "win32/files.h"
#include "win32/path.h"

namespace QVFindAndReplace {
namespace {

using namespace Quorvane::SDK;
namespace Text = FileUtils::Text;

class FileRun {
public:
    FileRun(IHostServices& host, IFileList& files, const Run& run)
        : m_host(host),
          m_files(files),
          m_run(run),
          m_options(run.request.GetOptions()),
          m_done(host.CreateFileList()),
          m_failed(host.CreateFileList()),
          m_progress(host.OpenProgress(HostText(host, Text::FindReplaceTitle), files.GetCount())) {}

    RunResult Execute() {
        const std::vector<IFileItem*> items = ItemsOf(m_files);
        for (uint32_t index = 0; index < items.size() && !m_result.isCancelled; ++index)
            ProcessItem(*items[index], index);
        if (m_result.isCancelled) {
            m_progress.reset();
            m_host.Log(kLogLevel, LogKind::Failure, L"[Find and Replace] - Operation cancelled");
            return m_result;
        }
        if (m_done) m_host.RunHostCommand(HostCommand::MarkFiles, m_done.get(), MarkKind::Done, 0);
        if (m_failed && m_failed->GetCount() > 0)
            m_host.RunHostCommand(HostCommand::MarkFiles, m_failed.get(), MarkKind::Failed, 0);
        m_progress.reset();
        if (!IsSilent()) ShowSummary();
        return m_result;
    }

private:
    enum class TargetCheck { GoOn, Skip };

    bool IsSilent() const { return (m_options & Option::Silent) != 0; }

    void ProcessItem(IFileItem& item, uint32_t index) {
        const std::wstring source = PathOf(item);
        if (source.empty()) return;
        if (m_progress) {
            m_progress->Advance(index, source.c_str());
            if (m_progress->IsCancelled()) {
                m_result.isCancelled = true;
                return;
            }
        }
        const std::wstring target = (m_options & Option::SaveAs) ? TargetOf(source) : source;
        // Asked before anything looks at the target: a device exists, and takes whatever is written to it.
        if (target != source && !Win32::IsFileName(Win32::FileNameOf(target))) {
            FindAndReplaceCallback(m_host, m_options, m_run.confirmation)
                .ReportErrorW((L"The target cannot be a file name : " + target).c_str(),
                              QVUtils::ErrorCode::InvalidName);
            Fail(item, source);
            return;
        }
        if ((m_options & Option::SaveAs) && CheckTarget(target) == TargetCheck::Skip) {
            LogLine(LogKind::Failure, L"[Find and Replace] - File already exists. Do not overwrite : %s", target);
            AddTo(m_failed, item);
            ++m_result.failed;
            return;
        }
        if (!m_result.isCancelled) ProcessFileOf(item, source, target);
    }

    void ProcessFileOf(IFileItem& item, const std::wstring& source, const std::wstring& target) {
        FindAndReplaceCallback callback(m_host, m_options, m_run.confirmation);
        FileNotes notes;
        const int64_t changes = ProcessFile(source, target, m_options, m_run.request, callback, notes);
        if (changes >= 0) {
            m_host.Log(kLogLevel, LogKind::Success, L"[Find and Replace] - %I64d changes made to file : %s", changes,
                       source.c_str());
            AddTo(m_done, item);
            ++m_result.done;
            m_result.changes += changes;
        } else {
            m_result.isCancelled = changes == kFileCancelled;
            Fail(item, source);
        }
        if (notes.looksLikeUtf8)
            LogLine(
                LogKind::Success,
                L"[Find and Replace] - Note : The file looks like UTF-8 and was read in the system's code page; with "
                L"FORCEUTF8 (Force UTF8 for plain text) it is read as UTF-8 : %s",
                source);
        // "Replace All" is an answer for the whole run.
        m_options |= callback.GetOptions() & Option::ReplaceAll;
    }

    void Fail(IFileItem& item, const std::wstring& source) {
        LogLine(LogKind::Failure, L"[Find and Replace] - Failed to Find/Replace text in : %s", source);
        if (m_result.isCancelled) return;
        AddTo(m_failed, item);
        ++m_result.failed;
    }

    std::wstring TargetOf(const std::wstring& source) const {
        const std::wstring folder =
            m_run.targetFolder.empty() ? std::wstring(Win32::FolderOf(source)) : m_run.targetFolder;
        return Win32::JoinPath(folder, QVUtils::ExpandTargetName(m_run.targetPattern, Win32::FileNameOf(source)));
    }

    /// May the target be written? Asks when it exists; Yes holds for the rest of the run, Cancel ends it.
    TargetCheck CheckTarget(const std::wstring& target) {
        if (!Win32::Exists(target)) return TargetCheck::GoOn;
        const bool mayOverwrite = (m_options & Option::Overwrite) != 0;
        if (IsSilent() || mayOverwrite) return mayOverwrite ? TargetCheck::GoOn : TargetCheck::Skip;
        const std::wstring question = FormatText(HostText(m_host, Text::FindReplaceOverwrite), {target});
        switch (m_host.MessageBox(question.c_str(), HostText(m_host, Text::FindReplaceTitle),
                                  MB_YESNOCANCEL | MB_ICONQUESTION)) {
            case IDYES: m_options |= Option::Overwrite; return TargetCheck::GoOn;
            case IDNO: return TargetCheck::Skip;
            default: m_result.isCancelled = true; return TargetCheck::GoOn;
        }
    }

    void ShowSummary() {
        const TextId text = m_result.done == 1 ? Text::FindReplaceDoneOne : Text::FindReplaceDoneMany;
        const std::wstring summary = FormatText(HostText(m_host, text), {m_result.changes, m_result.done});
        m_host.MessageBox(summary.c_str(), HostText(m_host, Text::FindReplaceTitle), MB_OK | MB_ICONINFORMATION);
    }

    void LogLine(uint32_t kind, const wchar_t* format, const std::wstring& path) {
        m_host.Log(kLogLevel, kind, format, path.c_str());
    }

    static void AddTo(const Owned<IFileList>& list, IFileItem& item) {
        if (list) list->AddItem(&item);
    }

    IHostServices& m_host;
    IFileList& m_files;
    const Run& m_run;
    uint32_t m_options;
    RunResult m_result;
    Owned<IFileList> m_done;
    Owned<IFileList> m_failed;
    OwnedProgress m_progress;
};

}  // namespace

RunResult RunOverFiles(IHostServices& host, IFileList* files, const Run& run) {
    if (!files || files->GetCount() == 0) return {};
    return FileRun(host, *files, run).Execute();
}

}  // namespace QVFindAndReplace
