// gui_thread.h - the thread on which the Batch Rename window lives.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "batchrename/extension_state.h"
#include "batchrename/window/main_frame.h"
#include "win32/handle.h"
#include "win32/windows.h"

namespace BatchRename {

/// Sees every message of a loop before it is dispatched.
class IMessageFilter {
public:
    /// True when the message is eaten.
    virtual bool OnThreadMessage(MSG& message) = 0;

protected:
    ~IMessageFilter() = default;
};

class MessageLoop {
public:
    void AddFilter(IMessageFilter& filter) { m_filters.push_back(&filter); }
    /// Until the quit message.
    void Run();

private:
    std::vector<IMessageFilter*> m_filters;
};

/// The loops of this module by thread id.
class MessageLoopTable {
public:
    void Add(DWORD thread, MessageLoop& loop);
    void Remove(DWORD thread);

private:
    std::mutex m_lock;
    std::map<DWORD, MessageLoop*> m_loops;
};

MessageLoopTable& ModuleMessageLoops();

/// Carries nothing: look for rows that the host's thread has collected.
inline constexpr UINT kOwnerMessage = 32810;

/// The owner of the thread, on the host's side. The thread holds on to the module until its very end, so that it never
/// runs in unloaded code, even where nobody waits for it.
class BatchRenameGUIThread {
public:
    /// Starts the thread; one that the system does not give counts as ended.
    explicit BatchRenameGUIThread(std::shared_ptr<ExtensionState> state);

    DWORD Id() const { return m_id; }
    /// False when it has not ended within so many milliseconds.
    bool Wait(DWORD milliseconds) const;

private:
    Win32::KernelHandle m_thread;
    DWORD m_id = 0;
};

}  // namespace BatchRename
