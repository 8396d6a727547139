#include "win32/files.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <random>
#include <string_view>
#include <vector>

#include "win32/handle.h"
#include "win32/path.h"
#include "win32/text.h"

namespace Win32 {
namespace {

constexpr int kAttempts = 6;
constexpr DWORD kPauseMilliseconds = 50;
constexpr DWORD kCarriedAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                     FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

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
        const bool held = error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
                          (error == ERROR_ACCESS_DENIED && std::ranges::any_of(paths, IsHeld));
        if (!held || attempt == kAttempts) return error;
        Sleep(kPauseMilliseconds);
    }
}

uint32_t Move(const std::wstring& from, const std::wstring& to, DWORD flags) {
    const std::wstring source = ExtendedPath(from);
    const std::wstring target = ExtendedPath(to);
    return WithRetries({source.c_str(), target.c_str()},
                       [&] { return MoveFileExW(source.c_str(), target.c_str(), flags) != FALSE; });
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

/// The access list within its descriptor, in the form in which the system gives it out; empty on a volume that knows
/// none. Windows error code, 0 for success.
uint32_t GetAccessList(HANDLE file, std::vector<std::byte>& descriptor) {
    constexpr DWORD kUsualSize = 1024;
    descriptor.resize(kUsualSize);
    DWORD size = 0;
    const auto tryOnce = [&] {
        return GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, descriptor.data(),
                                       static_cast<DWORD>(descriptor.size()), &size) != FALSE;
    };
    bool isRead = tryOnce();
    if (!isRead && size > descriptor.size()) {
        descriptor.resize(size);
        isRead = tryOnce();
    }
    const DWORD error = isRead ? ERROR_SUCCESS : GetLastError();
    descriptor.resize(isRead ? GetSecurityDescriptorLength(descriptor.data()) : 0);
    const bool hasNone = error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION;
    return hasNone ? ERROR_SUCCESS : error;
}

/// An access list that a new file is to have, and memory to look at the one that it has: once the file is there nothing
/// may fail for want of memory.
class WantedAccessList {
public:
    explicit WantedAccessList(const std::vector<std::byte>& descriptor)
        : m_descriptor(descriptor), m_changed(descriptor), m_present(descriptor.size()) {}

    bool IsOf(HANDLE file) {
        DWORD size = 0;
        return GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, m_present.data(),
                                       static_cast<DWORD>(m_present.size()), &size) &&
               m_present == m_descriptor;
    }

    /// To create a file with. Protected for now: else the system would add what the folder hands down, for everybody to
    /// read while the file is written.
    void* ForCreation() {
        SetControl(SE_DACL_PROTECTED);
        return m_changed.data();
    }

    /// Turns the list of a file that was created so into the wanted one, to the last bit. False when it stays another.
    bool GiveTo(HANDLE file) {
        if (IsOf(file)) return true;
        m_changed = m_descriptor;
        SECURITY_DESCRIPTOR_CONTROL control = 0;
        DWORD revision = 0;
        GetSecurityDescriptorControl(m_changed.data(), &control, &revision);
        // That the entries came from the folder is kept only when it is asked for.
        if (control & SE_DACL_AUTO_INHERITED) SetControl(SE_DACL_AUTO_INHERIT_REQ);
        // This call takes a list as it is. SetNamedSecurityInfoW would add what the folder hands down to new files.
        return SetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, m_changed.data()) || IsOf(file);
    }

private:
    void SetControl(SECURITY_DESCRIPTOR_CONTROL bit) { SetSecurityDescriptorControl(m_changed.data(), bit, bit); }

    const std::vector<std::byte>& m_descriptor;
    std::vector<std::byte> m_changed;
    std::vector<std::byte> m_present;
};

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

/// `path` with the file's name as it stands on disk: it may have been given in other letters, or by its short name.
std::wstring PathOnDisk(HANDLE file, const std::wstring& path) {
    const std::wstring_view given = FileNameOf(path);
    struct {
        FILE_NAME_INFO information;
        wchar_t rest[512];  // longer ones are looked up in the folder
    } name = {};
    if (GetFileInformationByHandleEx(file, FileNameInfo, &name, sizeof(name)) &&
        std::wstring_view(name.information.FileName, name.information.FileNameLength / sizeof(wchar_t))
            .ends_with(std::wstring(L"\\").append(given)))
        return path;
    // The folder's entry, since the open file may be one that a link leads to.
    WIN32_FIND_DATAW entry = {};
    const FindHandle search(
        FindFirstFileExW(ExtendedPath(path).c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr, 0));
    return search ? std::wstring(FolderOf(path)) + entry.cFileName : path;
}

/// Where the path leads, with every link on its way followed; "" when that is not known.
std::wstring FinalPath(const std::wstring& path) {
    const FileHandle file(CreateFileW(ExtendedPath(path).c_str(), 0,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
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
    stamp = {IndexOf(openFile), static_cast<uint64_t>(size.QuadPart), basic.LastWriteTime.QuadPart};
    return ERROR_SUCCESS;
}

uint32_t GetState(void* openFile, const std::wstring& path, FileState& state) {
    FILE_BASIC_INFO basic = {};
    if (!GetFileInformationByHandleEx(openFile, FileBasicInfo, &basic, sizeof(basic))) return GetLastError();
    state.path = PathOnDisk(openFile, path);
    state.attributes = basic.FileAttributes;
    const uint32_t error = GetStamp(openFile, state.stamp);
    return error ? error : GetAccessList(openFile, state.accessList);
}

uint32_t GetState(const std::wstring& path, FileState& state) {
    const FileHandle file(CreateFileW(ExtendedPath(path).c_str(), READ_CONTROL | FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0,
                                      nullptr));
    return file ? GetState(file.Get(), path, state) : GetLastError();
}

uint32_t CheckUnchanged(const FileState& state) {
    const std::wstring path = ExtendedPath(state.path);
    FileHandle file;
    const uint32_t error = WithRetries({path.c_str()}, [&] {
        file.Reset(CreateFileW(path.c_str(), DELETE | FILE_READ_ATTRIBUTES,
                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0,
                               nullptr));
        return static_cast<bool>(file);
    });
    if (error == ERROR_FILE_NOT_FOUND) return ERROR_FILE_INVALID;
    if (error != ERROR_SUCCESS) return error;
    FileStamp stamp;
    if (const uint32_t stampError = GetStamp(file.Get(), stamp)) return stampError;
    return stamp == state.stamp ? ERROR_SUCCESS : ERROR_FILE_INVALID;
}

std::wstring TemporaryNameBeside(const std::wstring& path) {
    constexpr wchar_t kDigits[] = L"0123456789abcdef";
    std::random_device random;
    std::wstring name = L"~qv";
    for (uint64_t number = uint64_t{random()} << 32 | random(), digit = 0; digit < 16; ++digit, number >>= 4)
        name += kDigits[number & 15];
    return ExtendedPath(JoinPath(FolderOf(path), name + L".tmp"));
}

void* CreateSuccessor(const std::wstring& extendedPath, const FileState& original) {
    const auto create = [&](SECURITY_ATTRIBUTES* security) {
        return CreateFileW(extendedPath.c_str(), GENERIC_WRITE | READ_CONTROL | WRITE_DAC | DELETE, FILE_SHARE_READ,
                           security, CREATE_NEW, 0, nullptr);
    };
    WantedAccessList wanted(original.accessList);
    // Mostly both files have what their folder hands down.
    FileHandle file(create(nullptr));
    if (!file || original.accessList.empty() || wanted.IsOf(file.Get())) return file.Release();
    const auto discard = [&] {
        const DWORD error = GetLastError();
        RemoveWhenClosed(file.Get());
        file.Reset();
        RemoveFileAt(extendedPath.c_str());
        SetLastError(error);
    };
    discard();
    SECURITY_ATTRIBUTES security = {sizeof(security), wanted.ForCreation(), FALSE};
    file.Reset(create(&security));
    if (file && !wanted.GiveTo(file.Get())) discard();
    return file.Release();
}

void CarryOverAttributes(const FileState& original, void* openFile) {
    FILE_BASIC_INFO basic = {};
    const DWORD carried = original.attributes & kCarriedAttributes;
    if (!GetFileInformationByHandleEx(openFile, FileBasicInfo, &basic, sizeof(basic)) ||
        (basic.FileAttributes & kCarriedAttributes) == carried)
        return;
    basic = {};  // times of 0 stay as they are
    basic.FileAttributes = carried ? carried : FILE_ATTRIBUTE_NORMAL;
    SetFileInformationByHandle(openFile, FileBasicInfo, &basic, sizeof(basic));
}

void RemoveWhenClosed(void* openFile) noexcept {
    FILE_DISPOSITION_INFO disposition = {TRUE};
    SetFileInformationByHandle(openFile, FileDispositionInfo, &disposition, sizeof(disposition));
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
