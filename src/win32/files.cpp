#include "win32/files.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "win32/handle.h"
#include "win32/path.h"
#include "win32/text.h"

namespace Win32 {
namespace {

constexpr int kAttempts = 6;
constexpr DWORD kPauseMilliseconds = 50;
/// Does another program keep the file from being moved or replaced this moment: has it open, or deleted it and not let
/// go of it yet? The system reports both with the code that also means a want of rights. Allocates nothing.
bool IsHeld(const wchar_t* path) noexcept {
    const FileHandle alone(CreateFileW(path, DELETE, 0, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (alone) return false;
    const DWORD error = GetLastError();
    if (error == ERROR_SHARING_VIOLATION) return true;
    // Of a file whose deletion is pending not even the attributes are given out; a want of rights keeps them from few.
    return error == ERROR_ACCESS_DENIED && GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES &&
           GetLastError() == ERROR_ACCESS_DENIED;
}

/// Runs `operation` (true for success) and, while another program holds one of the files, a few times more.
template <class Operation>
uint32_t WithRetries(std::initializer_list<const wchar_t*> paths, Operation&& operation) {
    for (int attempt = 1;; ++attempt) {
        if (operation()) return ERROR_SUCCESS;
        const DWORD error = GetLastError();
        if (!WaitForHolder(error, attempt, paths)) return error;
    }
}

uint32_t Move(const std::wstring& from, const std::wstring& to, DWORD flags) {
    const std::wstring source = ExtendedPath(from);
    const std::wstring target = ExtendedPath(to);
    return WithRetries({source.c_str(), target.c_str()},
                       [&] { return MoveFileExW(source.c_str(), target.c_str(), flags) != FALSE; });
}

/// What tells one file of this machine from all others: volume serial number and file index.
struct FileIdentity {
    DWORD volume;
    DWORD indexHigh;
    DWORD indexLow;
    bool operator==(const FileIdentity&) const = default;
};

std::optional<FileIdentity> IdentityOf(const std::wstring& path) {
    const FileHandle file(CreateFileW(ExtendedPath(path).c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION information = {};
    if (!file || !GetFileInformationByHandle(file.Get(), &information)) return std::nullopt;
    return FileIdentity{information.dwVolumeSerialNumber, information.nFileIndexHigh, information.nFileIndexLow};
}

/// The file's number on its volume, 0 when it is not given out. The documented way asks for the volume too, which is
/// much more work, and here both files have the same path.
uint64_t IndexOf(HANDLE file) {
    struct StatusBlock {
        void* status;
        ULONG_PTR information;
    };
    using QueryFunction = LONG(NTAPI*)(HANDLE, StatusBlock*, void*, ULONG, int);
    // Looked up each time: the lock of a static variable needs memory, and without it the process would end.
    constexpr int kInternalInformation = 6;  // FileInternalInformation of FILE_INFORMATION_CLASS
    const auto query = reinterpret_cast<QueryFunction>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationFile")));
    StatusBlock block = {};
    uint64_t index = 0;
    return query && query(file, &block, &index, sizeof(index), kInternalInformation) >= 0 ? index : 0;
}

/// Where the path leads, with every link on its way followed; "" when that is not known.
std::wstring FinalPath(const std::wstring& path) {
    const FileHandle file(CreateFileW(ExtendedPath(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file) return {};
    std::wstring final(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetFinalPathNameByHandleW(file.Get(), final.data(), static_cast<DWORD>(final.size()), 0);
        const bool fits = length < final.size();
        final.resize(length);
        if (fits) return final;
    }
}

}  // namespace

void CloseSystemFile::operator()(void* file) const noexcept {
    const FileHandle closed(file);
}

HeldFile HeldFileOf(void* systemHandle) noexcept {
    return HeldFile(systemHandle == INVALID_HANDLE_VALUE ? nullptr : systemHandle);
}

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(ExtendedPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool WaitForHolder(uint32_t error, int attempt, std::initializer_list<const wchar_t*> paths) noexcept {
    const bool isHeld = error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
                        ((error == ERROR_ACCESS_DENIED || error == ERROR_UNABLE_TO_REMOVE_REPLACED) &&
                         std::ranges::any_of(paths, IsHeld));
    if (!isHeld || attempt == kAttempts) return false;
    Sleep(kPauseMilliseconds);
    return true;
}

uint32_t MoveFileTo(const std::wstring& from, const std::wstring& to) {
    return Move(from, to, 0);
}

uint32_t MoveFileOver(const std::wstring& from, const std::wstring& to) {
    return Move(from, to, MOVEFILE_REPLACE_EXISTING);
}

uint32_t MoveFileThrough(const std::wstring& from, const std::wstring& to, bool mayReplace) {
    return Move(from, to, MOVEFILE_WRITE_THROUGH | (mayReplace ? MOVEFILE_REPLACE_EXISTING : 0));
}

uint32_t RemoveFile(const std::wstring& path) {
    const std::wstring target = ExtendedPath(path);
    return WithRetries({target.c_str()}, [&] { return DeleteFileW(target.c_str()) != FALSE; });
}

uint32_t RemoveFileWhateverItsAttributes(const std::wstring& path) {
    return RemoveFileAt(ExtendedPath(path).c_str());
}

uint32_t RemoveFileAt(const wchar_t* extendedPath) noexcept {
    const auto remove = [&] { return WithRetries({extendedPath}, [&] { return DeleteFileW(extendedPath) != FALSE; }); };
    const uint32_t error = remove();
    if (error != ERROR_ACCESS_DENIED) return error;
    SetFileAttributesW(extendedPath, FILE_ATTRIBUTE_NORMAL);
    return remove();
}

bool IsSameFile(const std::wstring& left, const std::wstring& right) {
    const auto leftIdentity = IdentityOf(left);
    return leftIdentity && leftIdentity == IdentityOf(right);
}

bool IsLink(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(ExtendedPath(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return true;
    // Not every system marks a link. Names are not compared: one of 8 characters has a longer one as well.
    const std::wstring file = FinalPath(path);
    const std::wstring folder = FinalPath(std::wstring(FolderOf(FullPath(path))));
    return !file.empty() && !folder.empty() && !EqualIgnoringCase(JoinPath(folder, FileNameOf(file)), file);
}

uint32_t GetStamp(void* openFile, FileStamp& stamp) {
    FILE_BASIC_INFO basic = {};
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(openFile, &size) ||
        !GetFileInformationByHandleEx(openFile, FileBasicInfo, &basic, sizeof(basic)))
        return GetLastError();
    stamp = {IndexOf(openFile), static_cast<uint64_t>(size.QuadPart), basic.LastWriteTime.QuadPart,
             basic.ChangeTime.QuadPart};
    return ERROR_SUCCESS;
}

}  // namespace Win32
