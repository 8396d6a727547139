// message_pipe.h - one end of a named pipe that carries whole messages. No call waits longer than it says: a process
// that has died on the other side, or never came, ends the wait.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "host/elevated/elevated_protocol.h"
#include "win32/handle.h"

namespace QVHost {

inline constexpr DWORD kMessageMilliseconds = 30000;  // that the other end has to take a message

class MessagePipe {
public:
    MessagePipe() = default;

    /// The end that makes the pipe: a new one (never somebody else's of that name) for one client on this machine that
    /// runs as the same user or as an administrator, whose account a person may choose at the system's prompt. Windows
    /// error code, 0 for success; so below.
    uint32_t Create(const std::wstring& name);
    /// The end that comes to a pipe made by the other.
    uint32_t Open(const std::wstring& name);

    /// Waits for the client. Gives up after `milliseconds` (1460, a timeout) or when `process` has ended (109).
    uint32_t WaitForClient(HANDLE process, DWORD milliseconds);
    /// The id of the process at the other end, 0 when the system does not say: seen from the end that made the pipe,
    /// and from the other one.
    DWORD ClientProcessId() const;
    DWORD ServerProcessId() const;
    /// True when this program made the pipe, at this desktop, as this user or as the one who is logged on here: where
    /// that one lacks the rights, the system's prompt takes an administrator's account for this process.
    bool IsMadeByOwnHost() const;

    uint32_t Write(std::span<const uint8_t> message, HANDLE process, DWORD milliseconds);
    /// Reads one message. A message of more than `limit` bytes is taken from the pipe to its end and refused with 87,
    /// so that the next one can be read. `process` may be null: then only the pipe's end ends the wait, and the time,
    /// which counts anew for each part of a long message.
    uint32_t Read(Bytes& message, size_t limit, HANDLE process, DWORD milliseconds);

private:
    uint32_t Await(OVERLAPPED& operation, HANDLE process, DWORD milliseconds, DWORD& transferred);

    Win32::FileHandle m_pipe;
    Win32::KernelHandle m_event;
};

/// Full path of the program that runs as this process; "" when the system does not say.
std::wstring OwnImage();

/// A pipe name that nobody can guess: \\.\pipe\qvhost- and 32 hexadecimal digits.
std::wstring RandomPipeName();
/// True for such a name.
bool IsRandomPipeName(std::wstring_view name);

}  // namespace QVHost
