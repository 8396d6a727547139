#include "host/app/output.h"

#include <cstdlib>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "win32/handle.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

constexpr size_t kBlock = size_t{64} * 1024;  // bytes

}  // namespace

void Output::ShowIn(IPanelView* panel) {
    Flush();
    m_panel = panel;
}

void Output::CollectIn(Report* report) {
    Flush();
    m_report = report;
}

bool Output::Item(const JsonFields& item) {
    const std::lock_guard lock(m_mutex);
    if (m_report) m_report->AddItem(item);
    return m_report != nullptr;
}

void Output::Result(uint32_t code, const std::wstring& text) {
    const std::lock_guard lock(m_mutex);
    if (m_report) m_report->SetResult(code, text);
}

void Output::Line(std::wstring_view text, Tone tone) {
    if (m_panel) m_panel->ShowLine(text, tone);
    const std::lock_guard lock(m_mutex);
    if (m_report) {
        m_report->AddMessage("log", text);
        return;
    }
    m_pending += ToUtf8(text);
    m_pending += '\n';
    if (m_flushLines || m_pending.size() >= kBlock) FlushLines();
}

void Output::Lines(std::string_view lines) {
    if (m_panel)
        for (const std::string_view line : LinesOf(lines)) m_panel->ShowLine(Wide(line), Tone::Plain);
    const std::lock_guard lock(m_mutex);
    m_pending += lines;
    if (m_flushLines || m_pending.size() >= kBlock) FlushLines();
}

void Output::Note(std::wstring_view text, Tone tone) {
    if (m_panel) m_panel->ShowLine(text, tone);
    const std::lock_guard lock(m_mutex);
    if (m_report) {
        m_report->AddMessage("note", text);
        return;
    }
    FlushLines();
    m_error << ToUtf8(text) + '\n' << std::flush;
}

void Output::Prompt(std::wstring_view text) {
    const std::lock_guard lock(m_mutex);
    FlushLines();
    m_error << ToUtf8(text) << std::flush;
}

bool Output::Flush() {
    const std::lock_guard lock(m_mutex);
    FlushLines();
    return m_isWhole;
}

void Output::FlushLines() {
    if (m_pending.empty()) return;
    _doserrno = ERROR_SUCCESS;
    m_out.write(m_pending.data(), static_cast<std::streamsize>(m_pending.size()));
    m_out.flush();
    m_pending.clear();
    // A panel shows the lines itself; started by a double click, it has no standard output.
    if (!m_out && !m_panel && m_isWhole) ReportLoss(_doserrno);
}

void Output::ReportLoss(unsigned long error) {
    m_isWhole = false;
    // The reader has had enough, as `head` does: no news for a person.
    if (error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED) return;
    std::wstring text = L"qvhost: standard output cannot be written";
    if (error != ERROR_SUCCESS) text += L": " + DescribeError(error);
    m_error << ToUtf8(text) + '\n' << std::flush;
}

Log::Log(Output& output, const std::wstring& file, bool quiet) : m_output(output), m_path(file), m_quiet(quiet) {
    if (file.empty()) return;
    m_file.Reset(CreateFileW(Win32::ExtendedPath(file).c_str(), FILE_APPEND_DATA, Win32::kShareAll, nullptr,
                             OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
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

}  // namespace QVHost
