// elevated_channel.h - the host's service 3250: starts the elevated second process and sends it an extension's
// requests.
#pragma once

#include <string>
#include <vector>

#include "host/app/output.h"
#include "host/elevated/message_pipe.h"
#include "host/elevated/request_fields.h"
#include "sdk/services.h"

namespace QVHost {

/// How a second, elevated process is started: this program, and the options it must share with the first.
struct ElevatedLaunch {
    std::wstring program;
    std::vector<std::wstring> options;
};

class ElevatedChannel final : public Quorvane::SDK::IElevatedChannel {
public:
    ElevatedChannel(Output& output, ElevatedLaunch launch, uint32_t extension)
        : m_output(output), m_launch(std::move(launch)), m_extension(extension) {}
    ElevatedChannel(const ElevatedChannel&) = delete;
    ElevatedChannel& operator=(const ElevatedChannel&) = delete;
    ~ElevatedChannel() { Close(); }

    bool Connect() override;
    Quorvane::SDK::IRequestWriter* CreateWriter() override;
    uint32_t Send(uint32_t requestId, const void* data, uint32_t size) override;
    void Close() override;

private:
    uint32_t Start(const std::wstring& pipeName);

    Output& m_output;
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
