#include "win32/folder.h"

#include <array>
#include <memory>
#include <optional>
#include <string_view>

#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"
#include "win32/text.h"

namespace Win32 {
namespace {

/// What the system tells of an entry, for as long as the next one is not read.
struct SeenEntry {
    std::wstring_view name;
    uint32_t attributes;
    uint64_t size;
    uint64_t written;
    uint64_t accessed;
    uint64_t index;  // 0: not known
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
                           Joined(entry.ftLastWriteTime.dwHighDateTime, entry.ftLastWriteTime.dwLowDateTime), 0, 0});
    } while (FindNextFileW(find.Get(), &entry));
    return GetLastError() == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : GetLastError();
}

FileHandle OpenFolder(const std::wstring& folder, DWORD access) {
    return FileHandle(CreateFileW(ExtendedPath(folder).c_str(), access, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

/// The serial number of the volume; nothing when its items have no lasting numbers.
std::optional<uint32_t> VolumeOf(HANDLE folder) {
    DWORD serial = 0;
    std::array<wchar_t, MAX_PATH + 1> system = {};
    if (!GetVolumeInformationByHandleW(folder, nullptr, 0, &serial, nullptr, nullptr, system.data(),
                                       static_cast<DWORD>(system.size())))
        return std::nullopt;
    // FAT numbers an item by its place in the folder, and ReFS has more bits than this number.
    return std::wstring_view(system.data()) == L"NTFS" ? std::optional<uint32_t>(serial) : std::nullopt;
}

std::wstring PathOf(HANDLE file) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetFinalPathNameByHandleW(file, path.data(), static_cast<DWORD>(path.size()), 0);
        const bool fits = length < path.size();
        path.resize(length);
        if (!fits) continue;
        constexpr std::wstring_view kPrefix = LR"(\\?\)";
        constexpr std::wstring_view kSharePrefix = LR"(\\?\UNC\)";
        if (path.starts_with(kSharePrefix)) return LR"(\\)" + path.substr(kSharePrefix.size());
        return path.starts_with(kPrefix) ? path.substr(kPrefix.size()) : path;
    }
}

ItemIdentity IdentityOf(uint32_t volume, uint64_t index, bool isFolder, uint64_t written, uint64_t accessed) {
    // NTFS itself counts in the upper 16 bits how often a number was given; a server of another system may not. What a
    // folder holds is no part of it, so its times tell nothing.
    const bool isCounted = isFolder || index >> 48 != 0;
    return isCounted ? ItemIdentity{volume, index, 0, 0} : ItemIdentity{volume, index, written, accessed};
}

/// Is this the item, under its only name, and not deleted for the user?
bool IsTheItem(HANDLE file, const ItemIdentity& item) {
    FILE_STANDARD_INFO information = {};
    FILE_BASIC_INFO times = {};
    if (!GetFileInformationByHandleEx(file, FileStandardInfo, &information, sizeof(information)) ||
        !GetFileInformationByHandleEx(file, FileBasicInfo, &times, sizeof(times)))
        return false;
    const ItemIdentity found = IdentityOf(item.volume, item.index, information.Directory != FALSE,
                                          static_cast<uint64_t>(times.LastWriteTime.QuadPart),
                                          static_cast<uint64_t>(times.LastAccessTime.QuadPart));
    const bool isOneName = information.Directory || information.NumberOfLinks == 1;
    return isOneName && IsSameItem(found, item) &&
           ToUpperCase(PathOf(file)).find(L"\\$RECYCLE.BIN\\") == std::wstring::npos;
}

/// All entries, some hundreds with each call; `open` gets the folder first. False when the folder cannot be read in
/// this way; nothing was taken then.
template <class Take, class Open>
bool ReadEntries(const std::wstring& folder, uint32_t& error, Take&& take, const Open& open) {
    const FileHandle handle = OpenFolder(folder, FILE_LIST_DIRECTORY);
    if (!handle) return false;
    open(handle.Get());
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
                               static_cast<uint64_t>(entry->LastWriteTime.QuadPart),
                               static_cast<uint64_t>(entry->LastAccessTime.QuadPart),
                               static_cast<uint64_t>(entry->FileId.QuadPart)});
            offset = entry->NextEntryOffset;
        }
    }
}

constexpr auto kNotAsked = [](HANDLE) {};

template <class Take, class Open = decltype(kNotAsked)>
uint32_t ForEachEntry(const std::wstring& folder, const std::wstring& pattern, Take&& take,
                      const Open& open = kNotAsked) {
    uint32_t error = ERROR_SUCCESS;
    // Whatever keeps a folder from being read at once, the other way works or says why it does not.
    return pattern == L"*" && ReadEntries(folder, error, take, open) ? error : FindEntries(folder, pattern, take);
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

uint32_t ListFolder(const std::wstring& folder,
                    const std::function<void(std::wstring_view name, const ItemIdentity& item)>& take) {
    std::optional<uint32_t> volume;
    const auto tell = [&](const SeenEntry& entry) {
        const bool isFolder = (entry.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        take(entry.name,
             volume ? IdentityOf(*volume, entry.index, isFolder, entry.written, entry.accessed) : ItemIdentity());
    };
    return ForEachEntry(folder, L"*", tell, [&](HANDLE open) { volume = VolumeOf(open); });
}

std::wstring FindItem(std::wstring folder, const ItemIdentity& item) {
    FILE_ID_DESCRIPTOR id = {};
    id.dwSize = sizeof(id);
    id.Type = FileIdType;
    id.FileId.QuadPart = static_cast<LONGLONG>(item.index);
    // Some systems look only below the folder that is given: then the folders above it are tried, but not the whole
    // volume, which can take them minutes.
    constexpr int kLevels = 4;
    for (int level = 0; level < kLevels;) {
        const FileHandle hint = OpenFolder(folder, 0);
        if (hint) {
            ++level;
            if (VolumeOf(hint.Get()) != item.volume) return {};
            // A link itself, and not what it leads to.
            const FileHandle found(OpenFileById(hint.Get(), &id, FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                                FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT));
            if (found) return IsTheItem(found.Get(), item) ? PathOf(found.Get()) : std::wstring();
            if (GetLastError() != ERROR_FILE_NOT_FOUND) return {};
        }
        const std::wstring above(WithoutSeparator(FolderOf(folder)));
        const bool isRoot = FolderOf(above).size() == above.size();
        if (above.empty() || above.size() >= folder.size() || (isRoot && level > 0)) return {};
        folder = above;
    }
    return {};
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
