// rename_host.h - what the rename commands need of the host: its services without a library in it, and the printing of
// rows.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "batchrename/run/rename_run.h"
#include "host/app/command_line.h"
#include "host/app/run.h"
#include "host/contract/extension_services.h"
#include "rename/rename_rule.h"
#include "sdk/owners.h"

namespace QVHost {

/// Appends a row's line without its end: old name, new name, `word` (for the code 0) or "ignored" or "failed", and the
/// reason.
void AppendOutcome(std::wstring& text, const BatchRename::BatchRenameItem& row, uint32_t code, std::wstring_view reason,
                   const wchar_t* word);

/// The code of a row's verdict; 0: it would be renamed.
uint32_t CodeOf(const BatchRename::RowPlan& verdict);

class LoadedProviders;
class SelectedRows;

class RenameHost final : public BatchRename::IPropertySource {
public:
    RenameHost(const HostOptions& options, HostEnvironment& environment, Output& output);
    ~RenameHost();

    HostState& State() { return m_state; }
    HostServices& Services() { return m_services; }
    /// The sessions of this host. They are read when they are asked for first: a preview does without.
    BatchRename::UndoStore& Journal();
    /// `isRecorded`: with the undo journal, and then never without.
    BatchRename::RunEnvironment Environment(bool isRecorded);
    /// False, with a note, when the journal could not be written.
    bool IsRecorded();

    /// What the host does not know by itself, the library's providers may: they are loaded when a rule asks for it
    /// first.
    bool GetProperty(const BatchRename::BatchRenameItem& row, const std::wstring& name, const std::wstring& format,
                     std::wstring& value) override;

    // Both print a line for each row, or, when `onlyChanges`, for each that does not just stay as it is. True when no
    // row failed, or would fail.
    bool PrintOutcomes(const BatchRename::RenameItems& rows, const std::vector<BatchRename::RowOutcome>& outcomes,
                       const wchar_t* word, bool onlyChanges);
    bool PrintPlan(const BatchRename::RenameItems& rows, const BatchRename::RenamePlan& plan, const wchar_t* word,
                   bool onlyChanges);

private:
    void LoadProviders();
    /// True unless the row failed.
    bool PrintRow(const BatchRename::BatchRenameItem& row, uint32_t code, const std::wstring& reason,
                  const wchar_t* word, bool onlyChanges);

    HostState m_state;
    HostServices m_services;
    Quorvane::SDK::AcquiredService<Quorvane::SDK::IFileOperations> m_files;
    std::optional<BatchRename::UndoStore> m_journal;
    std::wstring m_libraryPath;
    bool m_hasTriedProviders = false;
    std::unique_ptr<LoadedProviders> m_providers;
    const std::atomic<bool>* m_isStopped;
};

/// What a rename would make of its rows, printed and not done.
///
/// Prints a line for each row, in their order. False when one would fail.
/// @throws UsageError for a path that leads to nothing; then nothing is printed
bool PrintPreview(SelectedRows& selection, BatchRename::RenameRule& rule, RenameHost& host);

}  // namespace QVHost
