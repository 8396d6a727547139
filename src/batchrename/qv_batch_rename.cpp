#include "batchrename/qv_batch_rename.h"

#include <utility>

#include "sdk/boundary.h"
#include "sdk/extension_info.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

constexpr uint32_t kRenameCommand = 31000;
constexpr uint32_t kRenameCommandFlags = 0x201;
constexpr TextId kMenuText = 2006_m;
constexpr TextId kRenameCommandText = 10_c;

}  // namespace

uint32_t QVBatchRename::Init(IHostServices* services) {
    return AtBoundary(0u, [&] {
        if (!services) return 0u;
        IMenuBuilder* const builder = services->GetMenuBuilder();
        ICommandFactory* const factory = services->GetCommandFactory();
        if (!builder || !factory) return 1u;
        Menu* const menu = builder->CreateRootMenu(kMenuText, 1, 0);
        Command* const command = factory->CreateCommand(kRenameCommand, kRenameCommandFlags, kRenameCommandText,
                                                        kRenameCommandText, kNoShortcut, 0);
        if (menu && command) builder->AddCommand(menu, command, 1, 0);
        return 1u;
    });
}

uint32_t QVBatchRename::GetType() {
    return kTypeCommands;
}

uint32_t QVBatchRename::SetHost(IHostServices* services) {
    m_services = services;
    return 1;
}

uint32_t QVBatchRename::OnCommand(uint32_t id, uintptr_t, uintptr_t) {
    return AtBoundary(0u, [&] { return id == kCommandShutdown ? Shutdown() : 0u; });
}

uint32_t QVBatchRename::Shutdown() {
    return AtBoundary(0u, [&] {
        if (IHostServices* const services = std::exchange(m_services, nullptr)) services->Release();
        return 0u;
    });
}

}  // namespace BatchRename
