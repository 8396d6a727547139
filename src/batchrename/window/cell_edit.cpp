#include "batchrename/window/cell_edit.h"

#include <algorithm>

#include "ui/activation_context.h"

#include <commctrl.h>

namespace BatchRename {
namespace {

int EndOfKey(WPARAM key) {
    switch (key) {
        case VK_RETURN: return CellEnd::Taken;
        case VK_ESCAPE: return CellEnd::Cancelled;
        case VK_TAB: return GetKeyState(VK_SHIFT) < 0 ? CellEnd::Former : CellEnd::Next;
        default: return 0;
    }
}

void Tell(HWND edit, int code) {
    SendMessageW(GetParent(edit), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(edit), code), reinterpret_cast<LPARAM>(edit));
}

LRESULT CALLBACK Procedure(HWND edit, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    const auto usual = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(edit, GWLP_USERDATA));
    // The dialog would take these keys for its own; those with Alt are.
    const auto* const asked = message == WM_GETDLGCODE ? reinterpret_cast<const MSG*>(lParam) : nullptr;
    if (asked && asked->message == WM_KEYDOWN && EndOfKey(asked->wParam) != 0) return DLGC_WANTALLKEYS;
    // The control is gone once it has told of its end.
    if (message == WM_KEYDOWN)
        if (const int end = EndOfKey(wParam)) return Tell(edit, end), 0;
    if (message == WM_KILLFOCUS) return Tell(edit, CellEnd::Taken), 0;
    if (message == WM_CHAR && EndOfKey(wParam) != 0) return 0;  // it would beep
    return CallWindowProcW(usual, edit, message, wParam, lParam);
}

RECT CellOf(HWND list, int row, int column) {
    RECT rect = {};
    rect.left = LVIR_LABEL;
    rect.top = column;
    SendMessageW(list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&rect));
    RECT client = {};
    GetClientRect(list, &client);
    rect.right = std::min(rect.right, client.right);
    InflateRect(&rect, 0, 1);  // a frame more than the row has
    MapWindowPoints(list, GetParent(list), reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

}  // namespace

HWND OpenCell(HWND list, int row, int column, const std::wstring& text, int id, size_t limit) {
    SendMessageW(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    // The list must not paint over it.
    SetWindowLongPtrW(list, GWL_STYLE, GetWindowLongPtrW(list, GWL_STYLE) | WS_CLIPSIBLINGS);
    const RECT rect = CellOf(list, row, column);
    const HWND edit =
        CreateWindowExW(0, WC_EDITW, text.c_str(), WS_CHILD | WS_BORDER | WS_CLIPSIBLINGS | ES_AUTOHSCROLL, rect.left,
                        rect.top, rect.right - rect.left, rect.bottom - rect.top, GetParent(list),
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), Ui::OwnModule(), nullptr);
    if (!edit) return nullptr;
    SendMessageW(edit, WM_SETFONT, static_cast<WPARAM>(SendMessageW(list, WM_GETFONT, 0, 0)), FALSE);
    SendMessageW(edit, EM_LIMITTEXT, limit, 0);
    SendMessageW(edit, EM_SETSEL, 0, -1);
    SetWindowLongPtrW(edit, GWLP_USERDATA, GetWindowLongPtrW(edit, GWLP_WNDPROC));
    SetWindowLongPtrW(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure));
    SetWindowPos(edit, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    SetFocus(edit);
    return edit;
}

}  // namespace BatchRename
