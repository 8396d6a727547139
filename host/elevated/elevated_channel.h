// elevated_channel.h - the host's service 3250: starts the elevated second process and sends it an extension's
// requests.
#pragma once

#include <string>
#include <vector>

#include "host/app/output.h"
#include "host/elevated/elevated_protocol.h"
#include "host/elevated/message_pipe.h"
#include "sdk/services.h"

namespace QVHost {

/// How a second, elevated process is started: this program, and the options it takes apart from the pipe.
struct ElevatedLaunch {
    std::wstring program;
    std::vector<std::wstring> options;
};

/// Every request is logged with its answer, and with what the second process has logged meanwhile. No call waits
/// without an end: a process that ends is noticed at once, one that hangs after seconds, and one that says that it is
/// at work is waited for five minutes (1460, a timeout; what it has begun it may still finish).
class ElevatedChannel final : public Quorvane::SDK::IElevatedChannel {
public:
    ElevatedChannel(Log& log, ElevatedLaunch launch, uint32_t extension)
        : m_log(log), m_launch(std::move(launch)), m_extension(extension) {}
    ElevatedChannel(const ElevatedChannel&) = delete;
    ElevatedChannel& operator=(const ElevatedChannel&) = delete;
    ~ElevatedChannel() { Close(); }

    bool Connect() override;
    Quorvane::SDK::IRequestWriter* CreateWriter() override;
    uint32_t Send(uint32_t requestId, const void* data, uint32_t size) override;
    void Close() override;

private:
    uint32_t Start(const std::wstring& pipeName);
    uint32_t Write(std::span<const uint8_t> request);
    uint32_t AwaitReply(Reply& reply);
    void LogLine(const std::wstring& text, uint32_t error);

    Log& m_log;
    ElevatedLaunch m_launch;
    uint32_t m_extension;
    bool m_isConnected = false;
    MessagePipe m_pipe;
    Win32::KernelHandle m_process;
    Shelf<RequestWriter> m_writers;
};

/// `arguments` as one command line, quoted so that the started program splits it into the same words again.
std::wstring QuoteArguments(const std::vector<std::wstring>& arguments);

}  // namespace QVHost
