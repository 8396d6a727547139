#include "ui/dialog.h"

#include <system_error>
#include <utility>

#include "ui/activation_context.h"
#include "win32/handle.h"

namespace Ui {
namespace {

[[noreturn]] void ThrowLastError(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

struct HookTraits {
    using Raw = HHOOK;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { UnhookWindowsHookEx(raw); }
};
using Hook = Win32::UniqueHandle<HookTraits>;

}  // namespace

const DLGTEMPLATE* DialogResource(WORD resourceId) {
    const HMODULE module = OwnModule();
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(resourceId), RT_DIALOG);
    // Resources are part of the loaded module: nothing is to be freed.
    const HGLOBAL loaded = found ? LoadResource(module, found) : nullptr;
    const void* const layout = loaded ? LockResource(loaded) : nullptr;
    if (!layout) ThrowLastError("The dialog is missing");
    return static_cast<const DLGTEMPLATE*>(layout);
}

Dialog::~Dialog() {
    // The window must not call an object that is no more.
    if (m_window) {
        SetWindowLongPtrW(m_window, DWLP_USER, 0);
        DestroyWindow(m_window);
    }
}

INT_PTR Dialog::ShowModal(HWND owner) {
    const ActivationContext context;
    // A dialog whose letters cannot be filtered is still of use.
    const Hook letters(SetWindowsHookExW(WH_MSGFILTER, FilterLetters, nullptr, GetCurrentThreadId()));
    m_isModal = true;
    const INT_PTR result = DialogBoxIndirectParamW(OwnModule(), m_layout ? m_layout : DialogResource(m_resourceId),
                                                   owner, Procedure, reinterpret_cast<LPARAM>(this));
    ThrowFailure();
    if (result == -1) ThrowLastError("The dialog cannot be shown");
    return result;
}

void Dialog::ShowModeless(HWND owner) {
    const ActivationContext context;
    m_isModal = false;
    const HWND window = CreateDialogIndirectParamW(OwnModule(), m_layout ? m_layout : DialogResource(m_resourceId),
                                                   owner, Procedure, reinterpret_cast<LPARAM>(this));
    ThrowFailure();
    if (!window) ThrowLastError("The dialog cannot be shown");
}

void Dialog::End(INT_PTR result) noexcept {
    if (m_isModal)
        EndDialog(m_window, result);
    else
        DestroyWindow(m_window);
}

bool Dialog::OnMessage(UINT, WPARAM, LPARAM) {
    return false;
}

void Dialog::OnFailure(const std::exception_ptr&) noexcept {}

void Dialog::ThrowFailure() {
    if (const std::exception_ptr failure = std::exchange(m_failure, nullptr)) std::rethrow_exception(failure);
}

LRESULT CALLBACK Dialog::FilterLetters(int code, WPARAM wParam, LPARAM lParam) noexcept {
    const auto* const message = reinterpret_cast<const MSG*>(lParam);
    if (code == MSGF_DIALOGBOX && message->message == WM_CHAR)
        for (HWND window = message->hwnd; window; window = GetAncestor(window, GA_PARENT))
            if (GetWindowLongPtrW(window, DWLP_DLGPROC) == reinterpret_cast<LONG_PTR>(Procedure)) {
                DispatchMessageW(message);
                return TRUE;
            }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

INT_PTR CALLBACK Dialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<Dialog*>(lParam)->m_window = window;
    }
    auto* const self = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!self) return FALSE;  // WM_SETFONT and others come before WM_INITDIALOG
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(window, DWLP_USER, 0);
        self->m_window = nullptr;
        // While the window is being made the failure is the maker's; afterwards nobody is on the stack to throw to.
        return FALSE;
    }
    try {
        return self->Handle(message, wParam, lParam);
    } catch (...) {
        const std::exception_ptr failure = std::current_exception();
        if (message != WM_INITDIALOG && self->OutlivesFailure()) {
            self->OnFailure(failure);
            return TRUE;
        }
        self->m_failure = failure;
        self->End(IDABORT);
        if (!self->m_isModal && message != WM_INITDIALOG) {
            self->m_failure = nullptr;
            self->OnFailure(failure);
        }
        return TRUE;
    }
}

INT_PTR Dialog::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_INITDIALOG && OnMessage(message, wParam, lParam)) return TRUE;
    switch (message) {
        case WM_INITDIALOG: return OnInit();
        case WM_COMMAND:
            if (OnCommand(LOWORD(wParam), HIWORD(wParam))) return TRUE;
            if (LOWORD(wParam) != IDCANCEL) return FALSE;
            End(IDCANCEL);
            return TRUE;
        case WM_GETMINMAXINFO: return m_resizing.LimitSize(*reinterpret_cast<MINMAXINFO*>(lParam));
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED) m_resizing.Arrange();
            return FALSE;
        case WM_DPICHANGED: m_resizing.Rescale(LOWORD(wParam)); return FALSE;
        default: return FALSE;
    }
}

}  // namespace Ui
