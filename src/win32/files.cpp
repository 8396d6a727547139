#include "win32/files.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

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

/// An access list in the form in which the system gives it out. `read(descriptor, capacity, size)` asks for it.
template <class Read>
std::vector<std::byte> ReadAccessList(Read&& read) {
    constexpr DWORD kUsualSize = 1024;
    std::vector<std::byte> descriptor(kUsualSize);
    DWORD size = 0;
    const auto tryOnce = [&] { return read(descriptor.data(), static_cast<DWORD>(descriptor.size()), &size) != FALSE; };
    bool isRead = tryOnce();
    if (!isRead && size > descriptor.size()) {
        descriptor.resize(size);
        isRead = tryOnce();
    }
    if (!isRead) return {};
    descriptor.resize(GetSecurityDescriptorLength(descriptor.data()));
    return descriptor;
}

void GiveAccess(std::vector<std::byte> descriptor, std::wstring to) {
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    BOOL isPresent = FALSE;
    BOOL isDefault = FALSE;
    PACL list = nullptr;
    if (!GetSecurityDescriptorControl(descriptor.data(), &control, &revision) ||
        !GetSecurityDescriptorDacl(descriptor.data(), &isPresent, &list, &isDefault) || !isPresent)
        return;
    const SECURITY_INFORMATION inheritance =
        control & SE_DACL_PROTECTED ? PROTECTED_DACL_SECURITY_INFORMATION : UNPROTECTED_DACL_SECURITY_INFORMATION;
    SetNamedSecurityInfoW(to.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | inheritance, nullptr, nullptr, list,
                          nullptr);
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
    const auto remove = [&] { return WithRetries([&] { return DeleteFileW(extendedPath) != FALSE; }); };
    const uint32_t error = remove();
    if (error != ERROR_ACCESS_DENIED) return error;
    SetFileAttributesW(extendedPath, FILE_ATTRIBUTE_NORMAL);
    return remove();
}

bool IsSameFile(const std::wstring& left, const std::wstring& right) {
    const auto leftIdentity = IdentityOf(left);
    return leftIdentity && leftIdentity == IdentityOf(right);
}

AttributesAndAccess AttributesAndAccessOf(const std::wstring& path) {
    const std::wstring extended = ExtendedPath(path);
    return {GetFileAttributesW(extended.c_str()), ReadAccessList([&](void* descriptor, DWORD capacity, DWORD* size) {
                return GetFileSecurityW(extended.c_str(), DACL_SECURITY_INFORMATION, descriptor, capacity, size);
            })};
}

AttributesAndAccess AttributesAndAccessOf(void* openFile) {
    FILE_BASIC_INFO basic = {};
    const bool isKnown = GetFileInformationByHandleEx(openFile, FileBasicInfo, &basic, sizeof(basic)) != FALSE;
    return {isKnown ? basic.FileAttributes : INVALID_FILE_ATTRIBUTES,
            ReadAccessList([&](void* descriptor, DWORD capacity, DWORD* size) {
                return GetKernelObjectSecurity(openFile, DACL_SECURITY_INFORMATION, descriptor, capacity, size);
            })};
}

void CarryOverAttributesAndAccess(const std::wstring& from, const std::wstring& to,
                                  const AttributesAndAccess& present) {
    const AttributesAndAccess wanted = AttributesAndAccessOf(from);
    const std::wstring target = ExtendedPath(to);
    // Mostly the new file has what it needs from its folder already: then nothing is written.
    if (!wanted.accessList.empty() && wanted.accessList != present.accessList) GiveAccess(wanted.accessList, target);
    if (wanted.attributes == INVALID_FILE_ATTRIBUTES) return;
    const DWORD carried = wanted.attributes & kCarriedAttributes;
    if (carried == (present.attributes & kCarriedAttributes)) return;
    SetFileAttributesW(target.c_str(), carried ? carried : FILE_ATTRIBUTE_NORMAL);
}

void CarryOverAttributesAndAccess(const std::wstring& from, const std::wstring& to) {
    CarryOverAttributesAndAccess(from, to, AttributesAndAccessOf(to));
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
