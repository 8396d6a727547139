// file_operations.h - the host's services 3000 (file operations with rename batches), 3010 (refreshing a folder) and
// 3100 (property columns).
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/app/column_values.h"
#include "host/app/output.h"
#include "host/contract/file_objects.h"
#include "host/contract/shelf.h"
#include "host/rename/rename_rows.h"
#include "sdk/services.h"

namespace QVHost {

/// The text of a property of the file or folder at `path`; nothing for any other name. Names go without
/// regard to case. A value that cannot be had (a folder has no size) is "".
///
/// - `size`: bytes. Formats: "" or "B" plain; "KB", "MB", "GB" in units of 1024, rounded up.
/// - `modified`, `created`, `accessed`: local time. The format's yyyy, yy, MM, M, dd, d, HH, H, mm, m, ss and s stand
///   for the parts; everything else stays as it is. "" means yyyy-MM-dd.
std::optional<std::wstring> PropertyText(const std::wstring& path, const std::wstring& name,
                                         const std::wstring& format);

/// The name of a property, counted from 0; null beyond the last.
const wchar_t* PropertyName(size_t index);

class RenameBatch final : public Quorvane::SDK::IRenameBatch {
public:
    explicit RenameBatch(FileObjects& objects) : m_objects(objects) {}

    bool AddRename(Quorvane::SDK::IFileItem* item, const wchar_t* newName, uint32_t zero) override;

    struct Row {
        std::shared_ptr<FileItem> item;
        std::wstring newName;
    };
    /// The rows so far; the batch is empty afterwards.
    std::vector<Row> TakeRows() { return std::exchange(m_rows, {}); }

private:
    FileObjects& m_objects;
    std::vector<Row> m_rows;
};

class FileOperations final : public Quorvane::SDK::IFileOperations {
public:
    /// Refused renames add to `failedCount`; the others are reported to the panel, which may be null.
    FileOperations(FileObjects& objects, const ColumnValues& columns, Output& output,
                   std::atomic<uint32_t>& failedCount, IPanelView* panel)
        : m_objects(objects), m_columns(columns), m_output(output), m_failedCount(failedCount), m_panel(panel) {}

    bool Exists(const wchar_t* path) override;
    Quorvane::SDK::IFileItem* CreateFileItem(const wchar_t* path, uint32_t one) override;
    bool SetFileList(Quorvane::SDK::IFileList* list) override;
    Quorvane::SDK::IRenameBatch* CreateRenameBatch() override;
    void EndRenameBatch(Quorvane::SDK::IRenameBatch* batch) override;
    /// Reports each row on standard error and gives the first error.
    uint32_t CommitRenameBatch(Quorvane::SDK::IRenameBatch* batch, uint32_t zero) override;
    /// Says nothing by itself: the callback hears of each row.
    uint32_t RenameRows(const Quorvane::SDK::RenameRowInfo* rows, uint32_t count,
                        Quorvane::SDK::IRenameResultCallback* callback) override;
    /// Knows the host's own properties (PropertyText) and, by their keys, the columns of providers.
    bool GetPropertyText(const wchar_t* path, const wchar_t* name, const wchar_t* format, wchar_t* buffer,
                         uint32_t capacity) override;
    bool GetPropertyName(uint32_t index, wchar_t* buffer, uint32_t capacity) override;

private:
    uint32_t Report(const RenameRow& row);
    uint32_t RenameInfo(const Quorvane::SDK::RenameRowInfo& row);

    FileObjects& m_objects;
    const ColumnValues& m_columns;
    Output& m_output;
    std::atomic<uint32_t>& m_failedCount;
    IPanelView* m_panel;
    Shelf<RenameBatch> m_batches;
};

/// Without a panel there is nothing to refresh.
class FolderRefresh final : public Quorvane::SDK::IFolderRefresh {
public:
    explicit FolderRefresh(IPanelView* panel) : m_panel(panel) {}

    void RefreshFolder(const wchar_t* location) override;

private:
    IPanelView* m_panel;
};

class PropertySet final : public Quorvane::SDK::IPropertySet {
public:
    explicit PropertySet(PropertyColumns& columns) : m_columns(columns) {}
    void SetExtension(const char* extensionId, const wchar_t* groupName) override;
    bool AddDefinition(const Quorvane::SDK::PropertyDefinition* definition) override;

private:
    PropertyColumns& m_columns;
};

}  // namespace QVHost
