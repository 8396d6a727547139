#include "fileutils/cqvutils.h"

#include <algorithm>

#include "fileutils/command_table.h"
#include "fileutils/control_panel/control_panel.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/ids.h"
#include "sdk/boundary.h"
#include "sdk/owners.h"
#include "win32/windows.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

void BuildMenus(IHostServices& host) {
    IMenuBuilder* const builder = host.GetMenuBuilder();
    ICommandFactory* const factory = host.GetCommandFactory();
    if (!builder || !factory) return;
    Menu* const root = builder->CreateRootMenu(Text::RootMenu, 1, 0);
    TextId openText = kNoText;
    Menu* open = nullptr;
    for (const CommandRow& row : MenuCommands()) {
        if (row.subMenu != openText) {
            open = builder->AddSubMenu(root, row.subMenu, 1, 1);
            openText = row.subMenu;
        }
        Command* const command = factory->CreateCommand(row.id, kCommandFlags, row.text, row.text, row.shortcut, 0);
        if (open && command) builder->AddCommand(open, command, 1, 0);
    }
    BuildControlPanelMenu(host, *builder, root);
}

void RegisterCustomCommands(IHostServices& host) {
    ICustomCommandRegistry* const registry = host.GetCustomCommandRegistry(kModuleName);
    if (!registry || registry->IsRegistered()) return;
    for (const CustomCommandRow& row : CustomCommands()) {
        ICustomCommand* const command =
            registry->AddCustomCommand(row.name, row.id, kCustomCommandFlags, kCustomCommandMoreFlags);
        if (!command) continue;
        command->SetDescription(HostText(host, row.description));
        for (const ParameterRow& parameter : row.parameters)
            command->AddParameter(parameter.name, parameter.flags, HostText(host, parameter.description));
    }
    registry->Commit(1);
}

/// The first row for which `matches` holds; null when there is none.
template <class Row, class Matches>
const Row* FindRow(std::span<const Row> rows, Matches&& matches) {
    const auto found = std::find_if(rows.begin(), rows.end(), matches);
    return found == rows.end() ? nullptr : &*found;
}

CommandHandler FindHandler(uint32_t id) {
    if (const CommandRow* const row = FindRow(MenuCommands(), [&](const CommandRow& r) { return r.id == id; }))
        return row->handler;
    const CommandRange* const range =
        FindRow(CommandsWithoutEntry(), [&](const CommandRange& r) { return id >= r.firstId && id <= r.lastId; });
    return range ? range->handler : nullptr;
}

}  // namespace

uint32_t CQVUtils::Init(IHostServices* services) {
    return AtBoundary(0u, [&] {
        if (!services) return 0u;
        BuildMenus(*services);
        RegisterCustomCommands(*services);
        return 1u;
    });
}

uint32_t CQVUtils::SetHost(IHostServices* services) {
    m_services = services;
    return 1;
}

const char* CQVUtils::GetId() {
    return kExtensionId;
}

uint32_t CQVUtils::OnCommand(uint32_t id, uintptr_t, uintptr_t) {
    bool hasEnded = false;
    const uint32_t answer = AtBoundary(0u, [&] {
        if (id == kCommandShutdown) return Shutdown();
        const CommandHandler handler = FindHandler(id);
        const uint32_t result = m_services && handler ? handler(*m_services, id) : 0u;
        hasEnded = true;
        return result;
    });
    // A command has no code that could say so.
    if (!hasEnded && id != kCommandShutdown)
        AtBoundary(0, [&] {
            m_services->Log(kLogLevel, LogKind::Failure,
                            L"[QVUtils] - Command %u broke off : memory ran out, or the host failed", id);
            return 0;
        });
    return answer;
}

uint32_t CQVUtils::OnCustomCommand(ICustomCommandCall* call) {
    return AtBoundary(0u, [&] {
        if (!m_services || !call) return 0u;
        const uint32_t id = call->GetCommandId();
        const CustomCommandRow* const row =
            FindRow(CustomCommands(), [&](const CustomCommandRow& r) { return r.id == id; });
        if (!row || !row->handler) return 0u;
        const CallResult result =
            AtBoundary(CallResult{false, ERROR_OUTOFMEMORY}, [&] { return row->handler(*m_services, *call); });
        call->SetResultCode(result.code);
        return result.isDone ? 1u : 0u;
    });
}

uint32_t CQVUtils::OnElevatedRequest(uint32_t requestId, IRequestMessage* message) {
    return AtBoundary(0u, [&] {
        const ElevatedRow* const row =
            FindRow(ElevatedRequests(), [&](const ElevatedRow& r) { return r.requestId == requestId; });
        return m_services && message && row && row->handler ? row->handler(*m_services, *message) : 0u;
    });
}

}  // namespace FileUtils
