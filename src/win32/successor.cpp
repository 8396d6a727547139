#include "win32/successor.h"

#include <atomic>
#include <cstring>
#include <random>
#include <string_view>
#include <utility>

#include "win32/handle.h"
#include "win32/path.h"

#include <winioctl.h>

namespace Win32 {
namespace {

constexpr DWORD kSuccessorAccess = GENERIC_READ | GENERIC_WRITE | DELETE;
constexpr DWORD kCarriedAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                     FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
// What the system decides on access by. The list of what is logged is not among it: reading it takes a privilege.
constexpr SECURITY_INFORMATION kRights =
    OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION | LABEL_SECURITY_INFORMATION;

constexpr std::wstring_view kTemporaryBegin = L"~qv";
constexpr std::wstring_view kTemporaryEnd = L".tmp";
constexpr size_t kNumberLength = 16;  // hexadecimal digits

/// Of an existing file.
HeldFile OpenFile(const std::wstring& path, DWORD access, DWORD sharing = kShareAll, DWORD flags = 0) {
    return HeldFileOf(CreateFileW(ExtendedPath(path).c_str(), access, sharing, nullptr, OPEN_EXISTING, flags, nullptr));
}

/// A creation time of 0 stays as it is.
void SetAttributes(HANDLE file, DWORD attributes, int64_t creationTime = 0) {
    FILE_BASIC_INFO basic = {};
    basic.CreationTime.QuadPart = creationTime;
    basic.FileAttributes = attributes;
    SetFileInformationByHandle(file, FileBasicInfo, &basic, sizeof(basic));
}

/// In the form in which the system gives it out. Windows error code, 0 for success.
uint32_t GetRights(HANDLE file, std::vector<std::byte>& descriptor) {
    constexpr DWORD kUsualSize = 1024;
    descriptor.resize(kUsualSize);
    DWORD size = 0;
    const auto tryOnce = [&] {
        return GetKernelObjectSecurity(file, kRights, descriptor.data(), static_cast<DWORD>(descriptor.size()),
                                       &size) != FALSE;
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

/// One of a descriptor's two lists. A list that is missing grants everything, an empty one nothing.
struct List {
    BOOL isPresent = FALSE;
    ACL* entries = nullptr;

    bool operator==(const List& other) const {
        if (!entries || !other.entries) return entries == other.entries;
        return entries->AclSize == other.entries->AclSize && std::memcmp(entries, other.entries, entries->AclSize) == 0;
    }
};

List ListOf(std::vector<std::byte>& descriptor, decltype(&GetSecurityDescriptorDacl) get) {
    List list;
    BOOL isDefault = FALSE;
    get(descriptor.data(), &list.isPresent, &list.entries, &isDefault);
    if (!list.isPresent) list.entries = nullptr;
    return list;
}

PSID SidOf(std::vector<std::byte>& descriptor, decltype(&GetSecurityDescriptorOwner) get) {
    PSID sid = nullptr;
    BOOL isDefault = FALSE;
    get(descriptor.data(), &sid, &isDefault);
    return sid;
}

/// The rights that a new file is to have, and memory to look at those that it has: once the file is there nothing may
/// fail for want of memory.
class WantedRights {
public:
    explicit WantedRights(const std::vector<std::byte>& descriptor)
        : m_wanted(descriptor), m_present(descriptor.size() + 2 * SECURITY_MAX_SID_SIZE) {}

    /// Gives them to the file unless it has them. Windows error code when it does not have them then, else 0.
    uint32_t GiveTo(HANDLE file) {
        if (m_wanted.empty()) return ERROR_SUCCESS;
        const bool isRead = Read(file);
        // What the system refuses of these stays as the file has it.
        if (!isRead || !HasOwner(GetSecurityDescriptorOwner)) Set(file, OWNER_SECURITY_INFORMATION);
        if (!isRead || !HasOwner(GetSecurityDescriptorGroup)) Set(file, GROUP_SECURITY_INFORMATION);
        if ((isRead && HasLists()) || GiveByAttributes(file)) return ERROR_SUCCESS;
        if (!SetLists(file) || !Read(file)) return GetLastError();
        return HasLists() ? ERROR_SUCCESS : ERROR_INVALID_SECURITY_DESCR;
    }

private:
    bool Read(HANDLE file) {
        DWORD size = 0;
        return GetKernelObjectSecurity(file, kRights, m_present.data(), static_cast<DWORD>(m_present.size()), &size) !=
               FALSE;
    }

    bool HasOwner(decltype(&GetSecurityDescriptorOwner) get) {
        const PSID wanted = SidOf(m_wanted, get);
        const PSID present = SidOf(m_present, get);
        return !wanted || (present && EqualSid(wanted, present));
    }

    bool HasLists() {
        constexpr SECURITY_DESCRIPTOR_CONTROL kCompared = SE_DACL_PRESENT | SE_DACL_PROTECTED | SE_DACL_AUTO_INHERITED;
        return (Control(m_wanted) & kCompared) == (Control(m_present) & kCompared) &&
               ListOf(m_wanted, GetSecurityDescriptorDacl) == ListOf(m_present, GetSecurityDescriptorDacl) &&
               ListOf(m_wanted, GetSecurityDescriptorSacl) == ListOf(m_present, GetSecurityDescriptorSacl);
    }

    static SECURITY_DESCRIPTOR_CONTROL Control(std::vector<std::byte>& descriptor) {
        SECURITY_DESCRIPTOR_CONTROL control = 0;
        DWORD revision = 0;
        GetSecurityDescriptorControl(descriptor.data(), &control, &revision);
        return control;
    }

    bool Set(HANDLE file, SECURITY_INFORMATION part) {
        return SetKernelObjectSecurity(file, part, m_wanted.data()) != FALSE;
    }

    /// Takes the file from everybody, and then sets its attributes. Where a file has a mode instead of a list they
    /// decide what its owner alone may do, and mostly that is what is wanted; a list that names the owner would let the
    /// owner's group do the same.
    bool GiveByAttributes(HANDLE file) {
        ACL nobody = {};
        SECURITY_DESCRIPTOR descriptor = {};
        InitializeAcl(&nobody, sizeof(nobody), ACL_REVISION);
        InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&descriptor, TRUE, &nobody, FALSE);
        SetSecurityDescriptorControl(&descriptor, SE_DACL_PROTECTED, SE_DACL_PROTECTED);
        if (!SetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, &descriptor)) return false;
        for (const DWORD attribute : {FILE_ATTRIBUTE_NORMAL, FILE_ATTRIBUTE_READONLY}) {
            SetAttributes(file, attribute);
            if (Read(file) && HasLists()) return true;
        }
        SetAttributes(file, FILE_ATTRIBUTE_NORMAL);
        return false;
    }

    bool SetLists(HANDLE file) {
        // That the entries came from the folder is kept only when it is asked for.
        if (Control(m_wanted) & SE_DACL_AUTO_INHERITED)
            SetSecurityDescriptorControl(m_wanted.data(), SE_DACL_AUTO_INHERIT_REQ, SE_DACL_AUTO_INHERIT_REQ);
        const bool hasLabel = ListOf(m_wanted, GetSecurityDescriptorSacl).entries != nullptr ||
                              ListOf(m_present, GetSecurityDescriptorSacl).entries != nullptr;
        // This call takes lists as they are. SetNamedSecurityInfoW would add what the folder hands down to new files.
        return Set(file, DACL_SECURITY_INFORMATION | (hasLabel ? LABEL_SECURITY_INFORMATION : 0));
    }

    std::vector<std::byte> m_wanted;
    std::vector<std::byte> m_present;
};

/// Where the open file lies, with all links followed; "" when that is not known.
std::wstring FinalPath(HANDLE file) {
    std::wstring final(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetFinalPathNameByHandleW(file, final.data(), static_cast<DWORD>(final.size()), 0);
        const bool fits = length < final.size();
        final.resize(length);
        if (fits) return final;
    }
}

/// `path` as it stands on disk: it may have been given in other letters, by a short name, or as a link to elsewhere.
std::wstring PathOnDisk(HANDLE file, const std::wstring& path) {
    struct {
        FILE_NAME_INFO information;
        wchar_t rest[512];  // longer ones are asked for in the other way
    } name = {};
    if (GetFileInformationByHandleEx(file, FileNameInfo, &name, sizeof(name))) {
        const std::wstring_view within(name.information.FileName, name.information.FileNameLength / sizeof(wchar_t));
        const std::wstring_view given = path;
        // What lies before is the drive, or the first of a share's separators.
        if (given.ends_with(within) && given.substr(0, given.size() - within.size()).ends_with(L':')) return path;
    }
    std::wstring final = FinalPath(file);
    if (!final.empty()) return final;
    WIN32_FIND_DATAW entry = {};
    const FindHandle search(
        FindFirstFileExW(ExtendedPath(path).c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr, 0));
    return search ? std::wstring(FolderOf(path)) + entry.cFileName : path;
}

std::wstring DigitsOf(uint64_t number) {
    constexpr wchar_t kDigits[] = L"0123456789abcdef";
    std::wstring digits;
    for (; digits.size() < kNumberLength; number >>= 4) digits += kDigits[number & 15];
    return digits;
}

/// Fowler, Noll and Vo's hash of 64 bits (FNV-1a, draft-eastlake-fnv), begun with another number than theirs so that no
/// other program's check is the same.
uint64_t HashOf(std::wstring_view text) {
    uint64_t hash = 0x7176'7574'696c'7321;
    for (const wchar_t unit : text) hash = (hash ^ unit) * 0x100'0000'01B3;
    return hash;
}

std::wstring CheckOf(std::wstring_view digits) {
    return DigitsOf(HashOf(digits));
}

bool IsTemporaryName(std::wstring_view name) {
    if (name.size() != kTemporaryBegin.size() + 2 * kNumberLength + kTemporaryEnd.size()) return false;
    const std::wstring_view digits = name.substr(kTemporaryBegin.size(), kNumberLength);
    return name.starts_with(kTemporaryBegin) && name.ends_with(kTemporaryEnd) &&
           name.substr(kTemporaryBegin.size() + kNumberLength, kNumberLength) == CheckOf(digits);
}

uint32_t CopyBytes(HANDLE from, HANDLE to) {
    constexpr DWORD kBlockSize = 64 * 1024;
    const auto block = std::make_unique_for_overwrite<char[]>(kBlockSize);
    for (;;) {
        DWORD size = 0;
        DWORD written = 0;
        if (!ReadFile(from, block.get(), kBlockSize, &size, nullptr)) return GetLastError();
        if (size == 0) return FlushFile(to);
        if (!WriteFile(to, block.get(), size, &written, nullptr)) return GetLastError();
        if (written != size) return ERROR_DISK_FULL;
    }
}

}  // namespace

uint32_t GetState(void* openFile, const std::wstring& path, FileState& state) {
    FILE_BASIC_INFO basic = {};
    FILE_STANDARD_INFO standard = {};
    if (!GetFileInformationByHandleEx(openFile, FileBasicInfo, &basic, sizeof(basic)) ||
        !GetFileInformationByHandleEx(openFile, FileStandardInfo, &standard, sizeof(standard)))
        return GetLastError();
    state.path = PathOnDisk(openFile, path);
    state.attributes = basic.FileAttributes;
    state.creationTime = basic.CreationTime.QuadPart;
    state.linkCount = standard.NumberOfLinks;
    return GetRights(openFile, state.rights);
}

uint32_t HoldUnchanged(const FileState& state, HeldFile& held) {
    const std::wstring path = ExtendedPath(state.path);
    for (int attempt = 1;; ++attempt) {
        held = OpenFile(path, DELETE | FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_DELETE);
        if (held) break;
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND) return ERROR_FILE_INVALID;
        if (!WaitForHolder(error, attempt, {path.c_str()})) return error;
    }
    FileStamp stamp;
    if (const uint32_t error = GetStamp(held.get(), stamp)) return error;
    return stamp == state.stamp ? ERROR_SUCCESS : ERROR_FILE_INVALID;
}

uint32_t CheckMoved(const std::wstring& path, const FileState& state) {
    // One call, which opens nothing: every replaced file pays for it.
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(ExtendedPath(path).c_str(), GetFileExInfoStandard, &data)) return GetLastError();
    const uint64_t size = uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow;
    const uint64_t time = uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32 | data.ftLastWriteTime.dwLowDateTime;
    const bool isSame = size == state.stamp.size && time == static_cast<uint64_t>(state.stamp.writeTime);
    return isSame ? ERROR_SUCCESS : ERROR_FILE_INVALID;
}

std::wstring TemporaryNameBeside(const std::wstring& path) {
    std::random_device random;
    const std::wstring digits = DigitsOf(uint64_t{random()} << 32 | random());
    std::wstring name(kTemporaryBegin);
    name.append(digits).append(CheckOf(digits)).append(kTemporaryEnd);
    return ExtendedPath(JoinPath(FolderOf(path), name));
}

void RemoveLeftovers(const std::wstring& folder) {
    // A script's run over many files is one call for each, and listing the folder for each would take longer than the
    // work. Saves nothing but time: two threads at once may both look.
    static std::atomic<uint64_t> lastLook;
    const uint64_t look = HashOf(folder) ^ (GetTickCount64() / 1000);
    if (lastLook.exchange(look) == look) return;
    WIN32_FIND_DATAW entry = {};
    const std::wstring pattern = ExtendedPath(JoinPath(folder, L"~qv*.tmp"));
    const FindHandle search(FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr,
                                             FIND_FIRST_EX_LARGE_FETCH));
    if (!search) return;
    do {
        if (!IsTemporaryName(entry.cFileName)) continue;
        const std::wstring path = JoinPath(folder, entry.cFileName);
        const HeldFile alone = OpenFile(path, DELETE | FILE_WRITE_ATTRIBUTES, 0, FILE_FLAG_OPEN_REPARSE_POINT);
        // A link of such a name was made by somebody else, and leads to something else.
        if (!alone || FileNameOf(PathOnDisk(alone.get(), path)) != entry.cFileName) continue;
        if (entry.dwFileAttributes & FILE_ATTRIBUTE_READONLY) SetAttributes(alone.get(), FILE_ATTRIBUTE_NORMAL);
        RemoveWhenClosed(alone.get());
    } while (FindNextFileW(search.Get(), &entry));
}

Successor CreateSuccessor(const std::wstring& extendedPath, const FileState& original) {
    const DWORD encryption = original.attributes & FILE_ATTRIBUTE_ENCRYPTED;
    WantedRights wanted(original.rights);
    Successor made;
    HeldFile& file = made.file;
    // A share may let its users write and not decide on rights. Mostly both files have what their folder hands down.
    for (const DWORD access : {kSuccessorAccess | WRITE_DAC | WRITE_OWNER, kSuccessorAccess}) {
        file = HeldFileOf(
            CreateFileW(extendedPath.c_str(), access, FILE_SHARE_DELETE, nullptr, CREATE_NEW, encryption, nullptr));
        if (file || GetLastError() != ERROR_ACCESS_DENIED) break;
    }
    if (!file) {
        made.error = GetLastError();
        return made;
    }
    FILE_BASIC_INFO basic = {};
    const bool isEncrypted =
        encryption == 0 || (GetFileInformationByHandleEx(file.get(), FileBasicInfo, &basic, sizeof(basic)) &&
                            (basic.FileAttributes & FILE_ATTRIBUTE_ENCRYPTED));
    made.rightsError = isEncrypted ? wanted.GiveTo(file.get()) : ERROR_ENCRYPTION_FAILED;
    if (made.rightsError == ERROR_SUCCESS) return made;
    RemoveWhenClosed(file.get());
    file.reset();
    RemoveFileAt(extendedPath.c_str());
    return made;
}

HeldFile OpenSuccessor(const std::wstring& extendedPath) {
    return OpenFile(extendedPath, kSuccessorAccess, FILE_SHARE_DELETE);
}

void CarryOverAttributes(const FileState& original, void* openFile) {
    FILE_BASIC_INFO present = {};
    if (!GetFileInformationByHandleEx(openFile, FileBasicInfo, &present, sizeof(present))) return;
    if ((present.FileAttributes ^ original.attributes) & FILE_ATTRIBUTE_COMPRESSED) {
        const bool isCompressed = (original.attributes & FILE_ATTRIBUTE_COMPRESSED) != 0;
        USHORT format = isCompressed ? COMPRESSION_FORMAT_DEFAULT : COMPRESSION_FORMAT_NONE;
        DWORD size = 0;
        DeviceIoControl(openFile, FSCTL_SET_COMPRESSION, &format, sizeof(format), nullptr, 0, &size, nullptr);
    }
    const DWORD carried = original.attributes & kCarriedAttributes;
    SetAttributes(openFile, carried ? carried : FILE_ATTRIBUTE_NORMAL, original.creationTime);
}

bool NeedsSystemToReplace(const FileState& original, const std::vector<std::wstring>& streams) {
    return !streams.empty() || (original.attributes & (FILE_ATTRIBUTE_ENCRYPTED | FILE_ATTRIBUTE_COMPRESSED)) != 0;
}

uint32_t ReplaceBySystem(const FileState& original, const std::wstring& replacement, const std::wstring& backup) {
    const std::wstring target = ExtendedPath(original.path);
    for (int attempt = 1;; ++attempt) {
        if (ReplaceFileW(target.c_str(), replacement.c_str(), ExtendedPath(backup).c_str(), 0, nullptr, nullptr))
            return ERROR_SUCCESS;
        const DWORD error = GetLastError();
        if (!WaitForHolder(error, attempt, {target.c_str()})) return error;
    }
}

bool GiveRights(const std::wstring& path, const FileState& original) {
    HeldFile file = OpenFile(path, FILE_WRITE_ATTRIBUTES | READ_CONTROL | WRITE_DAC | WRITE_OWNER);
    if (!file) file = OpenFile(path, READ_CONTROL);
    return file && WantedRights(original.rights).GiveTo(file.get()) == ERROR_SUCCESS;
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
        const HeldFile reader = OpenFile(source + stream, GENERIC_READ);
        if (!reader) return GetLastError();
        const HeldFile writer =
            HeldFileOf(CreateFileW((target + stream).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        if (!writer) return GetLastError();
        if (const uint32_t error = CopyBytes(reader.get(), writer.get())) return error;
    }
    return ERROR_SUCCESS;
}

uint32_t FlushFile(void* openFile) noexcept {
    if (FlushFileBuffers(openFile)) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    const bool isUnknown = error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED;
    return isUnknown ? ERROR_SUCCESS : error;
}

}  // namespace Win32
