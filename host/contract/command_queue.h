// command_queue.h - commands that an extension asks for from a thread of its own. They are carried out on the host's
// thread, as every command is.
#pragma once

#include <mutex>
#include <vector>

#include "win32/handle.h"

namespace QVHost {

struct QueuedCommand {
    uint32_t extension = 0;
    uint32_t id = 0;
    uintptr_t value = 0;  // the second of the command's two further values
};

class CommandQueue {
public:
    void Put(const QueuedCommand& command);
    /// All of them, in order.
    std::vector<QueuedCommand> Take();
    /// Set when there is something to take.
    HANDLE Event() const { return m_event.Get(); }

private:
    std::mutex m_mutex;
    std::vector<QueuedCommand> m_commands;
    Win32::KernelHandle m_event{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
};

}  // namespace QVHost
