#include "host/app/progress.h"

#include <algorithm>

#include "host/app/host_text.h"
#include "host/contract/host_boundary.h"

namespace QVHost {
namespace {

constexpr size_t kWidth = 78;  // of the narrowest usual terminal, less what a cursor needs

}  // namespace

Progress::Progress(Shelf<Progress>& shelf, Output& output, ProgressWatch watch, const std::wstring& title,
                   uint32_t total)
    : m_shelf(shelf), m_output(output), m_watch(watch), m_title(OnOneLine(title)), m_total(total) {
    if (watch.isInWindow) m_window.emplace(title);
}

Progress::~Progress() {
    GuardedCall([&] { Show({}); });
}

void Progress::Advance(uint32_t done, const wchar_t* currentItem) {
    GuardedCall([&] {
        const std::wstring place = std::to_wstring(done) + L"/" + std::to_wstring(m_total) + L" ";
        const std::wstring item = OnOneLine(TextOrEmpty(currentItem));
        Show(m_title + L" " + place + item);
        if (m_window) m_window->Show(place + item);
    });
}

bool Progress::IsCancelled() {
    if (IsStopped(m_watch)) return true;
    return Guarded(false, [&] { return m_window && m_window->IsCancelled(); });
}

void Progress::Close() {
    GuardedCall([&] { m_shelf.Remove(this); });
}

void Progress::Show(std::wstring text) {
    if (!m_watch.isShown || (text.empty() && m_shown == 0)) return;
    if (text.size() > kWidth) text.resize(kWidth);
    const size_t units = text.size();
    // Blanks wipe out the rest of a longer line before; an empty text leaves a clean line.
    text.resize(std::max(units, m_shown), L' ');
    m_output.Prompt(L"\r" + text + (units == 0 ? L"\r" : L""));
    m_shown = units;
}

}  // namespace QVHost
