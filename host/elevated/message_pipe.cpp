#include "host/elevated/message_pipe.h"

#include <algorithm>
#include <random>

#include <sddl.h>

namespace QVHost {
namespace {

constexpr DWORD kBufferSize = 64 * 1024;  // bytes
constexpr DWORD kOpenMilliseconds = 10000;
constexpr std::wstring_view kPipeNameStart = LR"(\\.\pipe\qvhost-)";
constexpr std::wstring_view kDigits = L"0123456789abcdef";
constexpr size_t kPipeNameLength = kPipeNameStart.size() + 32;

/// A security descriptor that admits the user of this process, administrators and nobody else; empty when it cannot be
/// made.
Win32::LocalMemory ThisUserAndAdministrators() {
    HANDLE rawToken = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &rawToken)) return {};
    const Win32::KernelHandle token(rawToken);
    DWORD size = 0;
    GetTokenInformation(token.Get(), TokenUser, nullptr, 0, &size);
    // 8-byte elements: the record begins with a pointer.
    std::vector<uint64_t> user((size + sizeof(uint64_t) - 1) / sizeof(uint64_t));
    if (user.empty() || !GetTokenInformation(token.Get(), TokenUser, user.data(), size, &size)) return {};
    wchar_t* rawSid = nullptr;
    if (!ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid, &rawSid)) return {};
    const Win32::LocalMemory sid(rawSid);
    // A protected list: everything for the two.
    const std::wstring list = L"D:P(A;;GA;;;" + std::wstring(rawSid) + L")(A;;GA;;;BA)";
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(list.c_str(), SDDL_REVISION_1, &descriptor, nullptr))
        return {};
    return Win32::LocalMemory(descriptor);
}

OVERLAPPED OperationWith(const Win32::KernelHandle& event) {
    OVERLAPPED operation = {};
    operation.hEvent = event.Get();
    return operation;
}

}  // namespace

uint32_t MessagePipe::Create(const std::wstring& name) {
    const Win32::LocalMemory descriptor = ThisUserAndAdministrators();
    if (!descriptor) return ERROR_ACCESS_DENIED;
    SECURITY_ATTRIBUTES security = {sizeof(security), descriptor.Get(), FALSE};
    m_event.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    m_pipe.Reset(CreateNamedPipeW(name.c_str(),
                                  PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                                  PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1,
                                  kBufferSize, kBufferSize, 0, &security));
    return m_event && m_pipe ? ERROR_SUCCESS : GetLastError();
}

uint32_t MessagePipe::Open(const std::wstring& name) {
    m_event.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!m_event) return GetLastError();
    if (!WaitNamedPipeW(name.c_str(), kOpenMilliseconds)) return GetLastError();
    // Identification only: the other end learns who we are and cannot act in our name.
    m_pipe.Reset(CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                             FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr));
    DWORD mode = PIPE_READMODE_MESSAGE;
    if (!m_pipe || !SetNamedPipeHandleState(m_pipe.Get(), &mode, nullptr, nullptr)) return GetLastError();
    return ERROR_SUCCESS;
}

uint32_t MessagePipe::WaitForClient(HANDLE process, DWORD milliseconds) {
    OVERLAPPED operation = OperationWith(m_event);
    if (ConnectNamedPipe(m_pipe.Get(), &operation)) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    if (error == ERROR_PIPE_CONNECTED) return ERROR_SUCCESS;
    if (error != ERROR_IO_PENDING) return error;
    DWORD transferred = 0;
    return Await(operation, process, milliseconds, transferred);
}

DWORD MessagePipe::ClientProcessId() const {
    ULONG id = 0;
    return GetNamedPipeClientProcessId(m_pipe.Get(), &id) ? id : 0;
}

DWORD MessagePipe::ServerProcessId() const {
    ULONG id = 0;
    return GetNamedPipeServerProcessId(m_pipe.Get(), &id) ? id : 0;
}

uint32_t MessagePipe::Write(std::span<const uint8_t> message, HANDLE process, DWORD milliseconds) {
    OVERLAPPED operation = OperationWith(m_event);
    DWORD written = 0;
    if (!WriteFile(m_pipe.Get(), message.data(), static_cast<DWORD>(message.size()), nullptr, &operation) &&
        GetLastError() != ERROR_IO_PENDING)
        return GetLastError();
    const uint32_t error = Await(operation, process, milliseconds, written);
    if (error != ERROR_SUCCESS) return error;
    return written == message.size() ? ERROR_SUCCESS : ERROR_WRITE_FAULT;
}

uint32_t MessagePipe::Read(Bytes& message, size_t limit, HANDLE process, DWORD milliseconds) {
    message.clear();
    bool isTooLong = false;
    Bytes block(kBufferSize);
    for (;;) {
        OVERLAPPED operation = OperationWith(m_event);
        DWORD read = 0;
        uint32_t error = ERROR_SUCCESS;
        if (!ReadFile(m_pipe.Get(), block.data(), static_cast<DWORD>(block.size()), nullptr, &operation)) {
            error = GetLastError();
            if (error == ERROR_IO_PENDING || error == ERROR_MORE_DATA) error = ERROR_SUCCESS;
        }
        if (error == ERROR_SUCCESS) error = Await(operation, process, milliseconds, read);
        if (error != ERROR_SUCCESS && error != ERROR_MORE_DATA) return error;
        isTooLong = isTooLong || message.size() + read > limit;
        if (!isTooLong) message.insert(message.end(), block.begin(), block.begin() + static_cast<ptrdiff_t>(read));
        if (error == ERROR_SUCCESS) return isTooLong ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
    }
}

uint32_t MessagePipe::Await(OVERLAPPED& operation, HANDLE process, DWORD milliseconds, DWORD& transferred) {
    // The operation comes first: what the other process sent before it ended still counts.
    const HANDLE waited[] = {operation.hEvent, process};
    const DWORD outcome = WaitForMultipleObjects(process ? 2 : 1, waited, FALSE, milliseconds);
    if (outcome != WAIT_OBJECT_0) CancelIoEx(m_pipe.Get(), &operation);
    // Also after a cancel the operation's record must live until the system is done with it.
    const bool isDone = GetOverlappedResult(m_pipe.Get(), &operation, &transferred, TRUE);
    if (isDone) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    if (outcome == WAIT_TIMEOUT) return ERROR_TIMEOUT;
    return outcome == WAIT_OBJECT_0 ? error : ERROR_BROKEN_PIPE;
}

std::wstring RandomPipeName() {
    std::random_device random;  // the system's generator, fit for secrets
    std::wstring name(kPipeNameStart);
    while (name.size() < kPipeNameLength) name += kDigits[random() % kDigits.size()];
    return name;
}

bool IsRandomPipeName(std::wstring_view name) {
    return name.size() == kPipeNameLength && name.starts_with(kPipeNameStart) &&
           name.find_first_not_of(kDigits, kPipeNameStart.size()) == std::wstring_view::npos;
}

}  // namespace QVHost
