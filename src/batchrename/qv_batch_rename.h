// qv_batch_rename.h - the Batch Rename extension object.
#pragma once

#include "sdk/host_services.h"

namespace BatchRename {

inline constexpr char kExtensionId[] = "e90a3c7b5d1f4e28a6b4c2d0f8e1a375";

class QVBatchRename final : public Quorvane::SDK::IPluginInterface {
public:
    /// Adds a menu of its own with the one command.
    uint32_t Init(Quorvane::SDK::IHostServices* services) override;
    uint32_t GetType() override;
    uint32_t SetHost(Quorvane::SDK::IHostServices* services) override;
    const char* GetId() override { return kExtensionId; }
    bool PreTranslateMessage(MSG*, uint32_t) override { return false; }
    uint32_t OnCommand(uint32_t id, uintptr_t first, uintptr_t second) override;
    uint32_t OnCustomCommand(Quorvane::SDK::ICustomCommandCall*) override { return 0; }
    uint32_t OnElevatedRequest(uint32_t, Quorvane::SDK::IRequestMessage*) override { return 0; }
    /// Lets go of the host's services object; nothing may be asked of the extension afterwards but its deletion.
    uint32_t Shutdown() override;

private:
    Quorvane::SDK::IHostServices* m_services = nullptr;
};

}  // namespace BatchRename
