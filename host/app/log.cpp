#include "host/app/log.h"

#include <cstdio>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "win32/path.h"

namespace QVHost {
namespace {

constexpr size_t kBlock = size_t{64} * 1024;               // bytes
constexpr size_t kLongestLine = size_t{16} * 1024 * 1024;  // units

}  // namespace

Log::Log(Output& output, const std::wstring& file, bool quiet) : m_output(output), m_path(file), m_quiet(quiet) {
    if (file.empty()) return;
    m_file.Reset(CreateFileW(Win32::ExtendedPath(file).c_str(), FILE_APPEND_DATA,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!m_file) throw HostError(L"cannot open the log file " + file + L": " + DescribeError(GetLastError()));
}

Log::~Log() {
    FlushFile();
}

void Log::Write(std::wstring_view text, Tone tone) {
    const std::wstring line = OnOneLine(text);
    if (!m_quiet) m_output.Line(line, tone);
    if (!m_file) return;
    const std::lock_guard lock(m_mutex);
    m_pending += ToUtf8(line) + '\n';
    if (m_pending.size() >= kBlock) FlushFile();
}

bool Log::Flush() {
    const std::lock_guard lock(m_mutex);
    FlushFile();
    return m_isWhole;
}

void Log::FlushFile() {
    if (!m_file || m_pending.empty()) return;
    DWORD written = 0;
    DWORD error = ERROR_SUCCESS;
    if (!WriteFile(m_file.Get(), m_pending.data(), static_cast<DWORD>(m_pending.size()), &written, nullptr))
        error = GetLastError();
    else if (written != m_pending.size())
        error = ERROR_DISK_FULL;
    m_pending.clear();
    if (error == ERROR_SUCCESS) return;
    m_isWhole = false;
    m_output.Note(L"qvhost: the log file " + m_path + L" cannot be written: " + DescribeError(error), Tone::Failure);
}

std::wstring FormatLine(const wchar_t* format, va_list arguments) {
    for (size_t size = 512; size <= kLongestLine; size *= 2) {
        std::wstring line(size, L'\0');
        va_list copy;
        va_copy(copy, arguments);
        const int length = _vsnwprintf(line.data(), line.size(), format, copy);
        va_end(copy);
        if (length < 0 || static_cast<size_t>(length) >= size) continue;
        line.resize(static_cast<size_t>(length));
        return line;
    }
    return {};
}

}  // namespace QVHost
