// ntfs_prop.h - the NTFS Properties extension object.
#pragma once

#include "sdk/host_services.h"

namespace Security {

inline constexpr char kNtfsPropId[] = "9A4C1E7F2B3D4E5F8A6B7C0D1E2F3A4B";

class NTFSProp final : public Quorvane::SDK::IFileProperties {
public:
    uint32_t Init(Quorvane::SDK::IHostServices* services) override;
    uint32_t GetType() override;
    uint32_t SetHost(Quorvane::SDK::IHostServices* services) override;
    const char* GetId() override { return kNtfsPropId; }
    uint32_t GetValue(Quorvane::SDK::IFileItem* item, wchar_t* text, uint32_t capacity, uint16_t propertyId) override;
    bool ClearCache() override { return false; }

private:
    Quorvane::SDK::IHostServices* m_services = nullptr;
};

}  // namespace Security
