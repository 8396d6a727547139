#include "host/contract/command_queue.h"

#include <utility>

namespace QVHost {

void CommandQueue::Put(const QueuedCommand& command) {
    {
        const std::lock_guard lock(m_mutex);
        m_commands.push_back(command);
    }
    SetEvent(m_event.Get());
}

std::vector<QueuedCommand> CommandQueue::Take() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_commands, {});
}

}  // namespace QVHost
