#include "host/app/run_progress.h"

#include <algorithm>

#include "host/app/host_text.h"
#include "host/contract/host_boundary.h"
#include "host/questions/dialog_template.h"

namespace QVHost {

UniqueWindow MakeMainWindow() {
    // In the middle of the screen, since dialogs may place themselves by their owner.
    const int x = GetSystemMetrics(SM_CXSCREEN) / 2;
    const int y = GetSystemMetrics(SM_CYSCREEN) / 2;
    return UniqueWindow(CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"Quorvane", WS_POPUP, x, y, 0, 0, nullptr,
                                        nullptr, GetModuleHandleW(nullptr), nullptr));
}

namespace {

constexpr WORD kTextId = 100;
// Drawing after each of many small files would take most of the time.
constexpr ULONGLONG kPause = 50;  // milliseconds

bool IsTime(ULONGLONG last) {
    return GetTickCount64() - last >= kPause;
}

}  // namespace

ProgressWindow::ProgressWindow(const ProgressTitle& words) {
    const DialogTemplate layout(
        260, 54,
        {{kTextId, ControlClass::Static, SS_LEFT | SS_NOPREFIX | SS_PATHELLIPSIS, 8, 8, 244, 10},
         {IDCANCEL, ControlClass::Button, BS_DEFPUSHBUTTON | WS_TABSTOP, 202, 32, 50, 14}});
    m_window = UniqueWindow(CreateDialogIndirectParamW(GetModuleHandleW(nullptr), layout.Get(), GetActiveWindow(),
                                                       OnMessage, reinterpret_cast<LPARAM>(this)));
    if (!m_window) return;
    SetWindowTextW(m_window.Get(), words.title.c_str());
    SetDlgItemTextW(m_window.Get(), IDCANCEL, words.cancel.c_str());
    ShowWindow(m_window.Get(), SW_SHOW);
}

INT_PTR CALLBACK ProgressWindow::OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        return FALSE;
    }
    if (message != WM_COMMAND || LOWORD(wParam) != IDCANCEL) return FALSE;
    reinterpret_cast<ProgressWindow*>(GetWindowLongPtrW(window, DWLP_USER))->m_isCancelled = true;
    EnableWindow(GetDlgItem(window, IDCANCEL), FALSE);  // the wish is heard; a command may finish the file first
    return TRUE;
}

void ProgressWindow::Show(const std::wstring& text) {
    if (!m_window || !IsTime(m_lastShown)) return;
    SetDlgItemTextW(m_window.Get(), kTextId, text.c_str());
    HandleInput();
    m_lastShown = GetTickCount64();
}

bool ProgressWindow::IsCancelled() {
    if (IsTime(m_lastLook)) HandleInput();
    return m_isCancelled;
}

void ProgressWindow::HandleInput() {
    if (!m_window) return;
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            // Not ours to swallow; and a program that ends the thread's loop wants no more files either.
            PostQuitMessage(static_cast<int>(message.wParam));
            m_isCancelled = true;
            return;
        }
        if (IsDialogMessageW(m_window.Get(), &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    m_lastLook = GetTickCount64();
}

namespace {

constexpr size_t kLineWidth = 78;  // of the narrowest usual terminal, less what a cursor needs

}  // namespace

Progress::Progress(Shelf<Progress>& shelf, Output& output, ProgressWatch watch, const ProgressTitle& words,
                   uint32_t total)
    : m_shelf(shelf),
      m_output(output),
      m_watch(watch),
      m_title(OnOneLine(words.title)),
      m_total(watch.all > 0 ? watch.all : total) {
    if (watch.isInWindow) m_window.emplace(words);
}

Progress::~Progress() {
    GuardedCall([&] { Show({}); });
}

void Progress::Advance(uint32_t done, const wchar_t* currentItem) {
    GuardedCall([&] {
        const std::wstring place = std::to_wstring(m_watch.begun + done) + L"/" + std::to_wstring(m_total) + L" ";
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
    if (text.size() > kLineWidth) text.resize(kLineWidth);
    const size_t units = text.size();
    // Blanks wipe out the rest of a longer line before; an empty text leaves a clean line.
    text.resize(std::max(units, m_shown), L' ');
    m_output.Prompt(L"\r" + text + (units == 0 ? L"\r" : L""));
    m_shown = units;
}

}  // namespace QVHost
