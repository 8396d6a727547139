#include <sstream>
#include <thread>

#include "host/app/host_error.h"
#include "host/app/session.h"
#include "host/app/subcommands.h"
#include "host/contract/host_boundary.h"
#include "host/elevated/elevated_protocol.h"
#include "host/elevated/message_pipe.h"
#include "win32/file_name.h"
#include "win32/path.h"

namespace QVHost {
namespace {

constexpr DWORD kPortionMilliseconds = 30000;
constexpr DWORD kIdleMilliseconds =
    5 * 60 * 1000;                     // the other process ends the pipe when it is done; this one may hang
constexpr DWORD kBetweenSigns = 3000;  // milliseconds

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

/// While this lives, the other process hears that this one is at work. Nobody else may use the pipe meanwhile.
class SignsOfWork {
public:
    explicit SignsOfWork(MessagePipe& pipe) : m_thread([this, &pipe] { Give(pipe); }) {}
    SignsOfWork(const SignsOfWork&) = delete;
    SignsOfWork& operator=(const SignsOfWork&) = delete;
    ~SignsOfWork() { SetEvent(m_isDone.Get()); }

private:
    void Give(MessagePipe& pipe) {
        while (WaitForSingleObject(m_isDone.Get(), kBetweenSigns) == WAIT_TIMEOUT)
            GuardedCall([&] { pipe.Write(EncodeAtWork(), nullptr, kMessageMilliseconds); });
    }

    Win32::KernelHandle m_isDone{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::jthread m_thread;  // last: it uses everything above
};

/// The second process has rights that the writer of its command line may lack.
/// @throws UsageError for a library from another folder than the program's, before anything is opened
void CheckLibrary(const HostOptions& options, const HostEnvironment& environment) {
    const std::wstring library = Win32::FullPath(LibraryPath(options, environment));
    const bool isBeside =
        EqualIgnoringCase(Win32::FolderOf(library), Win32::FolderOf(Win32::FullPath(environment.program)));
    // A stream of a file is no file beside it.
    if (!isBeside || !Win32::IsFileName(Win32::FileNameOf(library)))
        throw UsageError(L"elevated-server loads only a library beside this program, not " + library);
}

/// One extension and the pipe through which its requests come.
class Server {
public:
    /// @throws UsageError, HostError when the extension cannot be started
    Server(const HostOptions& options, HostEnvironment& environment, MessagePipe& pipe)
        : m_pipe(pipe), m_index(options.extension), m_session(options, environment, m_output) {
        m_extension = m_session.StartExtension(m_index).Commands();
        if (!m_extension) throw UsageError(L"this extension handles no requests");
    }

    /// 0 when the other side has closed the pipe, else a Windows error code.
    uint32_t Serve() {
        uint32_t error = m_pipe.Write(EncodeReply({ERROR_SUCCESS, {}}), nullptr, kMessageMilliseconds);
        while (error == ERROR_SUCCESS) {
            Bytes bytes;
            error = ReadRequest(bytes);
            if (error == ERROR_BROKEN_PIPE) return ERROR_SUCCESS;
            if (error != ERROR_SUCCESS && error != ERROR_INVALID_PARAMETER) return error;
            error = m_pipe.Write(EncodeReply(Answer(error, bytes)), nullptr, kMessageMilliseconds);
        }
        return error;
    }

private:
    /// 87 for what is no request; another may follow.
    uint32_t ReadRequest(Bytes& bytes) {
        uint32_t error = m_pipe.Read(bytes, kLargestMessage, nullptr, kIdleMilliseconds);
        const std::optional<uint32_t> size = SizeOfRequest(bytes);
        Bytes portion = bytes;
        while (error == ERROR_SUCCESS && size && bytes.size() < *size) {
            // Every portion but the last is full; else the other side would be waited for while it waits.
            if (portion.size() != kLargestMessage) return ERROR_INVALID_PARAMETER;
            error = m_pipe.Read(portion, kLargestMessage, nullptr, kPortionMilliseconds);
            bytes.insert(bytes.end(), portion.begin(), portion.end());
        }
        return error;
    }

    Reply Answer(uint32_t error, const Bytes& bytes) {
        const std::optional<Request> request = error == ERROR_SUCCESS ? DecodeRequest(bytes) : std::nullopt;
        const bool isOurs = request && request->extension == m_index;
        const uint32_t result = isOurs ? Perform(*request) : ERROR_INVALID_PARAMETER;
        const std::wstring name = request ? L"request " + std::to_wstring(request->id) : L"no request";
        // Before what the extension has logged, of which much may be left out.
        std::wstring log = name + L", " + std::to_wstring(bytes.size()) + L" bytes: " +
                           (result == ERROR_SUCCESS ? L"done" : DescribeError(result)) + L"\n";
        return {result, log + TakeLines()};
    }

    uint32_t Perform(const Request& request) {
        const SignsOfWork signs(m_pipe);
        RequestMessage message(request.payload);
        return m_extension->OnElevatedRequest(request.id, &message) != 0 ? message.Result() : ERROR_INVALID_FUNCTION;
    }

    /// What was logged and noted since the last time.
    std::wstring TakeLines() {
        m_output.Flush();
        return Wide(std::exchange(m_lines, std::ostringstream()).str());
    }

    MessagePipe& m_pipe;
    uint32_t m_index;
    std::ostringstream m_lines;
    Output m_output{m_lines, m_lines, false};
    Session m_session;
    Quorvane::SDK::IPluginInterface* m_extension = nullptr;
};

}  // namespace

int RunElevatedServer(const HostOptions& options, HostEnvironment& environment) {
    CheckLibrary(options, environment);
    MessagePipe pipe;
    uint32_t error = pipe.Open(options.pipe);
    // A person who agrees to this program's elevation does not agree to serve whatever else knows its command line.
    if (error == ERROR_SUCCESS && !pipe.IsMadeByOwnHost()) error = ERROR_ACCESS_DENIED;
    if (error == ERROR_SUCCESS) {
        try {
            error = Server(options, environment, pipe).Serve();
        } catch (const std::exception& failure) {
            // Where the other process still waits to hear that this one is ready, it gets the reason.
            const std::wstring reason = Wide(failure.what());
            pipe.Write(EncodeReply({ERROR_GEN_FAILURE, reason}), nullptr, kMessageMilliseconds);
            throw;
        }
    }
    if (error != ERROR_SUCCESS) throw HostError(L"the pipe cannot be served: " + DescribeError(error));
    return ExitStatus::Done;
}

}  // namespace QVHost
