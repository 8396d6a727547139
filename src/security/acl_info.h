// acl_info.h - what the current user may do with a file.
#pragma once

#include <cstdint>
#include <string>

#include "security/security_system.h"

namespace Security {

/// The one failure of CACLInfo: the access list cannot be read, or there is none.
inline constexpr uint32_t kNoRights = 0x80004005;

class CACLInfo {
public:
    explicit CACLInfo(std::wstring path, const SecuritySystem& system = RealSystem())
        : m_path(std::move(path)), m_system(system) {}
    virtual ~CACLInfo() = default;
    CACLInfo(const CACLInfo&) = delete;
    CACLInfo& operator=(const CACLInfo&) = delete;

    /// 0 and the access mask, or kNoRights and a mask of 0. Each call asks the system: nothing is kept from earlier
    /// ones.
    uint32_t GetEffectiveRights(uint32_t& mask) const;

private:
    std::wstring m_path;
    const SecuritySystem& m_system;
};

/// Three characters, "RWX" with a blank for what the mask does not allow. Reading and executing need the data and the
/// attributes, respectively the data and execution; writing also appending and both kinds of attributes.
std::wstring RightsText(uint32_t mask);

}  // namespace Security
