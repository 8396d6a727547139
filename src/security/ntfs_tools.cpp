#include "security/ntfs_tools.h"

#include <cstring>
#include <vector>

#include <sddl.h>

#include "security/account_names.h"
#include "security/privilege.h"
#include "security/security_system.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace Security {
namespace {

constexpr DWORD kRevision = ACL_REVISION;
constexpr BYTE kInherited = OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE;
constexpr size_t kEntryHead = sizeof(ACCESS_ALLOWED_ACE) - sizeof(DWORD);  // an entry without its identifier
static_assert(kRevision == 2 && kInherited == 3 && kEntryHead == 8);

// What every object of NTFSTools shares, for as long as the process runs.
UniversalNames& SharedUniversalNames() {
    static UniversalNames names;
    return names;
}
AccountNames& SharedAccountNames() {
    static AccountNames names;
    return names;
}

bool IsUsable(const std::wstring& text) {
    return !text.empty() && text.find(L'\0') == std::wstring::npos;
}

bool HasDrive(const std::wstring& path) {
    return path.size() >= 2 && path[1] == L':';
}

/// A file's access list, and the descriptor that it lies in.
struct AccessList {
    Win32::LocalMemory descriptor;
    PACL entries = nullptr;  // null: everybody may do everything
};

uint32_t ReadAccessList(const SecuritySystem& system, const std::wstring& path, AccessList& list) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error =
        system.getNamedSecurityInfo(Win32::ExtendedPath(path).c_str(), ObjectTypeOf(path), DACL_SECURITY_INFORMATION,
                                    nullptr, nullptr, &list.entries, nullptr, &descriptor);
    list.descriptor.Reset(descriptor);
    return error;
}

/// Writes the access list, and whatever else `parts` says.
uint32_t WriteAccessList(const SecuritySystem& system, const std::wstring& path, SECURITY_INFORMATION parts,
                         PACL list) {
    std::wstring file = Win32::ExtendedPath(path);
    return system.setNamedSecurityInfo(file.data(), ObjectTypeOf(path), parts, nullptr, nullptr, list, nullptr);
}

/// An access list that is being built.
class NewAccessList {
public:
    explicit NewAccessList(size_t size) : m_bytes(size) {}
    ACL* Get() { return reinterpret_cast<ACL*>(m_bytes.data()); }
    bool Initialize() { return InitializeAcl(Get(), static_cast<DWORD>(m_bytes.size()), kRevision) != FALSE; }

    /// Every entry is rewritten (compatibility: 32) as one that allows its mask and is inherited by files and folders
    /// below; one that denied allows from then on. People grant access to get at a file, and scripts count on the grant
    /// holding for all that is below and on no denial standing in its way.
    bool AddRewritten(const ACE_HEADER& entry) {
        const auto* const first = reinterpret_cast<const std::byte*>(&entry);
        std::vector<std::byte> copy(first, first + entry.AceSize);
        ACE_HEADER head = entry;
        head.AceType = ACCESS_ALLOWED_ACE_TYPE;
        head.AceFlags = kInherited;
        std::memcpy(copy.data(), &head, sizeof(head));
        return AddAce(Get(), kRevision, MAXDWORD, copy.data(), entry.AceSize) != FALSE;
    }
    bool AddAllowed(uint32_t mask, PSID sid) {
        return AddAccessAllowedAceEx(Get(), kRevision, kInherited, mask, sid) != FALSE;
    }

private:
    std::vector<std::byte> m_bytes;
};

bool Rewrite(ACL* source, DWORD count, NewAccessList& target) {
    for (DWORD index = 0; index < count; ++index) {
        void* entry = nullptr;
        if (!GetAce(source, index, &entry) || !target.AddRewritten(*static_cast<const ACE_HEADER*>(entry)))
            return false;
    }
    return true;
}

}  // namespace

SE_OBJECT_TYPE ObjectTypeOf(const std::wstring& path) {
    if (path.empty()) return SE_UNKNOWN_OBJECT_TYPE;
    if (HasDrive(path)) return SE_FILE_OBJECT;
    // A path on a share included (compatibility: 33): the type is a registry key's, and the system refuses a name that
    // is none. So access lists on servers are never changed from here; there the way is a mapped drive.
    return SE_REGISTRY_KEY;
}

bool NTFSTools::GetOwnerName(const std::wstring& path, bool remotely, std::wstring& owner) const {
    FileDescriptor descriptor;
    PSID sid = nullptr;
    BOOL isDefault = FALSE;
    if (!descriptor.Read(m_system, path, OWNER_SECURITY_INFORMATION) ||
        !GetSecurityDescriptorOwner(descriptor.Get(), &sid, &isDefault) || !sid)
        return false;
    std::wstring machine;
    if (remotely) {
        std::wstring share = path;
        machine = HasDrive(path) && !GetUniversalName(path, share) ? L"" : ServerOf(share);
    }
    return SharedAccountNames().Find(machine, sid, m_system, owner);
}

std::wstring NTFSTools::DescribeOwnerAndList(const std::wstring& path) const {
    constexpr SECURITY_INFORMATION kParts = OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    FileDescriptor descriptor;
    wchar_t* raw = nullptr;
    if (!IsUsable(path) || !descriptor.Read(m_system, path, kParts) ||
        !ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor.Get(), SDDL_REVISION_1, kParts, &raw, nullptr))
        return {};
    const Win32::LocalMemory text(raw);
    return raw;
}

uint32_t NTFSTools::CheckAccount(const std::wstring& account) const {
    AccountSid sid;
    return IsUsable(account) ? sid.Find(account, m_system) : uint32_t{ERROR_INVALID_PARAMETER};
}

uint32_t NTFSTools::SetOwner(const std::wstring& path, const std::wstring& account) const {
    if (!IsUsable(path) || !IsUsable(account)) return ERROR_INVALID_PARAMETER;
    AccountSid sid;
    if (const uint32_t error = sid.Find(account, m_system)) return error;
    std::wstring file = Win32::ExtendedPath(path);
    return m_system.setNamedSecurityInfo(file.data(), ObjectTypeOf(path), OWNER_SECURITY_INFORMATION, sid.Get(),
                                         nullptr, nullptr, nullptr);
}

uint32_t NTFSTools::GrantAccess(const std::wstring& path, const std::wstring& account, uint32_t mask) const {
    if (!IsUsable(path) || !IsUsable(account) || mask == 0) return ERROR_INVALID_PARAMETER;
    AccountSid sid;
    if (const uint32_t error = sid.Find(account, m_system)) return error;
    AccessList list;
    if (const uint32_t error = ReadAccessList(m_system, path, list)) return error;
    if (!list.entries) return ERROR_INVALID_PARAMETER;
    ACL_SIZE_INFORMATION size = {};
    if (!GetAclInformation(list.entries, &size, sizeof(size), AclSizeInformation)) return GetLastError();
    NewAccessList longer(size.AclBytesInUse + GetLengthSid(sid.Get()) + kEntryHead);
    if (!longer.Initialize() || !Rewrite(list.entries, size.AceCount, longer) || !longer.AddAllowed(mask, sid.Get()))
        return GetLastError();
    // Granted counts as done once the list is built, whether or not this write succeeds (compatibility: 34): over a
    // selection with items of others, the grant goes on to those that can be changed.
    WriteAccessList(m_system, path, DACL_SECURITY_INFORMATION, longer.Get());
    return ERROR_SUCCESS;
}

uint32_t NTFSTools::RemoveAllEntries(const std::wstring& path) const {
    if (!IsUsable(path)) return ERROR_INVALID_PARAMETER;
    AccessList list;
    if (const uint32_t error = ReadAccessList(m_system, path, list)) return error;
    NewAccessList empty(sizeof(ACL));
    if (!list.entries) {
        // No list at all would stay what it is, access for everybody; an empty one is filled with what is inherited.
        if (!empty.Initialize()) return GetLastError();
        list.entries = empty.Get();
    }
    for (WORD count = list.entries->AceCount; count > 0; --count) DeleteAce(list.entries, 0);
    ResetInheritance(path);
    return WriteAccessList(m_system, path, DACL_SECURITY_INFORMATION, list.entries);
}

uint32_t NTFSTools::ResetInheritance(const std::wstring& path) const {
    if (!IsUsable(path)) return ERROR_INVALID_PARAMETER;
    const ScopedPrivilege security(SE_SECURITY_NAME);
    if (security.Error() != ERROR_SUCCESS) return security.Error();
    // Unprotected: what the folder above gives comes back. Protected, a list emptied before would shut everybody out.
    return WriteAccessList(m_system, path, DACL_SECURITY_INFORMATION | UNPROTECTED_DACL_SECURITY_INFORMATION, nullptr);
}

bool NTFSTools::GetUniversalName(const std::wstring& drivePath, std::wstring& name) const {
    return SharedUniversalNames().Find(drivePath, m_system, name);
}

void NTFSTools::ClearCaches() {
    SharedUniversalNames().Clear();
    SharedAccountNames().Clear();
}

}  // namespace Security
