// message_loop.h - a thread's message loop with filters, and the module's table of such loops.
#pragma once

#include <map>
#include <mutex>
#include <vector>

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

}  // namespace BatchRename
