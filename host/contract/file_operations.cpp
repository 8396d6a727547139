#include "host/contract/file_operations.h"

#include <algorithm>
#include <span>

#include "host/app/host_text.h"
#include "host/app/unix_paths.h"
#include "host/contract/host_boundary.h"
#include "win32/files.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {

bool RenameBatch::AddRename(Quorvane::SDK::IFileItem* item, const wchar_t* newName, uint32_t) {
    return Guarded(false, [&] {
        std::shared_ptr<FileItem> known = m_objects.FindItem(item);
        if (!known || !newName) return false;
        m_rows.push_back({std::move(known), newName});
        return true;
    });
}

bool FileOperations::Exists(const wchar_t* path) {
    return Guarded(false, [&] { return path && *path && Win32::Exists(FromUnixPath(path)); });
}

Quorvane::SDK::IFileItem* FileOperations::CreateFileItem(const wchar_t* path, uint32_t) {
    return Guarded<Quorvane::SDK::IFileItem*>(nullptr, [&]() -> Quorvane::SDK::IFileItem* {
        if (!path || !*path) return nullptr;
        std::wstring full = FullUserPath(path);
        if (!Win32::Exists(full)) return nullptr;
        return m_objects.HandOut(m_objects.MakeItem(std::move(full)));
    });
}

bool FileOperations::SetFileList(Quorvane::SDK::IFileList* list) {
    return Guarded(false, [&] { return m_objects.FindList(list) != nullptr; });
}

Quorvane::SDK::IRenameBatch* FileOperations::CreateRenameBatch() {
    return Guarded<Quorvane::SDK::IRenameBatch*>(
        nullptr, [&] { return m_batches.Keep(std::make_shared<RenameBatch>(m_objects)); });
}

void FileOperations::EndRenameBatch(Quorvane::SDK::IRenameBatch* batch) {
    GuardedCall([&] { m_batches.Remove(batch); });
}

uint32_t FileOperations::CommitRenameBatch(Quorvane::SDK::IRenameBatch* batch, uint32_t) {
    return Guarded<uint32_t>(ERROR_OUTOFMEMORY, [&]() -> uint32_t {
        const std::shared_ptr<RenameBatch> known = m_batches.Find(batch);
        if (!known) return ERROR_INVALID_PARAMETER;
        const std::vector<RenameBatch::Row> taken = known->TakeRows();
        std::vector<RenameRow> rows;
        rows.reserve(taken.size());
        for (const RenameBatch::Row& row : taken) rows.push_back({row.item->Path(), row.newName, 0, {}});
        QVHost::RenameRows(rows, *this);
        uint32_t firstError = ERROR_SUCCESS;
        for (size_t at = 0; at < rows.size(); ++at) {
            taken[at].item->SetPath(rows[at].now);
            const uint32_t error = Report(rows[at]);
            if (firstError == ERROR_SUCCESS) firstError = error;
        }
        return firstError;
    });
}

uint32_t FileOperations::RenameRows(const Quorvane::SDK::RenameRowInfo* rows, uint32_t count,
                                    Quorvane::SDK::IRenameResultCallback* callback) {
    uint32_t begun = 0;
    GuardedCall([&] {
        if (!rows || !callback) return;
        for (const Quorvane::SDK::RenameRowInfo& row : std::span(rows, count)) {
            if (!callback->OnRenameStarting(row.row)) return;
            ++begun;
            const uint32_t error = Guarded<uint32_t>(ERROR_OUTOFMEMORY, [&] { return RenameInfo(row); });
            if (!callback->OnRenameResult(row.row, error)) return;
        }
    });
    return begun;
}

uint32_t FileOperations::RenameInfo(const Quorvane::SDK::RenameRowInfo& row) {
    if (!row.path || !row.newName) return ERROR_INVALID_PARAMETER;
    const uint32_t error = RenameOne(row.path, row.newName, TextOrEmpty(row.asideName));
    // With a guard of its own: a file that has its new name must not count as refused because the panel hears nothing.
    if (error == ERROR_SUCCESS && m_panel)
        GuardedCall([&] { m_panel->FileRenamed(row.path, std::wstring(Win32::FolderOf(row.path)) + row.newName); });
    return error;
}

bool FileOperations::GetPropertyText(const wchar_t* path, const wchar_t* name, const wchar_t* format, wchar_t* buffer,
                                     uint32_t capacity) {
    return Guarded(false, [&] {
        if (!path || !name) return false;
        std::optional<std::wstring> text = PropertyText(path, name, TextOrEmpty(format));
        if (!text) {
            const ColumnValues::Column* const column = m_columns.Find(name);
            if (!column) return false;
            text = ColumnValues::ValueOf(*m_objects.MakeItem(FullUserPath(path)), *column).value_or(L"");
        }
        CopyText(*text, buffer, capacity);
        return true;
    });
}

bool FileOperations::GetPropertyName(uint32_t index, wchar_t* buffer, uint32_t capacity) {
    const wchar_t* const name = PropertyName(index);
    if (name) CopyText(name, buffer, capacity);
    return name != nullptr;
}

uint32_t FileOperations::Report(const RenameRow& row) {
    const std::wstring what = row.path + L" -> " + row.newName;
    const bool isDone = row.error == ERROR_SUCCESS;
    const bool isReported = m_output.Item(ItemFields(row.path, isDone ? row.now : L"", isDone ? L"renamed" : L"failed",
                                                     row.error, isDone ? L"" : DescribeError(row.error)));
    if (isDone) {
        if (!isReported) m_output.Note(L"[renamed] " + what, Tone::Success);
        return row.error;
    }
    ++m_failedCount;
    const std::wstring place = row.now == row.path ? L"" : L"; it is now " + row.now;
    if (!isReported) m_output.Note(L"[not renamed] " + what + L": " + DescribeError(row.error) + place, Tone::Failure);
    return row.error;
}

void FolderRefresh::RefreshFolder(const wchar_t* location) {
    GuardedCall([&] {
        if (location && m_panel) m_panel->FolderChanged(location);
    });
}

void PropertySet::SetExtension(const char* extensionId, const wchar_t* groupName) {
    GuardedCall([&] {
        m_columns.extensionId = Wide(extensionId ? extensionId : "");
        m_columns.groupName = TextOrEmpty(groupName);
    });
}

bool PropertySet::AddDefinition(const Quorvane::SDK::PropertyDefinition* definition) {
    return Guarded(false, [&] {
        if (!definition || !definition->key) return false;
        if (std::ranges::find(m_columns.columns, definition->id, &PropertyColumns::Column::id) !=
            m_columns.columns.end())
            return false;
        m_columns.columns.push_back({definition->id, definition->defaultWidth, definition->valueType, definition->flags,
                                     definition->key, TextOrEmpty(definition->displayName)});
        return true;
    });
}

}  // namespace QVHost
