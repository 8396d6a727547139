#include "batchrename/window/name_edit.h"

#include <utility>

#include "batchrename/profiles.h"
#include "sdk/boundary.h"
#include "ui/activation_context.h"
#include "win32/window_text.h"

namespace BatchRename {

void NameEdit::Open(HWND list, const RECT& cell, const std::wstring& name, Done done) {
    Close(true);
    // Within the list, also where the column is not all in sight.
    RECT client = {};
    GetClientRect(list, &client);
    const LONG right = std::max(std::min(cell.right, client.right), cell.left + (cell.bottom - cell.top) * 4);
    m_field =
        CreateWindowExW(0, L"Edit", name.c_str(), WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL, cell.left,
                        cell.top, right - cell.left, cell.bottom - cell.top, list, nullptr, Ui::OwnModule(), nullptr);
    if (!m_field) return;
    m_done = std::move(done);
    SendMessageW(m_field, WM_SETFONT, static_cast<WPARAM>(SendMessageW(list, WM_GETFONT, 0, 0)), FALSE);
    SendMessageW(m_field, EM_LIMITTEXT, kLongestProfileText, 0);
    SetWindowLongPtrW(m_field, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_control =
        reinterpret_cast<WNDPROC>(SetWindowLongPtrW(m_field, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    SetFocus(m_field);
    const size_t dot = name.rfind(L'.');
    const bool hasExtension = dot != std::wstring::npos && dot > 0;
    SendMessageW(m_field, EM_SETSEL, 0, hasExtension ? static_cast<LPARAM>(dot) : -1);
}

void NameEdit::Close(bool isDone, Next next) {
    if (!m_field) return;
    const std::wstring name = isDone ? Win32::WindowText(m_field) : std::wstring();
    const HWND field = std::exchange(m_field, nullptr);  // losing the focus must not end it a second time
    const Done done = std::exchange(m_done, {});
    if (GetFocus() == field) SetFocus(GetParent(field));
    DestroyWindow(field);
    if (isDone && done) done(name, next);
}

LRESULT CALLBACK NameEdit::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    auto* const self = reinterpret_cast<NameEdit*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const WNDPROC control = self->m_control;
    const bool isEaten = Quorvane::SDK::AtBoundary(false, [&] {
        switch (message) {
            case WM_KEYDOWN: return self->OnKey(wParam);
            case WM_CHAR: return wParam == L'\r' || wParam == L'\t' || wParam == 0x1B;  // they would beep
            case WM_KILLFOCUS: self->Close(true); return false;
            default: return false;
        }
    });
    if (isEaten) return 0;
    const LRESULT result = CallWindowProcW(control, window, message, wParam, lParam);
    // The window's keys, such as Enter and Tab, are the field's.
    return message == WM_GETDLGCODE ? result | DLGC_WANTALLKEYS : result;
}

bool NameEdit::OnKey(WPARAM key) {
    const bool isShift = GetKeyState(VK_SHIFT) < 0;
    switch (key) {
        case VK_RETURN: Close(true); return true;
        case VK_ESCAPE: Close(false); return true;
        case VK_TAB: Close(true, isShift ? Next::RowAbove : Next::RowBelow); return true;
        case VK_UP: Close(true, Next::RowAbove); return true;
        case VK_DOWN: Close(true, Next::RowBelow); return true;
        default: return false;
    }
}

}  // namespace BatchRename
