#include "fileutils/commands.h"
#include "fileutils/ids.h"
#include "win32/text.h"

#include <algorithm>
#include <optional>
#include <string>

#include "fileutils/file_run.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/sort_lines/sort_form.h"
#include "fileutils/sort_lines/sort_lines_dlg.h"
#include "linesorter/sort_file.h"
#include "linesorter/sort_request.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "win32/code_page.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;
using QVLineSorter::SortRequest;
namespace Option = QVLineSorter::SortOption;
namespace ErrorCode = QVUtils::ErrorCode;

struct SwitchOption {
    const char* name;
    uint32_t option;
};
constexpr SwitchOption kSwitches[] = {
    {Parameter::SkipLeadingSpace, Option::SkipLeadingSpaces},
    {Parameter::EndAtWhiteSpace, Option::EndAtWhiteSpace},
    {Parameter::IgnoreCase, Option::IgnoreCase},
    {Parameter::LanguageOrder, Option::LanguageOrder},
    {Parameter::NaturalNumberOrder, Option::NaturalNumbers},
    {Parameter::Reverse, Option::Reverse},
    {Parameter::Overwrite, Option::Overwrite},
    {Parameter::Silent, Option::Silent},
};

struct NamedOption {
    const wchar_t* name;
    uint32_t option;
};
constexpr NamedOption kSortBy[] = {
    {L"line", Option::EntireLine}, {L"substring", Option::Substring}, {L"item", Option::Item}};
constexpr NamedOption kSortAs[] = {{L"text", Option::AsText}, {L"num", Option::AsNumber}, {L"date", Option::AsDate}};

/// A parameter that cannot be used. The reason is written to follow the parameter's name.
struct BadParameter {
    const char* name;
    std::wstring reason;
};

/// Reads the parameters of one call. What is not given leaves the request alone; what is given wrongly throws.
class SortParameters {
public:
    explicit SortParameters(ICustomCommandCall& call) : m_call(call) {}

    SortRequest Read() {
        SortRequest request;
        request.options =
            ReadName(Parameter::SortBy, kSortBy, 0) | ReadName(Parameter::SortAs, kSortAs, Option::AsText);
        for (const SwitchOption& row : kSwitches)
            if (m_call.HasParameter(row.name)) request.options |= row.option;
        if (m_call.HasParameter(Parameter::KeepBackup))
            request.options |= Option::KeepBackup;
        else
            request.options |= m_call.HasParameter(Parameter::Delete) ? Option::DeleteBackup : Option::SaveAs;
        request.saveAsName = Text(Parameter::Target).value_or(L"");

        request.keepTop = ReadNumber(Parameter::KeepTop);
        request.keepBottom = ReadNumber(Parameter::KeepBottom);
        request.lineOffset = ReadNumber(Parameter::LineOffset);
        if (request.lineOffset > 0) --request.lineOffset;  // scripts count positions from 1
        request.substringLength = ReadNumberText(Parameter::SubstringLength);
        request.itemNumber = ReadNumberText(Parameter::ItemNumber);

        const std::optional<wchar_t> endCharacter = ReadSeparator(Parameter::EndCharacter);
        const std::optional<wchar_t> itemSeparator = ReadSeparator(Parameter::ItemSeparator);
        if (endCharacter) request.options |= Option::EndAtCharacter;
        // A request has one separator. Both are given only by mistake; then the one that the key's kind uses counts.
        const bool wantsItem = request.Has(Option::Item);
        request.separator =
            (wantsItem ? itemSeparator : endCharacter).value_or((wantsItem ? endCharacter : itemSeparator).value_or(0));

        request.dateFormat = Text(Parameter::DateFormat).value_or(L"");
        if (const auto fault = QVLineSorter::CheckRequest(request))
            throw BadParameter{NameOf(fault->field), fault->reason};
        return request;
    }

private:
    static const char* NameOf(QVLineSorter::RequestField field) {
        return field == QVLineSorter::RequestField::SubstringLength ? Parameter::SubstringLength
                                                                    : Parameter::DateFormat;
    }

    std::optional<std::wstring> Text(const char* name) {
        const wchar_t* const text = m_call.HasParameter(name) ? m_call.GetTextParameter(name) : nullptr;
        return text ? std::optional<std::wstring>(text) : std::nullopt;
    }

    template <size_t count>
    uint32_t ReadName(const char* name, const NamedOption (&rows)[count], uint32_t whenAbsent) {
        const std::optional<std::wstring> text = Text(name);
        if (!text) return whenAbsent;
        std::wstring names;
        for (const NamedOption& row : rows) {
            if (*text == row.name) return row.option;
            names += (names.empty() ? L"" : L", ") + std::wstring(row.name);
        }
        throw BadParameter{name, L'"' + *text + L"\" is none of " + names};
    }

    uint32_t ReadNumber(const char* name) {
        uint32_t number = 0;
        if (m_call.HasParameter(name) && !m_call.GetNumberParameter(name, &number))
            throw BadParameter{name, L"is not a number of 0 or more"};
        return number;
    }

    uint32_t ReadNumberText(const char* name) {
        const std::optional<std::wstring> text = Text(name);
        if (!text) return 0;
        const bool isNumber = !text->empty() && std::ranges::all_of(*text, Win32::IsDigit<wchar_t>);
        if (!isNumber) throw BadParameter{name, L'"' + *text + L"\" is not a number of 0 or more"};
        const std::optional<uint32_t> number = Win32::WholeNumber<uint32_t>(*text);
        if (!number) throw BadParameter{name, L'"' + *text + L"\" is too large"};
        return *number;
    }

    std::optional<wchar_t> ReadSeparator(const char* name) {
        const std::optional<std::wstring> text = Text(name);
        if (!text) return std::nullopt;
        const std::optional<wchar_t> separator = QVLineSorter::SeparatorFromText(*text);
        if (!separator) throw BadParameter{name, L'"' + *text + L"\" is not one character (\\t stands for a tab)"};
        return separator;
    }

    ICustomCommandCall& m_call;
};

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
        if (m_request.Has(Option::SaveAs)) run.saveAs = m_request.saveAsName.empty() ? L"*.*" : m_request.saveAsName;
        run.mayOverwrite = m_request.Has(Option::Overwrite);
        run.isSilent = m_request.Has(Option::Silent);
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
        if (task.mayOverwrite) m_request.options |= Option::Overwrite;
        const QVLineSorter::SortFileResult result = QVLineSorter::SortFile(task.source, task.target, m_request);
        if (result.errorCode != 0) {
            TellFailure(task, Win32::FromCodePage(result.errorText, Win32::kThreadCodePage), result.errorCode);
            TellTarget(m_host, L"SortLines", task);
            return FileResult::Failed;
        }
        if (result.backupErrorCode != 0)
            LogReason(L"Unable to delete the backup (.bak) of the file", result.backupErrorCode);
        Log(L"[SortLines] - Sorted lines in file : %s (Saved as : %s)", task.source.c_str(), task.target.c_str());
        return FileResult::Done;
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

CallResult SortOneFile(IHostServices& host, IFileItem& item, SortRequest request) {
    const Owned<IFileList> list(host.CreateFileList());
    if (!list || !list->AddItem(&item)) return {false, ErrorCode::OutOfMemory};
    const bool isTargetUnused = !request.Has(Option::SaveAs) && !request.saveAsName.empty();
    SortWork work(host, std::move(request));
    const FileRunResult result = work.RunOver(*list);
    if (isTargetUnused)
        host.Log(kLogLevel, LogKind::Success,
                 L"[SortLines] - Note : TARGET is not used together with KEEPBACKUP or DELETE");
    return {result.done > 0, result.isCancelled ? ErrorCode::Cancelled : work.GetLastErrorCode()};
}

}  // namespace

CallResult RunSortLinesCommand(IHostServices& host, ICustomCommandCall& call) {
    const wchar_t* const file = call.HasParameter(Parameter::File) ? call.GetTextParameter(Parameter::File) : nullptr;
    if (!file) return {false, ErrorCode::InvalidParameter};
    const std::wstring fileName = file;
    try {
        SortRequest request = SortParameters(call).Read();
        const AcquiredService<IFileOperations> files(host, ServiceNumber::FileOperations);
        const Owned<IFileItem> item(files ? files->CreateFileItem(fileName.c_str(), 1) : nullptr);
        if (item) return SortOneFile(host, *item, std::move(request));
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
    auto chosen = dialog.Show(host.GetMainWindow());
    if (!chosen) return 1;
    SaveSortLinesSettings(host.GetSettings(), *chosen);
    SortWork(host, std::move(*chosen)).RunOver(*files);
    return 1;
}

}  // namespace FileUtils
