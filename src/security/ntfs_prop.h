// ntfs_prop.h - the NTFS Properties extension object: four columns that a host can show of a file.
#pragma once

#include <cstdint>
#include <string>

#include "sdk/host_services.h"
#include "security/security_system.h"
#include "security/stream_records.h"

namespace Security {

/// No figures (zeros) for a path that does not exist or cannot be opened, and where the system knows no streams. Of
/// more streams than fit into 64 KB of records those that fit are counted.
StreamFigures QueryStreamFigures(const std::wstring& path, const SecuritySystem& system = RealSystem());

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

/// Texts in the host's language files: the group of the columns, and each column's heading.
namespace PropertyText {
using namespace Quorvane::SDK::TextIdLiterals;
inline constexpr Quorvane::SDK::TextId Group = 100_p;
inline constexpr Quorvane::SDK::TextId Owner = 111_p;
inline constexpr Quorvane::SDK::TextId Access = 112_p;
inline constexpr Quorvane::SDK::TextId StreamCount = 113_p;
inline constexpr Quorvane::SDK::TextId StreamSize = 114_p;
inline constexpr Quorvane::SDK::TextId kAll[] = {Group, Owner, Access, StreamCount, StreamSize};
}  // namespace PropertyText

inline constexpr char kNtfsPropId[] = "9A4C1E7F2B3D4E5F8A6B7C0D1E2F3A4B";

/// The ids of the columns.
namespace Property {
inline constexpr uint16_t Owner = 1;
inline constexpr uint16_t Access = 2;
inline constexpr uint16_t StreamCount = 3;
inline constexpr uint16_t StreamSize = 4;
}  // namespace Property

class NTFSProp final : public Quorvane::SDK::IFileProperties {
public:
    /// Registers the columns; 0.
    uint32_t Init(Quorvane::SDK::IHostServices* services) override;
    uint32_t GetType() override;
    uint32_t SetHost(Quorvane::SDK::IHostServices* services) override;
    const char* GetId() override { return kNtfsPropId; }
    /// What the host has stored of the item comes before what would have to be computed. A text that is too long for
    /// `text` is cut, never within a character. Failures are "no value", except that the access of a file that cannot
    /// be read is three blanks, and its number of streams 0.
    uint32_t GetValue(Quorvane::SDK::IFileItem* item, wchar_t* text, uint32_t capacity, uint16_t propertyId) override;
    /// Names that were looked up are looked up anew.
    bool ClearCache() override;

private:
    Quorvane::SDK::IHostServices* m_services = nullptr;
};

}  // namespace Security
