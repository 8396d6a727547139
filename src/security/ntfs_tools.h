// ntfs_tools.h - reads and changes who owns a file and who may use it. Nothing is shown here: callers decide.
#pragma once

#include <cstdint>
#include <string>

#include "security/security_system.h"

namespace Security {

/// Operations on a file or folder by its path, of any length. Where a result is a code it is 0 or a Windows error code:
/// 87 for a path or an account that is empty or has a zero inside, else the system's.
class NTFSTools {
public:
    explicit NTFSTools(const SecuritySystem& system = RealSystem()) : m_system(system) {}
    virtual ~NTFSTools() = default;
    NTFSTools(const NTFSTools&) = delete;
    NTFSTools& operator=(const NTFSTools&) = delete;

    /// The owner as `DOMAIN\name`. With `remotely` the machine that holds the file is asked for the name: the server of
    /// a share, also of one that a drive letter leads to. False when there is no owner, or none with a name.
    bool GetOwnerName(const std::wstring& path, bool remotely, std::wstring& owner) const;
    /// Owner and access list in the system's text form ("O:...D:...", SDDL), which its tools can put back; "" when they
    /// cannot be read.
    std::wstring DescribeOwnerAndList(const std::wstring& path) const;
    /// 0 when the account exists.
    uint32_t CheckAccount(const std::wstring& account) const;
    uint32_t SetOwner(const std::wstring& path, const std::wstring& account) const;
    /// Adds an entry for the account; 87 also for a mask of 0 and for a file without an access list. See the body for
    /// what becomes of the entries that are there.
    uint32_t GrantAccess(const std::wstring& path, const std::wstring& account, uint32_t mask) const;
    /// Empties the access list and lets the file inherit again. The result of the last write.
    uint32_t RemoveAllEntries(const std::wstring& path) const;
    uint32_t ResetInheritance(const std::wstring& path) const;
    /// The share that a drive leads to. False when there is none.
    bool GetUniversalName(const std::wstring& drivePath, std::wstring& name) const;

    /// Forgets the shares and account names that this process has looked up.
    static void ClearCaches();

private:
    const SecuritySystem& m_system;
};

/// The type of object that the system's calls by name are told for a path: 0 (unknown) for "", 1 (a file) for one with
/// a drive, else 4.
SE_OBJECT_TYPE ObjectTypeOf(const std::wstring& path);

}  // namespace Security
