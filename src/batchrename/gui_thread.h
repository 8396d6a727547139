// gui_thread.h - the thread on which the Batch Rename window lives.
#pragma once

#include <memory>

#include "batchrename/extension_state.h"
#include "batchrename/message_loop.h"
#include "batchrename/window/main_frame.h"
#include "win32/handle.h"

namespace BatchRename {

/// Carries nothing: look for rows that the host's thread has collected.
inline constexpr UINT kOwnerMessage = 32810;

/// The owner of the thread, on the host's side. The thread holds on to the module until its very end, so that it never
/// runs in unloaded code, even where nobody waits for it.
class BatchRenameGUIThread {
public:
    /// Starts the thread; one that the system does not give counts as ended.
    explicit BatchRenameGUIThread(std::shared_ptr<ExtensionState> state);

    DWORD Id() const { return m_id; }
    bool HasEnded() const { return Wait(0); }
    /// False when it has not ended within so many milliseconds.
    bool Wait(DWORD milliseconds) const;

private:
    Win32::KernelHandle m_thread;
    DWORD m_id = 0;
};

}  // namespace BatchRename
