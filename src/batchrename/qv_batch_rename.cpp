#include "batchrename/qv_batch_rename.h"

#include <utility>

#include "batchrename/batchrename_texts.h"
#include "batchrename/extension_state.h"
#include "batchrename/gui_thread.h"
#include "sdk/boundary.h"
#include "sdk/extension_info.h"
#include "sdk/owners.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

constexpr uint32_t kRenameCommandFlags = 0x201;

// Milliseconds.
constexpr DWORD kPauseAtStart = 1000;
constexpr DWORD kWaitForEnding = 1000;
constexpr DWORD kWaitAtShutdown = 5000;
constexpr DWORD kWaitAtDeletion = 4000;
constexpr DWORD kWaitForCalls = 100;  // a thread may have passed the gate and not be in the host yet

constexpr uint32_t kLongestPath = 32768;  // units, with the closing zero

/// One row for each selected item, in list order; items without a name are left out.
RowSnapshot SelectedRows(IHostServices& services) {
    RenameItems rows;
    if (const Owned<IFileList> list = GatherSelection(services, SelectionFlags::Names)) {
        const std::vector<IFileItem*> items = ItemsOf(*list);
        rows.reserve(items.size());
        std::wstring buffer(kLongestPath, L'\0');  // one for all: there may be a hundred thousand
        for (IFileItem* const item : items) {
            auto row = std::make_shared<BatchRenameItem>();
            buffer[0] = L'\0';
            item->GetName(buffer.data(), kLongestPath);
            row->currentName = buffer.c_str();
            buffer[0] = L'\0';
            item->GetLocation(buffer.data(), kLongestPath);
            row->location = Win32::WithoutSeparator(buffer.c_str());
            const uint32_t attributes = item->GetAttributes();
            row->isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            row->hostOrder = static_cast<uint32_t>(rows.size());
            if (!row->currentName.empty()) rows.push_back(std::move(row));
        }
    }
    return std::make_shared<const RenameItems>(std::move(rows));
}

}  // namespace

QVBatchRename::QVBatchRename() : m_state(std::make_shared<ExtensionState>()) {}

QVBatchRename::~QVBatchRename() {
    if (m_guiThread) {
        AskToClose();
        m_guiThread->Wait(kWaitAtDeletion);
    }
    m_state->hostCallback.Release();
    // The thread may go on; the host's services may end with this object.
    m_state->host.Close();
    m_state->host.WaitForCalls(kWaitForCalls);
}

uint32_t QVBatchRename::Init(IHostServices* services) {
    return AtBoundary(0u, [&] {
        if (!services) return 0u;
        IMenuBuilder* const builder = services->GetMenuBuilder();
        ICommandFactory* const factory = services->GetCommandFactory();
        if (!builder || !factory) return 1u;
        Menu* const menu = builder->CreateRootMenu(Text::Menu, 1, 0);
        Command* const command =
            factory->CreateCommand(kRenameCommand, kRenameCommandFlags, Text::Command, Text::Command, kNoShortcut, 0);
        if (menu && command) builder->AddCommand(menu, command, 1, 0);
        return 1u;
    });
}

uint32_t QVBatchRename::GetType() {
    return kTypeCommands;
}

uint32_t QVBatchRename::SetHost(IHostServices* services) {
    return AtBoundary(1u, [&] {
        m_services = services;
        m_state->host.SetServices(services);
        m_state->profiles.Load(services ? &m_state->host : nullptr);
        return 1u;
    });
}

bool QVBatchRename::PreTranslateMessage(MSG* message, uint32_t) {
    return AtBoundary(false, [&] {
        if (!message || GetCurrentThreadId() != m_state->guiThread) return false;
        BatchRenameMainFrame* const frame = BatchRenameMainFrame::FromWindow(m_state->window);
        return frame && frame->PreTranslate(*message);
    });
}

uint32_t QVBatchRename::OnCommand(uint32_t id, uintptr_t first, uintptr_t second) {
    return AtBoundary(0u, [&] {
        switch (id) {
            case kCommandShutdown: return Shutdown();
            case kRenameCommand: return OpenWindow();
            case kCollectCommand: {
                // Guarded by itself: the window waits for the event, whatever the host does.
                AtBoundary(false, [&] {
                    CollectRows();
                    return true;
                });
                // The event comes in either value; the other is 0.
                const auto event = reinterpret_cast<HANDLE>(second != 0 ? second : first);
                if (event) SetEvent(event);
                return 1u;
            }
            default: return 0u;  // kCommandIdle too
        }
    });
}

uint32_t QVBatchRename::OpenWindow() {
    if (!m_services || m_state->isClosing) return 0;
    // A thread without a window is just ending, and rows sent to it would be lost. Waited for while the caller has
    // patience, as a thread that hangs must not hang the host.
    if (m_guiThread && m_guiThread->Wait(IsWindow(m_state->window) ? 0 : kWaitForEnding)) m_guiThread.reset();
    if (const HWND window = m_state->window) PostMessageW(window, WM_COMMAND, kRenameCommand, 0);
    m_state->hostCallback.Acquire(m_state->host);
    RuleContext& context = m_state->Context();
    CollectRows();
    context.hostValue = m_services->GetTextModule(kExtensionId);
    if (m_guiThread) return 1;
    m_guiThread = std::make_unique<BatchRenameGUIThread>(m_state);
    // A pause and no handshake: the caller finds the window's thread past its beginning when the command returns, and
    // a handshake would hang with a thread that hangs.
    // compatibility: 30
    Sleep(kPauseAtStart);
    return 1;
}

void QVBatchRename::CollectRows() {
    if (!m_services) return;
    m_state->rows.Put(SelectedRows(*m_services));
    if (m_guiThread) PostThreadMessageW(m_guiThread->Id(), kOwnerMessage, 0, 0);
}

void QVBatchRename::AskToClose() {
    m_state->isClosing = true;
    SetEvent(m_state->closing.Get());
    m_state->Context().isStopped = true;
    if (const HWND window = m_state->window) PostMessageW(window, WM_CLOSE, 0, 0);
    PostThreadMessageW(m_guiThread->Id(), WM_QUIT, 0, 0);
}

uint32_t QVBatchRename::Shutdown() {
    return AtBoundary(0u, [&] {
        m_state->hostCallback.Release();
        // The window's thread cannot wait for itself.
        if (GetCurrentThreadId() == m_state->guiThread) return 0u;
        if (m_guiThread) {
            AskToClose();
            m_guiThread->Wait(kWaitAtShutdown);
            m_guiThread.reset();
        }
        // A thread that has not ended calls no host that has been released.
        m_state->isClosing = true;
        m_state->host.Close();
        if (IHostServices* const services = std::exchange(m_services, nullptr)) services->Release();
        return 0u;
    });
}

}  // namespace BatchRename
