#include "host/panel/folder_rows.h"

#include <algorithm>

#include "host/app/host_text.h"
#include "win32/path.h"

#include <shlwapi.h>

namespace QVHost {
namespace {

uint32_t ReadDrives(std::vector<FolderRow>& rows) {
    std::wstring names(512, L'\0');
    names.resize(GetLogicalDriveStringsW(static_cast<DWORD>(names.size()), names.data()));
    rows.clear();
    for (size_t at = 0; at < names.size(); at += std::char_traits<wchar_t>::length(&names[at]) + 1)
        rows.push_back({{&names[at], FILE_ATTRIBUTE_DIRECTORY}});
    return ERROR_SUCCESS;
}

bool IsNameBefore(const FolderRow& left, const FolderRow& right) {
    return StrCmpLogicalW(left.entry.name.c_str(), right.entry.name.c_str()) < 0;
}

bool IsBefore(const FolderRow& left, const FolderRow& right, RowOrder order) {
    if (order == RowOrder::Size && left.entry.size != right.entry.size) return left.entry.size < right.entry.size;
    if (order == RowOrder::Date && left.entry.written != right.entry.written)
        return left.entry.written < right.entry.written;
    return IsNameBefore(left, right);
}

}  // namespace

uint32_t ReadFolder(const std::wstring& folder, std::vector<FolderRow>& rows) {
    if (folder.empty()) return ReadDrives(rows);
    // Searching a file's name as a folder finds nothing and calls that a success.
    const DWORD attributes = GetFileAttributesW(Win32::ExtendedPath(folder).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return GetLastError();
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return ERROR_DIRECTORY;
    std::vector<Win32::FolderEntry> entries;
    if (const uint32_t error = Win32::ListFolder(folder, L"*", entries)) return error;
    rows.clear();
    rows.reserve(entries.size());
    for (Win32::FolderEntry& entry : entries) rows.push_back({std::move(entry)});
    return ERROR_SUCCESS;
}

void SortRows(std::vector<FolderRow>& rows, RowOrder order, bool isDescending) {
    std::ranges::sort(rows, [&](const FolderRow& left, const FolderRow& right) {
        if (left.IsFolder() != right.IsFolder()) return left.IsFolder();
        return isDescending ? IsBefore(right, left, order) : IsBefore(left, right, order);
    });
}

std::wstring FolderAbove(const std::wstring& folder) {
    std::wstring path = folder;
    while (!path.empty() && path.back() == L'\\') path.pop_back();
    if (path.size() <= 2) return {};  // a drive
    const std::wstring above(Win32::FolderOf(path));
    // \\server is no folder that could be listed.
    const bool isShare = path.starts_with(L"\\\\") && std::ranges::count(path, L'\\') <= 3;
    if (isShare) return folder;
    return above.size() > 3 ? above.substr(0, above.size() - 1) : above;
}

int FindByBeginning(const std::vector<FolderRow>& rows, const std::wstring& text, int first) {
    const auto count = static_cast<int>(rows.size());
    for (int step = 0; step < count; ++step) {
        const int at = (first + step) % count;
        if (EqualIgnoringCase(rows[static_cast<size_t>(at)].entry.name.substr(0, text.size()), text)) return at;
    }
    return -1;
}

}  // namespace QVHost
