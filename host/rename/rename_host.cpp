#include "host/rename/rename_host.h"

#include <algorithm>

#include "batchrename/qv_batch_rename.h"
#include "batchrename/run/run_controller.h"
#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/loaded_library.h"
#include "host/app/session.h"
#include "win32/path.h"

namespace QVHost {
namespace {

using namespace BatchRename;

constexpr uint32_t kPropertyCapacity = 4096;  // units; no name takes more

/// The services are made for an extension; these commands stand in for Batch Rename.
Quorvane::SDK::ExtensionInfo BatchRenameRecord() {
    Quorvane::SDK::ExtensionInfo record = {};
    std::string_view(kExtensionId).copy(record.ExtensionId, std::size(record.ExtensionId));
    std::wstring_view(L"QVBatchRename").copy(record.ShortName, std::size(record.ShortName) - 1);
    return record;
}

bool IsFailure(uint32_t code) {
    return code != Quorvane::SDK::RenameResult::Renamed && code != Quorvane::SDK::RenameResult::Ignored;
}

const wchar_t* StateOf(uint32_t code, const wchar_t* word) {
    return IsFailure(code) ? L"failed" : code == Quorvane::SDK::RenameResult::Ignored ? L"ignored" : word;
}

/// A name may hold no tab, but a new one that is refused for it must not break the columns.
void AppendCell(std::wstring& line, std::wstring_view text) {
    const size_t begin = line.size();
    AppendOnOneLine(line, text);
    std::replace(line.begin() + static_cast<ptrdiff_t>(begin), line.end(), L'\t', L' ');
}

}  // namespace

/// The library's providers of file properties alone, for runs that need nothing else of it.
class LoadedProviders {
public:
    /// Their columns join those of `state`, and are good as long as this object.
    /// @throws HostError when the library cannot be loaded
    LoadedProviders(HostState& state, const std::wstring& libraryPath);

private:
    LoadedLibrary m_library;
    std::vector<std::unique_ptr<HostServices>> m_services;
    std::vector<std::unique_ptr<LoadedExtension>> m_extensions;
};

LoadedProviders::LoadedProviders(HostState& state, const std::wstring& libraryPath) : m_library(libraryPath) {
    for (uint32_t index = 0; index < m_library.Extensions().size(); ++index) {
        const Quorvane::SDK::ExtensionInfo& record = m_library.Extensions()[index];
        if ((record.TypeFlags & kTypeProperties) == 0) continue;
        m_services.push_back(std::make_unique<HostServices>(state, index, record));
        m_extensions.push_back(std::make_unique<LoadedExtension>(m_library, index, *m_services.back()));
        state.columns.AddProvider(state.propertyColumns[index], *m_extensions.back()->Properties());
    }
}

void AppendOutcome(std::wstring& text, const BatchRenameItem& row, uint32_t code, std::wstring_view reason,
                   const wchar_t* word) {
    AppendCell(text, row.currentName);
    text += L'\t';
    AppendCell(text, row.newName);
    text += L'\t';
    text += StateOf(code, word);
    if (reason.empty()) return;
    text += L": ";
    AppendCell(text, reason);
}

uint32_t CodeOf(const RowPlan& verdict) {
    return verdict.verdict == RowVerdict::Ignored ? Quorvane::SDK::RenameResult::Ignored : verdict.code;
}

RenameHost::RenameHost(const HostOptions& options, HostEnvironment& environment, Output& output)
    : m_state(MakeHostState(options, environment, output)),
      m_services(m_state, 0, BatchRenameRecord()),
      m_files(m_services, Quorvane::SDK::ServiceNumber::FileOperations),
      m_libraryPath(LibraryPath(options, environment)),
      m_isStopped(environment.progressWatch.isCancelled) {}

RenameHost::~RenameHost() = default;

UndoStore& RenameHost::Journal() {
    if (!m_journal) {
        m_journal.emplace().SetFolder(Win32::JoinPath(m_state.configurationFolder, L"Undo"));
        m_journal->SetDurable(IsUndoDurable(&m_services));
    }
    return *m_journal;
}

RunEnvironment RenameHost::Environment(bool isRecorded) {
    return {.host = *m_files.Get(),
            .list = ListFolderOnDisk,
            .journal = isRecorded ? &Journal() : nullptr,
            .isStopped = m_isStopped,
            .needsRecord = true};
}

bool RenameHost::IsRecorded() {
    if (!m_journal || m_journal->LastError() == ERROR_SUCCESS) return true;
    m_state.output.Note(L"qvhost: the renames could not be recorded for undo: " +
                        DescribeError(m_journal->LastError()));
    return false;
}

bool RenameHost::GetProperty(const BatchRenameItem& row, const std::wstring& name, const std::wstring& format,
                             std::wstring& value) {
    wchar_t buffer[kPropertyCapacity] = {};
    const std::wstring path = Win32::JoinPath(row.location, row.currentName);
    const auto ask = [&] {
        return m_files->GetPropertyText(path.c_str(), name.c_str(), format.c_str(), buffer, kPropertyCapacity);
    };
    bool isKnown = ask();
    if (!isKnown && !m_hasTriedProviders) {
        LoadProviders();
        isKnown = ask();
    }
    value = buffer;
    return isKnown;
}

void RenameHost::LoadProviders() {
    m_hasTriedProviders = true;
    try {
        m_providers = std::make_unique<LoadedProviders>(m_state, m_libraryPath);
    } catch (const HostError& error) {
        // Then nobody knows the property, which each row will say.
        m_state.output.Note(L"qvhost: " + Wide(error.what()));
    }
}

bool RenameHost::PrintOutcomes(const RenameItems& rows, const std::vector<RowOutcome>& outcomes, const wchar_t* word,
                               bool onlyChanges) {
    bool isDone = true;
    for (size_t row = 0; row < rows.size(); ++row)
        isDone = PrintRow(*rows[row], outcomes[row].code, outcomes[row].reason, word, onlyChanges) && isDone;
    return isDone;
}

bool RenameHost::PrintPlan(const RenameItems& rows, const RenamePlan& plan, const wchar_t* word, bool onlyChanges) {
    bool isDone = true;
    for (size_t row = 0; row < rows.size(); ++row)
        isDone = PrintRow(*rows[row], CodeOf(plan.rows[row]), DescribeRowPlan(*rows[row], plan.rows[row]), word,
                          onlyChanges) &&
                 isDone;
    return isDone;
}

bool RenameHost::PrintRow(const BatchRenameItem& row, uint32_t code, const std::wstring& reason, const wchar_t* word,
                          bool onlyChanges) {
    if (onlyChanges && code == Quorvane::SDK::RenameResult::Ignored && row.newName == row.currentName) return true;
    const std::wstring path = Win32::JoinPath(row.location, row.currentName);
    if (!m_state.output.Item(ItemFields(path, Win32::JoinPath(row.location, row.newName), StateOf(code, word),
                                        IsFailure(code) ? code : 0, reason))) {
        std::wstring line;
        AppendOutcome(line, row, code, reason, word);
        m_state.output.Line(line);
    }
    return !IsFailure(code);
}

}  // namespace QVHost
