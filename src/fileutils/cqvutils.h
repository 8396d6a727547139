// cqvutils.h - the File Utils extension object: what it registers with the host, and where each call goes.
#pragma once

#include "sdk/extension_info.h"
#include "sdk/host_services.h"

namespace FileUtils {

/// Its only member is the host's services object, from SetHost on; it is never released.
class CQVUtils final : public Quorvane::SDK::IPluginInterface {
public:
    /// Builds the menus and, unless the host knows them already, registers the custom commands.
    uint32_t Init(Quorvane::SDK::IHostServices* services) override;
    uint32_t GetType() override { return Quorvane::SDK::kTypeCommands; }
    uint32_t SetHost(Quorvane::SDK::IHostServices* services) override;
    const char* GetId() override;
    bool PreTranslateMessage(MSG*, uint32_t) override { return false; }
    uint32_t OnCommand(uint32_t id, uintptr_t first, uintptr_t second) override;
    uint32_t OnCustomCommand(Quorvane::SDK::ICustomCommandCall* call) override;
    uint32_t OnElevatedRequest(uint32_t requestId, Quorvane::SDK::IRequestMessage* message) override;
    uint32_t Shutdown() override { return 0; }

private:
    Quorvane::SDK::IHostServices* m_services = nullptr;
};

}  // namespace FileUtils
