#include "host/app/subcommands.h"

#include "host/contract/host_boundary.h"
#include "host/elevated/elevated_protocol.h"
#include "host/elevated/message_pipe.h"
#include "host/elevated/process_image.h"
#include "win32/files.h"

namespace QVHost {
namespace {

constexpr DWORD kWriteMilliseconds = 30000;

/// A request on its way through the extension, which replies by it.
class RequestMessage final : public Quorvane::SDK::IRequestMessage {
public:
    explicit RequestMessage(std::span<const uint8_t> payload) : m_payload(payload) {}

    const void* GetData() override { return m_payload.data(); }
    uint32_t GetSize() override { return static_cast<uint32_t>(m_payload.size()); }
    void Reply(uint32_t, uint32_t result, uintptr_t, uintptr_t) override { m_result = result; }
    Quorvane::SDK::IRequestReader* CreateReader() override {
        return Guarded<Quorvane::SDK::IRequestReader*>(
            nullptr, [&] { return m_readers.Keep(std::make_shared<RequestReader>(m_readers)); });
    }

    /// An extension that handles a request without a reply has done it.
    uint32_t Result() const { return m_result; }

private:
    std::span<const uint8_t> m_payload;
    uint32_t m_result = ERROR_SUCCESS;
    Shelf<RequestReader> m_readers;
};

bool IsThisProgram(DWORD processId) {
    return processId != 0 && Win32::IsSameFile(ImageOf(processId), OwnImage());
}

uint32_t Perform(std::span<const uint8_t> message, uint32_t extensionIndex,
                 Quorvane::SDK::IPluginInterface& extension) {
    const std::optional<Request> request = DecodeRequest(message);
    if (!request || request->extension != extensionIndex) return ERROR_INVALID_PARAMETER;
    RequestMessage arrived(request->payload);
    return extension.OnElevatedRequest(request->id, &arrived) != 0 ? arrived.Result() : ERROR_INVALID_FUNCTION;
}

}  // namespace

uint32_t ServeElevatedRequests(const std::wstring& pipeName, uint32_t extensionIndex,
                               Quorvane::SDK::IPluginInterface& extension) {
    if (!IsRandomPipeName(pipeName)) return ERROR_INVALID_PARAMETER;
    MessagePipe pipe;
    uint32_t error = pipe.Open(pipeName);
    // A person who agrees to this program's elevation does not agree to serve whatever else knows its command line.
    if (error == ERROR_SUCCESS && !IsThisProgram(pipe.ServerProcessId())) error = ERROR_ACCESS_DENIED;
    while (error == ERROR_SUCCESS) {
        Bytes message;
        error = pipe.Read(message, kRequestHeaderSize + kLargestPayload, nullptr, INFINITE);
        if (error == ERROR_BROKEN_PIPE) return ERROR_SUCCESS;
        if (error != ERROR_SUCCESS && error != ERROR_INVALID_PARAMETER) return error;
        const uint32_t result = error == ERROR_SUCCESS ? Perform(message, extensionIndex, extension) : error;
        error = pipe.Write(EncodeReply(result), nullptr, kWriteMilliseconds);
    }
    return error;
}

}  // namespace QVHost
