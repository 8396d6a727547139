#include "host/elevated/message_pipe.h"

#include <algorithm>
#include <array>
#include <memory>
#include <random>

#include "win32/files.h"
#include "win32/module.h"
#include "win32/text.h"

#include <aclapi.h>
#include <sddl.h>
#include <wtsapi32.h>

namespace QVHost {
namespace {

constexpr DWORD kBufferSize = 64 * 1024;  // bytes
constexpr DWORD kOpenMilliseconds = 10000;
constexpr std::wstring_view kPipeNameStart = LR"(\\.\pipe\qvhost-)";
constexpr std::wstring_view kDigits = L"0123456789abcdef";
constexpr size_t kPipeNameLength = kPipeNameStart.size() + 32;

constexpr DWORD kLongestPath = 32768;  // units

std::wstring TextOf(PSID user) {
    wchar_t* raw = nullptr;
    if (!ConvertSidToStringSidW(user, &raw)) return {};
    const Win32::LocalMemory text(raw);
    return raw;
}

/// The user of this process, "S-1-..."; "" when the system does not say.
std::wstring OwnUser() {
    HANDLE rawToken = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &rawToken)) return {};
    const Win32::KernelHandle token(rawToken);
    DWORD size = 0;
    GetTokenInformation(token.Get(), TokenUser, nullptr, 0, &size);
    // 8-byte elements: the record begins with a pointer.
    std::vector<uint64_t> user((size + sizeof(uint64_t) - 1) / sizeof(uint64_t));
    if (user.empty() || !GetTokenInformation(token.Get(), TokenUser, user.data(), size, &size)) return {};
    return TextOf(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid);
}

/// A security descriptor that belongs to the user of this process and admits that user, administrators and nobody else;
/// empty when it cannot be made.
Win32::LocalMemory ThisUserAndAdministrators() {
    const std::wstring user = OwnUser();
    // Named as the owner, the user can be told by the other end. A protected list: everything for the two.
    const std::wstring text = L"O:" + user + L"D:P(A;;GA;;;" + user + L")(A;;GA;;;BA)";
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (user.empty() ||
        !ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &descriptor, nullptr))
        return {};
    return Win32::LocalMemory(descriptor);
}

/// Lets an elevated process look at one of another user, where elevation meant another account. Best effort: without it
/// the look fails.
void AllowLookingAtOtherUsers() {
    HANDLE raw = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &raw)) return;
    const Win32::KernelHandle token(raw);
    TOKEN_PRIVILEGES privileges = {1, {{{}, SE_PRIVILEGE_ENABLED}}};
    if (LookupPrivilegeValueW(nullptr, SE_DEBUG_NAME, &privileges.Privileges[0].Luid))
        AdjustTokenPrivileges(token.Get(), FALSE, &privileges, 0, nullptr, nullptr);
}

std::wstring ImageOf(DWORD processId) {
    Win32::KernelHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (!process && GetLastError() == ERROR_ACCESS_DENIED) {
        AllowLookingAtOtherUsers();
        process.Reset(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    }
    std::wstring path(kLongestPath, L'\0');
    DWORD length = kLongestPath;
    if (!process || !QueryFullProcessImageNameW(process.Get(), 0, path.data(), &length)) return {};
    path.resize(length);
    return path;
}

/// A text that the system has of this process's session, in lower or upper case as it likes. The library is loaded for
/// it: it is no other command's affair, and each start would wait for it.
std::wstring TextOfSession(WTS_INFO_CLASS what) {
    // From the system's folder: as an import, a file of that name beside this program would be taken.
    const Win32::Module library = Win32::LoadSystemModule(L"wtsapi32.dll");
    const auto query =
        Win32::FindFunction<decltype(&WTSQuerySessionInformationW)>(library, "WTSQuerySessionInformationW");
    const auto release = Win32::FindFunction<decltype(&WTSFreeMemory)>(library, "WTSFreeMemory");
    wchar_t* text = nullptr;
    DWORD size = 0;
    if (!query || !release || !query(WTS_CURRENT_SERVER_HANDLE, WTS_CURRENT_SESSION, what, &text, &size)) return {};
    const std::unique_ptr<wchar_t, decltype(&WTSFreeMemory)> owner(text, release);
    return text;
}

/// True for the user who is logged on at this desktop.
bool IsUserOfSession(PSID user) {
    std::array<wchar_t, 256> name = {};  // longer than the system lets accounts and domains be
    std::array<wchar_t, 256> domain = {};
    auto nameSize = static_cast<DWORD>(name.size());
    auto domainSize = static_cast<DWORD>(domain.size());
    SID_NAME_USE use = {};
    return LookupAccountSidW(nullptr, user, name.data(), &nameSize, domain.data(), &domainSize, &use) &&
           Win32::EqualIgnoringCase(name.data(), TextOfSession(WTSUserName)) &&
           Win32::EqualIgnoringCase(domain.data(), TextOfSession(WTSDomainName));
}

bool IsInOwnSession(DWORD processId) {
    DWORD own = 0;
    DWORD other = 0;
    return ProcessIdToSessionId(GetCurrentProcessId(), &own) && ProcessIdToSessionId(processId, &other) && own == other;
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

bool MessagePipe::IsMadeByOwnHost() const {
    const DWORD maker = ServerProcessId();
    if (maker == 0 || !IsInOwnSession(maker) || !Win32::IsSameFile(ImageOf(maker), OwnImage())) return false;
    PSID user = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetSecurityInfo(m_pipe.Get(), SE_KERNEL_OBJECT, OWNER_SECURITY_INFORMATION, &user, nullptr, nullptr, nullptr,
                        &descriptor) != ERROR_SUCCESS)
        return false;
    const Win32::LocalMemory owner(descriptor);
    const std::wstring own = OwnUser();
    return user && ((!own.empty() && TextOf(user) == own) || IsUserOfSession(user));
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

std::wstring OwnImage() {
    return ImageOf(GetCurrentProcessId());
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
