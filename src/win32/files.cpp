#include "win32/files.h"

#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

#include "win32/handle.h"
#include "win32/path.h"

#include <aclapi.h>

namespace Win32 {
namespace {

constexpr int kAttempts = 6;
constexpr DWORD kPauseMilliseconds = 50;
constexpr DWORD kCarriedAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                     FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

/// Runs `operation` (true for success) and, while another program holds the file, a few times more.
template <class Operation>
uint32_t WithRetries(Operation&& operation) {
    for (int attempt = 1;; ++attempt) {
        if (operation()) return ERROR_SUCCESS;
        const DWORD error = GetLastError();
        const bool held = error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
        if (!held || attempt == kAttempts) return error;
        Sleep(kPauseMilliseconds);
    }
}

uint32_t Move(const std::wstring& from, const std::wstring& to, DWORD flags) {
    const std::wstring source = ExtendedPath(from);
    const std::wstring target = ExtendedPath(to);
    return WithRetries([&] { return MoveFileExW(source.c_str(), target.c_str(), flags) != FALSE; });
}

uint32_t CopyBytes(const FileHandle& from, const FileHandle& to) {
    constexpr DWORD kBlockSize = 64 * 1024;
    const auto block = std::make_unique_for_overwrite<char[]>(kBlockSize);
    for (;;) {
        DWORD size = 0;
        DWORD written = 0;
        if (!ReadFile(from.Get(), block.get(), kBlockSize, &size, nullptr)) return GetLastError();
        if (size == 0) return ERROR_SUCCESS;
        if (!WriteFile(to.Get(), block.get(), size, &written, nullptr)) return GetLastError();
        if (written != size) return ERROR_DISK_FULL;
    }
}

/// What tells one file of this machine from all others: volume serial number and file index.
struct FileIdentity {
    DWORD volume;
    DWORD indexHigh;
    DWORD indexLow;
    bool operator==(const FileIdentity&) const = default;
};

std::optional<FileIdentity> IdentityOf(const std::wstring& path) {
    const FileHandle file(CreateFileW(ExtendedPath(path).c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION information = {};
    if (!file || !GetFileInformationByHandle(file.Get(), &information)) return std::nullopt;
    return FileIdentity{information.dwVolumeSerialNumber, information.nFileIndexHigh, information.nFileIndexLow};
}

/// A file's own access list, in memory of the descriptor.
struct AccessList {
    LocalMemory descriptor;
    PACL list = nullptr;
    bool isProtected = false;  // it takes nothing from the folder's
};

std::optional<AccessList> AccessListOf(const std::wstring& path) {
    AccessList access;
    PSECURITY_DESCRIPTOR raw = nullptr;
    if (GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &access.list,
                              nullptr, &raw) != ERROR_SUCCESS)
        return std::nullopt;
    access.descriptor.Reset(raw);
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    if (!GetSecurityDescriptorControl(raw, &control, &revision)) return std::nullopt;
    access.isProtected = (control & SE_DACL_PROTECTED) != 0;
    return access;
}

bool AreEqual(const AccessList& left, const AccessList& right) {
    if (!left.list || !right.list) return !left.list && !right.list;
    return left.isProtected == right.isProtected && left.list->AclSize == right.list->AclSize &&
           std::memcmp(left.list, right.list, left.list->AclSize) == 0;
}

/// Mostly the new file has what it needs from its folder already: then nothing is written.
void CarryOverAccess(const std::wstring& from, std::wstring to) {
    const std::optional<AccessList> wanted = AccessListOf(from);
    if (!wanted) return;
    const std::optional<AccessList> present = AccessListOf(to);
    if (present && AreEqual(*wanted, *present)) return;
    const SECURITY_INFORMATION inheritance =
        wanted->isProtected ? PROTECTED_DACL_SECURITY_INFORMATION : UNPROTECTED_DACL_SECURITY_INFORMATION;
    SetNamedSecurityInfoW(to.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | inheritance, nullptr, nullptr,
                          wanted->list, nullptr);
}

}  // namespace

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(ExtendedPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

uint32_t MoveFileTo(const std::wstring& from, const std::wstring& to) {
    return Move(from, to, 0);
}

uint32_t MoveFileOver(const std::wstring& from, const std::wstring& to) {
    return Move(from, to, MOVEFILE_REPLACE_EXISTING);
}

uint32_t RemoveFile(const std::wstring& path) {
    const std::wstring target = ExtendedPath(path);
    return WithRetries([&] { return DeleteFileW(target.c_str()) != FALSE; });
}

uint32_t RemoveFileWhateverItsAttributes(const std::wstring& path) {
    return RemoveFileAt(ExtendedPath(path).c_str());
}

uint32_t RemoveFileAt(const wchar_t* extendedPath) noexcept {
    SetFileAttributesW(extendedPath, FILE_ATTRIBUTE_NORMAL);
    return WithRetries([&] { return DeleteFileW(extendedPath) != FALSE; });
}

bool IsSameFile(const std::wstring& left, const std::wstring& right) {
    const auto leftIdentity = IdentityOf(left);
    return leftIdentity && leftIdentity == IdentityOf(right);
}

void CarryOverAttributesAndAccess(const std::wstring& from, const std::wstring& to) {
    const std::wstring source = ExtendedPath(from);
    const std::wstring target = ExtendedPath(to);
    CarryOverAccess(source, target);
    const DWORD attributes = GetFileAttributesW(source.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return;
    const DWORD carried = attributes & kCarriedAttributes;
    if (carried == (GetFileAttributesW(target.c_str()) & kCarriedAttributes)) return;
    SetFileAttributesW(target.c_str(), carried ? carried : FILE_ATTRIBUTE_NORMAL);
}

std::vector<std::wstring> NamedStreamsOf(const std::wstring& path) {
    std::vector<std::wstring> streams;
    WIN32_FIND_STREAM_DATA stream = {};
    const FindHandle search(FindFirstStreamW(ExtendedPath(path).c_str(), FindStreamInfoStandard, &stream, 0));
    if (!search) return streams;
    do {
        const std::wstring_view name = stream.cStreamName;
        if (!name.starts_with(L"::")) streams.emplace_back(name);
    } while (FindNextStreamW(search.Get(), &stream));
    return streams;
}

uint32_t CopyStreams(const std::wstring& from, const std::wstring& to, const std::vector<std::wstring>& streams) {
    const std::wstring source = ExtendedPath(from);
    const std::wstring target = ExtendedPath(to);
    for (const std::wstring& stream : streams) {
        const FileHandle reader(CreateFileW((source + stream).c_str(), GENERIC_READ,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                            OPEN_EXISTING, 0, nullptr));
        if (!reader) return GetLastError();
        const FileHandle writer(
            CreateFileW((target + stream).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        if (!writer) return GetLastError();
        if (const uint32_t error = CopyBytes(reader, writer)) return error;
    }
    return ERROR_SUCCESS;
}

}  // namespace Win32
