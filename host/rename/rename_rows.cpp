#include "host/rename/rename_rows.h"

#include <algorithm>

#include "batchrename/run/rename_run.h"
#include "host/app/host_text.h"
#include "win32/file_name.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

/// A name beside `path` that exists nowhere.
std::wstring FreePathBeside(const std::wstring& path) {
    const std::wstring stem = std::wstring(Win32::FolderOf(path)) + L"rename-" + std::to_wstring(GetCurrentProcessId());
    for (int number = 0;; ++number) {
        std::wstring candidate = stem + L"-" + std::to_wstring(number) + L".tmp";
        if (!Win32::Exists(candidate)) return candidate;
    }
}

/// True when the folder shows the item in exactly this spelling.
bool IsSpelled(const std::wstring& path) {
    std::vector<std::wstring> names;
    const std::wstring name(Win32::FileNameOf(path));
    return Win32::ListFolder(std::wstring(Win32::FolderOf(path)), name, names) == ERROR_SUCCESS &&
           std::ranges::find(names, name) != names.end();
}

}  // namespace

uint32_t RenameOne(const std::wstring& path, const std::wstring& newName, const std::wstring& asideName) {
    // A restore gives back half a pair, which the system takes, and names that it takes after the prefix alone.
    const Win32::NameFault fault = Win32::CheckFileName(newName).fault;
    const bool canBe = fault == Win32::NameFault::None || fault == Win32::NameFault::LoneSurrogate ||
                       (path.starts_with(LR"(\\?\)") && Win32::IsVerbatimName(newName));
    if (!canBe) return ERROR_INVALID_NAME;
    const std::wstring folder(Win32::FolderOf(path));
    const std::wstring target = folder + newName;
    uint32_t error = Win32::MoveFileTo(path, target);
    if (error != ERROR_SUCCESS || !EqualIgnoringCase(path, target) || IsSpelled(target)) return error;
    // The system said yes and did nothing.
    std::wstring aside = asideName.empty() ? FreePathBeside(path) : folder + asideName;
    error = Win32::MoveFileTo(path, aside);
    if (error == ERROR_ALREADY_EXISTS) {
        aside = FreePathBeside(path);
        error = Win32::MoveFileTo(path, aside);
    }
    if (error != ERROR_SUCCESS) return error;
    error = Win32::MoveFileTo(aside, target);
    if (error != ERROR_SUCCESS) Win32::MoveFileTo(aside, path);
    return error;
}

void RenameRows(std::vector<RenameRow>& rows, Quorvane::SDK::IFileOperations& host) {
    BatchRename::RenameItems items;
    items.reserve(rows.size());
    for (const RenameRow& row : rows) {
        auto item = std::make_shared<BatchRename::BatchRenameItem>();
        item->location = Win32::WithoutSeparator(Win32::FolderOf(row.path));
        item->currentName = Win32::FileNameOf(row.path);
        item->newName = row.newName;
        items.push_back(std::move(item));
    }
    BatchRename::CRenameResultCallback counts;
    const auto outcomes =
        BatchRename::RunRenames(items, {}, {.host = host, .list = BatchRename::ListFolderOnDisk}, counts);
    for (size_t at = 0; at < rows.size(); ++at) {
        const uint32_t code = outcomes[at].code;
        rows[at].error = code == Quorvane::SDK::RenameResult::Ignored ? ERROR_SUCCESS : code;
        rows[at].now = Win32::FolderOf(rows[at].path);
        rows[at].now += outcomes[at].name;
    }
}

}  // namespace QVHost
