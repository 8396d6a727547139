#include "host/elevated/elevated_channel.h"

#include <algorithm>

#include <shellapi.h>

#include "host/app/host_text.h"
#include "host/app/unix_paths.h"
#include "host/contract/host_boundary.h"
#include "host/elevated/elevated_protocol.h"

namespace QVHost {
namespace {

constexpr DWORD kConnectMilliseconds = 30000;  // a person answers the system's prompt before this begins
constexpr DWORD kSilenceMilliseconds = 15000;  // several times the distance of two signs of work
constexpr ULONGLONG kWorkMilliseconds = 5 * 60 * 1000;
constexpr DWORD kEndMilliseconds = 2000;  // it ends with its pipe, unless it hangs

/// Starts the program through the system's elevation prompt.
uint32_t StartWithPrompt(const std::wstring& program, const std::wstring& arguments, Win32::KernelHandle& process) {
    SHELLEXECUTEINFOW start = {};
    start.cbSize = sizeof(start);
    start.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
    start.lpVerb = L"runas";
    start.lpFile = program.c_str();
    start.lpParameters = arguments.c_str();
    start.nShow = SW_HIDE;
    if (!ShellExecuteExW(&start)) return GetLastError();
    process.Reset(start.hProcess);
    return process ? ERROR_SUCCESS : ERROR_GEN_FAILURE;
}

uint32_t StartDirectly(const std::wstring& program, const std::wstring& arguments, Win32::KernelHandle& process) {
    std::wstring commandLine = QuoteArguments({program}) + L" " + arguments;
    STARTUPINFOW start = {};
    start.cb = sizeof(start);
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                        nullptr, &start, &started))
        return GetLastError();
    const Win32::KernelHandle thread(started.hThread);
    process.Reset(started.hProcess);
    return ERROR_SUCCESS;
}

}  // namespace

std::wstring QuoteArguments(const std::vector<std::wstring>& arguments) {
    std::wstring line;
    for (const std::wstring& argument : arguments) {
        if (!line.empty()) line += L' ';
        line += L'"';
        size_t backslashes = 0;
        for (const wchar_t unit : argument) {
            // Backslashes mean themselves, except in front of a quotation mark.
            if (unit == L'"') line.append(backslashes + 1, L'\\');
            backslashes = unit == L'\\' ? backslashes + 1 : 0;
            line += unit;
        }
        line.append(backslashes, L'\\');
        line += L'"';
    }
    return line;
}

bool ElevatedChannel::Connect() {
    return Guarded(false, [&] {
        if (m_isConnected) return true;
        m_pipe = MessagePipe();
        const std::wstring name = RandomPipeName();
        uint32_t error = m_pipe.Create(name);
        if (error == ERROR_SUCCESS) error = Start(name);
        if (error == ERROR_SUCCESS) error = m_pipe.WaitForClient(m_process.Get(), kConnectMilliseconds);
        // Another of this user's programs may have guessed the name: only the process started here is spoken to.
        const DWORD client = error == ERROR_SUCCESS ? m_pipe.ClientProcessId() : 0;
        if (error == ERROR_SUCCESS && (client == 0 || client != GetProcessId(m_process.Get())))
            error = ERROR_ACCESS_DENIED;
        Reply ready;
        if (error == ERROR_SUCCESS) error = AwaitReply(ready);
        if (error == ERROR_SUCCESS) error = ready.result;
        m_isConnected = error == ERROR_SUCCESS;
        if (!m_isConnected) LogLine(L"no connection to an elevated process: " + DescribeError(error), error);
        return m_isConnected;
    });
}

uint32_t ElevatedChannel::Start(const std::wstring& pipeName) {
    std::vector<std::wstring> words = {L"elevated-server", L"--pipe", pipeName, L"--extension",
                                       std::to_wstring(m_extension)};
    words.insert(words.end(), m_launch.options.begin(), m_launch.options.end());
    const std::wstring arguments = QuoteArguments(words);
    // Wine knows no elevation: there its shell would only be a slower way to the same start.
    if (!RunsUnderWine()) {
        const uint32_t error = StartWithPrompt(m_launch.program, arguments, m_process);
        // A person's No is an answer, not a failure to get round.
        if (error == ERROR_SUCCESS || error == ERROR_CANCELLED) return error;
    }
    return StartDirectly(m_launch.program, arguments, m_process);
}

Quorvane::SDK::IRequestWriter* ElevatedChannel::CreateWriter() {
    return Guarded<Quorvane::SDK::IRequestWriter*>(
        nullptr, [&] { return m_writers.Keep(std::make_shared<RequestWriter>(m_writers)); });
}

uint32_t ElevatedChannel::Send(uint32_t requestId, const void* data, uint32_t size) {
    return Guarded<uint32_t>(ERROR_OUTOFMEMORY, [&]() -> uint32_t {
        if (!m_isConnected) return ERROR_PIPE_NOT_CONNECTED;
        if ((!data && size > 0) || size > kLargestPayload) return ERROR_INVALID_PARAMETER;
        Reply reply;
        uint32_t error = Write(EncodeRequest({requestId, m_extension, {static_cast<const uint8_t*>(data), size}}));
        if (error == ERROR_SUCCESS) error = AwaitReply(reply);
        if (error == ERROR_SUCCESS) return reply.result;
        LogLine(L"request " + std::to_wstring(requestId) + L" has no answer: " + DescribeError(error), error);
        // A late reply must not be taken for the answer to the next request.
        Close();
        return error;
    });
}

/// In portions that the pipe takes.
uint32_t ElevatedChannel::Write(std::span<const uint8_t> request) {
    uint32_t error = ERROR_SUCCESS;
    while (!request.empty() && error == ERROR_SUCCESS) {
        const size_t size = std::min<size_t>(request.size(), kLargestMessage);
        error = m_pipe.Write(request.first(size), m_process.Get(), kMessageMilliseconds);
        request = request.subspan(size);
    }
    return error;
}

uint32_t ElevatedChannel::AwaitReply(Reply& reply) {
    const ULONGLONG end = GetTickCount64() + kWorkMilliseconds;
    Bytes message;
    do {
        const uint32_t error = m_pipe.Read(message, kLargestMessage, m_process.Get(), kSilenceMilliseconds);
        if (error != ERROR_SUCCESS) return error;
        if (IsAtWork(message)) continue;
        std::optional<Reply> decoded = DecodeReply(message);
        if (!decoded) return ERROR_INVALID_DATA;
        reply = std::move(*decoded);
        for (const std::string& text = ToUtf8(reply.log); const std::string_view line : LinesOf(text))
            LogLine(Wide(line), reply.result);
        return ERROR_SUCCESS;
    } while (GetTickCount64() < end);
    return ERROR_TIMEOUT;
}

void ElevatedChannel::LogLine(const std::wstring& text, uint32_t error) {
    m_log.Write(L"[elevated] " + text, error == ERROR_SUCCESS ? Tone::Plain : Tone::Failure);
}

void ElevatedChannel::Close() {
    GuardedCall([&] {
        m_isConnected = false;
        m_pipe = MessagePipe();  // the other process ends when its pipe does
        if (m_process) WaitForSingleObject(m_process.Get(), kEndMilliseconds);
        m_process.Reset();
    });
}

}  // namespace QVHost
