#include "batchrename/message_loop.h"

#include <algorithm>

#include "sdk/boundary.h"

namespace BatchRename {

void MessageLoop::Run() {
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        // Guarded like a window's procedure: what a key or a message asked for may fail, the loop goes on.
        const bool isEaten = Quorvane::SDK::AtBoundary(true, [&] {
            return std::ranges::any_of(m_filters,
                                       [&](IMessageFilter* filter) { return filter->OnThreadMessage(message); });
        });
        if (isEaten) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void MessageLoopTable::Add(DWORD thread, MessageLoop& loop) {
    const std::lock_guard lock(m_lock);
    m_loops[thread] = &loop;
}

void MessageLoopTable::Remove(DWORD thread) {
    const std::lock_guard lock(m_lock);
    m_loops.erase(thread);
}

MessageLoopTable& ModuleMessageLoops() {
    static MessageLoopTable table;
    return table;
}

}  // namespace BatchRename
