#include "host/output.h"

#include "host/text.h"

namespace QVHost {
namespace {

constexpr size_t kBlock = size_t{64} * 1024;  // bytes

}  // namespace

void Output::Line(std::wstring_view text, Tone tone) {
    if (m_panel) m_panel->ShowLine(text, tone);
    const std::lock_guard lock(m_mutex);
    m_pending += ToUtf8(text);
    m_pending += '\n';
    if (m_flushLines || m_pending.size() >= kBlock) FlushLines();
}

void Output::Note(std::wstring_view text, Tone tone) {
    if (m_panel) m_panel->ShowLine(text, tone);
    const std::lock_guard lock(m_mutex);
    FlushLines();
    m_error << ToUtf8(text) + '\n' << std::flush;
}

void Output::Prompt(std::wstring_view text) {
    const std::lock_guard lock(m_mutex);
    FlushLines();
    m_error << ToUtf8(text) << std::flush;
}

void Output::Flush() {
    const std::lock_guard lock(m_mutex);
    FlushLines();
}

void Output::FlushLines() {
    if (m_pending.empty()) return;
    m_out.write(m_pending.data(), static_cast<std::streamsize>(m_pending.size()));
    m_out.flush();
    m_pending.clear();
}

}  // namespace QVHost
