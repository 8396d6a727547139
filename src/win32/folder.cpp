#include "win32/folder.h"

#include <array>
#include <memory>
#include <string_view>

#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace Win32 {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// What the system tells of an entry, for as long as the next one is not read.
struct SeenEntry {
    std::wstring_view name;
    uint32_t attributes;
    uint64_t size;
    uint64_t written;
};

bool IsFolderItself(std::wstring_view name) {
    return name == L"." || name == L"..";
}

uint64_t Joined(DWORD high, DWORD low) {
    return uint64_t{high} << 32 | low;
}

/// The way for every pattern and every file system: a call for each entry, a round trip for each few dozen of them.
template <class Take>
uint32_t FindEntries(const std::wstring& folder, const std::wstring& pattern, Take&& take) {
    WIN32_FIND_DATAW entry = {};
    // Without short names, in large blocks: on a share that saves a round trip for each entry.
    const FindHandle find(FindFirstFileExW(ExtendedPath(JoinPath(folder, pattern)).c_str(), FindExInfoBasic, &entry,
                                           FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH));
    if (!find) return GetLastError() == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : GetLastError();
    do {
        if (!IsFolderItself(entry.cFileName))
            take(SeenEntry{entry.cFileName, entry.dwFileAttributes, Joined(entry.nFileSizeHigh, entry.nFileSizeLow),
                           Joined(entry.ftLastWriteTime.dwHighDateTime, entry.ftLastWriteTime.dwLowDateTime)});
    } while (FindNextFileW(find.Get(), &entry));
    return GetLastError() == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : GetLastError();
}

/// All entries, some hundreds with each call. False when the folder cannot be read in this way; nothing was taken then.
template <class Take>
bool ReadEntries(const std::wstring& folder, uint32_t& error, Take&& take) {
    const FileHandle handle(CreateFileW(ExtendedPath(folder).c_str(), FILE_LIST_DIRECTORY, kShareAll, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!handle) return false;
    using Buffer = std::array<uint64_t, 16384>;  // as records want to be aligned
    const auto buffer = std::make_unique_for_overwrite<Buffer>();
    for (bool isFirst = true;; isFirst = false) {
        if (!GetFileInformationByHandleEx(handle.Get(), FileIdBothDirectoryInfo, buffer.get(), sizeof(Buffer))) {
            error = GetLastError() == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : GetLastError();
            return !isFirst;
        }
        const auto* at = reinterpret_cast<const uint8_t*>(buffer.get());
        for (uint32_t offset = 1; offset != 0; at += offset) {
            const auto* const entry = reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(at);
            const std::wstring_view name(entry->FileName, entry->FileNameLength / sizeof(wchar_t));
            if (!IsFolderItself(name))
                take(SeenEntry{name, entry->FileAttributes, static_cast<uint64_t>(entry->EndOfFile.QuadPart),
                               static_cast<uint64_t>(entry->LastWriteTime.QuadPart)});
            offset = entry->NextEntryOffset;
        }
    }
}

template <class Take>
uint32_t ForEachEntry(const std::wstring& folder, const std::wstring& pattern, Take&& take) {
    uint32_t error = ERROR_SUCCESS;
    // Whatever keeps a folder from being read at once, the other way works or says why it does not.
    return pattern == L"*" && ReadEntries(folder, error, take) ? error : FindEntries(folder, pattern, take);
}

}  // namespace

uint32_t ListFolder(const std::wstring& folder, const std::wstring& pattern, std::vector<FolderEntry>& entries) {
    entries.clear();
    return ForEachEntry(folder, pattern, [&](const SeenEntry& entry) {
        entries.push_back({std::wstring(entry.name), entry.attributes, entry.size, entry.written});
    });
}

uint32_t ListFolder(const std::wstring& folder, const std::wstring& pattern, std::vector<std::wstring>& names) {
    names.clear();
    return ForEachEntry(folder, pattern, [&](const SeenEntry& entry) { names.emplace_back(entry.name); });
}

uint32_t ListFolder(const std::wstring& folder,
                    const std::function<void(std::wstring_view name, uint32_t attributes)>& take) {
    return ForEachEntry(folder, L"*", [&](const SeenEntry& entry) { take(entry.name, entry.attributes); });
}

uint32_t MakeFolders(std::wstring_view folder) {
    const std::wstring path(WithoutSeparator(folder));
    if (path.empty() || Exists(path)) return ERROR_SUCCESS;
    const std::wstring_view above = FolderOf(path);
    if (above.size() < path.size()) {
        const uint32_t error = MakeFolders(above);
        if (error != ERROR_SUCCESS) return error;
    }
    if (CreateDirectoryW(ExtendedPath(path).c_str(), nullptr)) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    return error == ERROR_ALREADY_EXISTS ? ERROR_SUCCESS : error;
}

}  // namespace Win32
