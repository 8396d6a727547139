#include "host/app/progress_window.h"

#include "host/questions/dialog_template.h"

namespace QVHost {
namespace {

constexpr WORD kTextId = 100;
// Drawing after each of many small files would take most of the time.
constexpr ULONGLONG kPause = 50;  // milliseconds

bool IsTime(ULONGLONG last) {
    return GetTickCount64() - last >= kPause;
}

}  // namespace

ProgressWindow::ProgressWindow(const std::wstring& title) {
    const DialogTemplate layout(
        260, 54,
        {{kTextId, ControlClass::Static, SS_LEFT | SS_NOPREFIX | SS_PATHELLIPSIS, 8, 8, 244, 10},
         {IDCANCEL, ControlClass::Button, BS_DEFPUSHBUTTON | WS_TABSTOP, 202, 32, 50, 14}});
    m_window = UniqueWindow(CreateDialogIndirectParamW(GetModuleHandleW(nullptr), layout.Get(), GetActiveWindow(),
                                                       OnMessage, reinterpret_cast<LPARAM>(this)));
    if (!m_window) return;
    SetWindowTextW(m_window.Get(), title.c_str());
    SetDlgItemTextW(m_window.Get(), IDCANCEL, L"Cancel");
    ShowWindow(m_window.Get(), SW_SHOW);
}

INT_PTR CALLBACK ProgressWindow::OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        return FALSE;
    }
    if (message != WM_COMMAND || LOWORD(wParam) != IDCANCEL) return FALSE;
    reinterpret_cast<ProgressWindow*>(GetWindowLongPtrW(window, DWLP_USER))->m_isCancelled = true;
    EnableWindow(GetDlgItem(window, IDCANCEL), FALSE);  // the wish is heard; the file in work is finished first
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

}  // namespace QVHost
