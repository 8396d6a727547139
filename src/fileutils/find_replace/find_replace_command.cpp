#include "fileutils/commands.h"
#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/ids.h"
#include "win32/text.h"

#include <string>
#include <vector>

#include "fileutils/file_run.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/find_replace/confirm_replace_dlg.h"
#include "fileutils/find_replace/find_and_replace_callback.h"
#include "fileutils/find_replace/find_and_replace_dlg.h"
#include "fileutils/find_replace/find_replace_preview.h"
#include "findreplace/process_file.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "textio/qvutils_exception.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;
namespace ErrorCode = QVUtils::ErrorCode;
namespace Option = QVFindAndReplace::Option;

struct ModeName {
    const wchar_t* name;
    uint32_t option;
};
constexpr ModeName kModeNames[] = {
    {L"One", Option::ModeOne},
    {L"Many", Option::ModeMany},
    {L"ManySame", Option::ModeManySame},
    {L"Multiline", Option::ModeMultiline},
};

// "IGNORECASE" is registered and not here: runs from scripts tell upper from lower case.
// compatibility: 7
constexpr std::pair<const char*, uint32_t> kFindSwitches[] = {
    {Parameter::ForceUtf8, Option::ForceUtf8}, {Parameter::Wildcard, Option::Wildcard},
    {Parameter::Overwrite, Option::Overwrite}, {Parameter::ReplaceAll, Option::ReplaceAll},
    {Parameter::Silent, Option::Silent},
};

std::wstring TextParameter(ICustomCommandCall& call, const char* name) {
    const wchar_t* const text = call.HasParameter(name) ? call.GetTextParameter(name) : nullptr;
    return text ? text : L"";
}

/// A script cannot hold a line break, so the two characters backslash and n stand for one.
std::wstring WithLineBreaks(std::wstring text) {
    for (size_t at = 0; (at = text.find(L"\\n", at)) != std::wstring::npos; ++at) text.replace(at, 2, L"\n");
    return text;
}

uint32_t OptionsOf(ICustomCommandCall& call) {
    uint32_t options = Option::ModeOne;
    const std::wstring mode = TextParameter(call, Parameter::Mode);
    for (const ModeName& row : kModeNames)
        if (Win32::EqualIgnoringCase(mode, row.name)) options = row.option;
    for (const auto& [name, option] : kFindSwitches)
        if (call.HasParameter(name)) options |= option;
    if (call.HasParameter(Parameter::KeepBackup))
        options |= Option::KeepBackup;
    else
        options |= call.HasParameter(Parameter::Delete) ? Option::DropBackup : Option::SaveAs;
    return options;
}

/// One request, applied file by file.
class FindReplaceWork {
public:
    /// All arguments must outlive the object.
    FindReplaceWork(IHostServices& host, QVFindAndReplace::Request& request, IConfirmReplace& confirmation)
        : m_host(host), m_request(request), m_options(request.GetOptions()), m_confirmation(confirmation) {}

    /// `targetPattern`: of "Save as", else unused.
    FileRunResult RunOver(IFileList& files, const std::wstring& targetPattern) {
        FileRun run;
        run.title = Text::FindReplaceTitle;
        run.overwriteQuestion = Text::FindReplaceOverwrite;
        if (m_options & Option::SaveAs) run.saveAs = targetPattern;
        run.mayOverwrite = (m_options & Option::Overwrite) != 0;
        run.isSilent = (m_options & Option::Silent) != 0;
        run.marksBeforeProgressEnds = true;
        run.marks = {{MarkKind::Done, true}, {MarkKind::Failed, false}};
        m_fileCount = files.GetCount();
        run.makeWay = [&] { m_confirmation.Close(); };
        run.process = [&](const FileTask& task) { return Process(task); };
        run.tellBadTarget = [&](const FileTask& task) {
            NextCallback().ReportErrorW((L"The target cannot be a file name : " + task.target).c_str(),
                                        ErrorCode::InvalidName);
            m_lastErrorCode = ErrorCode::InvalidName;
            LogFailure(task);
        };
        run.tellSkipped = [&](const FileTask& task) {
            ++m_fileNumber;
            m_lastErrorCode = ErrorCode::FileExists;
            LogLine(LogKind::Failure, L"[Find and Replace] - File already exists. Do not overwrite : %s", task.target);
        };
        run.summary = [&](const FileRunResult& result) { return Summary(result); };
        const FileRunResult result = RunOverFiles(m_host, files, run);
        if (result.isCancelled) m_host.Log(kLogLevel, LogKind::Failure, L"[Find and Replace] - Operation cancelled");
        return result;
    }

    /// Of the last file that failed or was skipped; else 0.
    uint32_t GetLastErrorCode() const noexcept { return m_lastErrorCode; }

private:
    FindAndReplaceCallback NextCallback() { return {m_host, m_options, m_confirmation, ++m_fileNumber, m_fileCount}; }

    FileResult Process(const FileTask& task) {
        if (task.mayOverwrite) m_options |= Option::Overwrite;
        FindAndReplaceCallback callback = NextCallback();
        QVFindAndReplace::FileNotes notes;
        // While it is open the question's window stands before the progress, whose Cancel is out of reach.
        const auto tell = [&](uint32_t percent) {
            return (!task.tell || task.tell(percent)) && !m_confirmation.IsCancelled();
        };
        const int64_t changes =
            QVFindAndReplace::ProcessFile(task.source, task.target, m_options, m_request, callback, notes, tell);
        if (changes >= 0) {
            m_host.Log(kLogLevel, LogKind::Success, L"[Find and Replace] - %I64d changes made to file : %s", changes,
                       task.source.c_str());
            m_changes += changes;
        } else {
            m_lastErrorCode = callback.GetLastErrorCode();
            TellTarget(m_host, L"Find and Replace", task);
            LogFailure(task);
        }
        if (notes.looksLikeUtf8) NoteUtf8(m_host, task.source);
        if (changes > 0 && !callback.HasLeftMatches()) NoteMatchesLeft(m_host, task.target, m_request);
        // "Replace All" is an answer for the whole run.
        m_options |= callback.GetOptions() & Option::ReplaceAll;
        if (changes >= 0) return FileResult::Done;
        return changes == QVFindAndReplace::kFileCancelled ? FileResult::Cancelled : FileResult::Failed;
    }

    RunSummary Summary(const FileRunResult& result) const {
        const TextId text = result.done == 1 ? Text::FindReplaceDoneOne : Text::FindReplaceDoneMany;
        return {FormatText(HostText(m_host, text), {m_changes, result.done}), MB_ICONINFORMATION};
    }

    void LogFailure(const FileTask& task) {
        LogLine(LogKind::Failure, L"[Find and Replace] - Failed to Find/Replace text in : %s", task.source);
    }

    void LogLine(uint32_t kind, const wchar_t* format, const std::wstring& path) {
        m_host.Log(kLogLevel, kind, format, path.c_str());
    }

    IHostServices& m_host;
    QVFindAndReplace::Request& m_request;
    uint32_t m_options;  // the run's: gains bits by the user's answers
    IConfirmReplace& m_confirmation;
    uint32_t m_fileNumber = 0;
    uint32_t m_fileCount = 0;
    int64_t m_changes = 0;
    uint32_t m_lastErrorCode = 0;
};

constexpr wchar_t kFindSection[] = L"FindReplace";
constexpr wchar_t kFindKey[] = L"Find";
constexpr wchar_t kReplaceKey[] = L"ReplaceWith";
constexpr wchar_t kOptionsKey[] = L"Options";

void LoadText(ISettings& store, const wchar_t* key, std::wstring& text) {
    // One unit more than the host is told of: the text ends there whatever the host does.
    std::vector<wchar_t> buffer(kLongestFindText + 2);
    if (store.GetString(1, kFindSection, key, buffer.data(), kLongestFindText + 1)) text = buffer.data();
}

/// The last request, as far as the store has it; a key that is missing leaves its field alone. The target's name is not
/// kept. A null store loads and saves nothing.
void LoadSettings(ISettings* store, FindAndReplaceRequest& request) {
    if (!store) return;
    LoadText(*store, kFindKey, request.find);
    LoadText(*store, kReplaceKey, request.replacement);
    store->GetNumber(1, kFindSection, kOptionsKey, &request.options);
}

void SaveSettings(ISettings* store, const FindAndReplaceRequest& request) {
    if (!store) return;
    store->SetString(1, kFindSection, kFindKey, request.find.c_str());
    store->SetString(1, kFindSection, kReplaceKey, request.replacement.c_str());
    store->SetNumber(1, kFindSection, kOptionsKey, request.options);
}

}  // namespace

CallResult RunFindAndReplaceCommand(IHostServices& host, ICustomCommandCall& call) {
    if (!call.HasParameter(Parameter::File)) return {false, ErrorCode::InvalidParameter};
    const std::wstring fileName = TextParameter(call, Parameter::File);
    const std::wstring find = WithLineBreaks(TextParameter(call, Parameter::Find));
    const std::wstring replacement = WithLineBreaks(TextParameter(call, Parameter::ReplaceWith));
    if (find.empty() || replacement.empty()) return {false, ErrorCode::InvalidParameter};

    const AcquiredService<IFileOperations> files(host, ServiceNumber::FileOperations);
    if (!files) return CallWithout(host, L"file operations");
    const Owned<IFileItem> item(files->CreateFileItem(fileName.c_str(), 1));
    if (!item) {
        host.Log(kLogLevel, LogKind::Failure, L"[Custom Cmd - FindAndReplace] - FILE : %s not found", fileName.c_str());
        return {false, ErrorCode::FileNotFound};
    }
    const Owned<IFileList> list(host.CreateFileList());
    if (!list || !list->AddItem(item.get())) return {false, ErrorCode::OutOfMemory};

    QVFindAndReplace::Request request = EngineRequest(OptionsOf(call), find, replacement);
    if (call.HasParameter(Parameter::Preview)) return PreviewFile(host, PathOf(*item), request);
    // A host without a main window is driven by a script or from a command line: a window of ours would wait there for
    // a user who may not exist. Such a host asks in its own way, or answers by itself.
    ConfirmByChoice choice(host);
    ConfirmReplaceDlg dialog(host.GetMainWindow());
    dialog.UseHost(DialogHostFor(host, IDD_CONFIRM_REPLACE));
    IConfirmReplace* confirmation = &choice;
    if (host.GetMainWindow()) confirmation = &dialog;
    std::wstring pattern = TextParameter(call, Parameter::Target);
    const bool isTargetUnused = !(request.GetOptions() & Option::SaveAs) && !pattern.empty();
    if (pattern.empty()) pattern = L"*.*";
    // The target lies in the file's own folder: a script names the file by its path, and the target by a name.
    FindReplaceWork work(host, request, *confirmation);
    const FileRunResult result = work.RunOver(*list, pattern);
    if (isTargetUnused)
        host.Log(kLogLevel, LogKind::Success,
                 L"[Find and Replace] - Note : TARGET is not used together with KEEPBACKUP or DELETE");
    return {true, result.isCancelled ? ErrorCode::Cancelled : work.GetLastErrorCode()};
}

uint32_t RunFindAndReplaceDialog(IHostServices& host, uint32_t) {
    const Owned<IFileList> files = GatherSelection(host, SelectionFlags::Files);
    if (!files || files->GetCount() == 0) return 1;

    FindAndReplaceRequest last;
    LoadSettings(host.GetSettings(), last);
    FindAndReplaceDlg dialog([&](TextId id) { return HostText(host, id); }, PathsOf(*files), std::move(last));
    dialog.UseHost(DialogHostFor(host, IDD_FIND_AND_REPLACE));
    const auto chosen = dialog.Show(host.GetMainWindow());
    if (!chosen) return 1;
    SaveSettings(host.GetSettings(), *chosen);

    QVFindAndReplace::Request request = EngineRequest(chosen->options, chosen->find, chosen->replacement);
    // The user who pressed Start sits in front of the screen, so the matches are shown there even by a host without a
    // window.
    ConfirmReplaceDlg confirmation(host.GetMainWindow());
    confirmation.UseHost(DialogHostFor(host, IDD_CONFIRM_REPLACE));
    FindReplaceWork(host, request, confirmation).RunOver(*files, chosen->targetPattern);
    return 1;
}

}  // namespace FileUtils
