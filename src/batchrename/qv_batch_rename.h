// qv_batch_rename.h - the Batch Rename extension object: one command, which opens the window on a thread of its own.
// Everything here runs on the host's thread; what the window's thread shares with it is in extension_state.h.
#pragma once

#include <memory>

#include "sdk/host_services.h"

namespace BatchRename {

struct ExtensionState;
class BatchRenameGUIThread;

inline constexpr char kExtensionId[] = "e90a3c7b5d1f4e28a6b4c2d0f8e1a375";

inline constexpr uint32_t kRenameCommand = 31000;
inline constexpr uint32_t kCollectCommand =
    32000;  // collects the selection again, then signals the event given with it

class QVBatchRename final : public Quorvane::SDK::IPluginInterface {
public:
    QVBatchRename();
    /// Waits a bounded time for a GUI thread that Shutdown did not end. Afterwards no thread of ours begins a call of
    /// the host, whatever it is at; only a call that is under way is still the host's to end.
    ~QVBatchRename();
    QVBatchRename(const QVBatchRename&) = delete;
    QVBatchRename& operator=(const QVBatchRename&) = delete;

    /// Adds a menu of its own with the one command.
    uint32_t Init(Quorvane::SDK::IHostServices* services) override;
    uint32_t GetType() override;
    /// Loads the profiles as well.
    uint32_t SetHost(Quorvane::SDK::IHostServices* services) override;
    const char* GetId() override { return kExtensionId; }
    /// False: the window's own loop, on its own thread, has its messages translated without the host.
    bool PreTranslateMessage(MSG* message, uint32_t flags) override;
    uint32_t OnCommand(uint32_t id, uintptr_t first, uintptr_t second) override;
    uint32_t OnCustomCommand(Quorvane::SDK::ICustomCommandCall*) override { return 0; }
    uint32_t OnElevatedRequest(uint32_t, Quorvane::SDK::IRequestMessage*) override { return 0; }
    /// Closes the window, ends the thread, and lets go of the host's services object; nothing may be asked of the
    /// extension afterwards but its deletion. A thread that does not end in time begins no further call of the host
    /// when this returns. Called on the window's thread, which cannot wait for itself, it leaves all that to a later
    /// call.
    uint32_t Shutdown() override;

private:
    uint32_t OpenWindow();
    void CollectRows();
    /// Tells the window's thread to end, whatever it is at.
    void AskToClose();

    Quorvane::SDK::IHostServices* m_services = nullptr;
    std::shared_ptr<ExtensionState> m_state;
    std::unique_ptr<BatchRenameGUIThread> m_guiThread;
};

}  // namespace BatchRename
