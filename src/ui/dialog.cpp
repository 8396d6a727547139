#include "ui/dialog.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "sdk/boundary.h"
#include "ui/activation_context.h"
#include "ui/guide.h"
#include "ui/system_ink.h"
#include "win32/module.h"
#include "win32/text.h"
#include "win32/window_position.h"

#include <commctrl.h>

namespace Ui {
namespace {

[[noreturn]] void ThrowLastError(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

constexpr double kSmallestShare = 0.75;  // of its scale, at which a dialog can still be read
constexpr uint32_t kSizeCapacity = 32;   // units
constexpr int kWidestTip = 320;          // pixels at 96 to the inch; longer texts take several lines

/// The system scales dialogs by itself where it does at all, from its own idea of their layout. Ours do it in one way
/// on every system.
void ScaleByOurselves(HWND dialog) {
    using Function = BOOL(WINAPI*)(HWND, int, int);
    constexpr int kAll = 1;  // DDC_DISABLE_ALL of winuser.h
    const Win32::Module user = Win32::LoadSystemModule(L"user32.dll");
    if (const auto set = Win32::FindFunction<Function>(user, "SetDialogDpiChangeBehavior")) set(dialog, kAll, kAll);
}

SIZE SizeOfWindow(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return Win32::SizeOf(rect);
}

/// The system cuts a dialog that is larger than the screen: what its controls need would not be known.
void GiveWholeSize(HWND dialog, const DLGTEMPLATE* layout) {
    constexpr WORD kExtended = 0xFFFF;  // the second word of a DLGTEMPLATEEX, whose size stands four words later
    const auto* const words = reinterpret_cast<const WORD*>(layout);
    const size_t place = words[1] == kExtended ? 11 : 7;
    RECT wanted = {0, 0, words[place], words[place + 1]};
    MapDialogRect(dialog, &wanted);
    RECT client = {};
    GetClientRect(dialog, &client);
    const SIZE window = SizeOfWindow(dialog);
    SetWindowPos(dialog, nullptr, 0, 0, window.cx + std::max(0L, wanted.right - client.right),
                 window.cy + std::max(0L, wanted.bottom - client.bottom), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

/// "width,height"; nothing for another text.
std::optional<SIZE> ParseSize(std::wstring_view text) {
    const size_t comma = text.find(L',');
    if (comma == std::wstring_view::npos) return std::nullopt;
    const std::optional<uint16_t> width = Win32::WholeNumber<uint16_t>(text.substr(0, comma));
    const std::optional<uint16_t> height = Win32::WholeNumber<uint16_t>(text.substr(comma + 1));
    if (!width || !height) return std::nullopt;
    return SIZE{*width, *height};
}

std::wstring TextOfSize(SIZE size, UINT dots) {
    const auto length = [dots](LONG pixels) {
        return std::to_wstring(Win32::Rescaled(static_cast<int>(pixels), dots, USER_DEFAULT_SCREEN_DPI));
    };
    return length(size.cx) + L"," + length(size.cy);
}

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
                if (!SelectAllByKey(*message)) DispatchMessageW(message);
                return TRUE;
            }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK Dialog::FollowFocus(int code, WPARAM wParam, LPARAM lParam) noexcept {
    if (code == HCBT_SETFOCUS)
        for (HWND window = reinterpret_cast<HWND>(wParam); window; window = GetAncestor(window, GA_PARENT)) {
            const HWND parent = GetAncestor(window, GA_PARENT);
            if (GetWindowLongPtrW(parent, DWLP_DLGPROC) != reinterpret_cast<LONG_PTR>(Procedure)) continue;
            if (auto* const self = reinterpret_cast<Dialog*>(GetWindowLongPtrW(parent, DWLP_USER)))
                self->m_resizing.Reveal(window);
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
        self->m_focusHook.Reset();
        self->m_resizing = Resizing();
        self->m_window = self->m_tips = nullptr;
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
        case WM_INITDIALOG: return Start();
        case WM_COMMAND:
            if (OnCommand(LOWORD(wParam), HIWORD(wParam))) return TRUE;
            if (LOWORD(wParam) != IDCANCEL) return FALSE;
            End(IDCANCEL);
            return TRUE;
        case WM_HELP:
            if (!m_host.page) return FALSE;
            OpenGuide(m_window, m_host.page->topic, m_host.texts);
            return TRUE;
        case WM_GETMINMAXINFO: m_resizing.LimitSize(*reinterpret_cast<MINMAXINFO*>(lParam)); return TRUE;
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED) m_resizing.Arrange();
            return FALSE;
        case WM_HSCROLL:
        case WM_VSCROLL: return lParam == 0 && m_resizing.OnScroll(message, wParam);
        case WM_MOUSEWHEEL: return m_resizing.OnScroll(message, wParam);
        case WM_DPICHANGED: OnScaleChange(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam)); return TRUE;
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED: TellColours(m_window); return FALSE;
        case WM_DESTROY: KeepSize(); return FALSE;
        default: return FALSE;
    }
}

bool Dialog::Start() {
    ScaleByOurselves(m_window);
    GiveWholeSize(m_window, m_layout ? m_layout : DialogResource(m_resourceId));
    if (m_host.texts && m_resourceId != 0)
        ShowTexts(m_window, m_resourceId, m_host.texts, m_host.page ? m_host.page->texts : std::span<const Tip>());
    const bool isFocusOpen = OnInit();
    if (!m_resizing.IsStarted()) m_resizing.Start(m_window, {});
    if (m_host.page) AddTips(m_host.page->tips, m_host.texts);
    m_focusHook.Reset(SetWindowsHookExW(WH_CBT, FollowFocus, nullptr, GetCurrentThreadId()));
    Place();
    return isFocusOpen;
}

void Dialog::ShrinkToScreen(UINT dotsPerInch) {
    RECT rect = {};
    GetWindowRect(m_window, &rect);
    RECT client = {};
    GetClientRect(m_window, &client);
    const SIZE screen = Win32::SizeOf(Win32::WorkAreaNear(rect));
    const SIZE frame = {rect.right - rect.left - client.right, rect.bottom - rect.top - client.bottom};
    const double share = std::min({1.0, static_cast<double>(screen.cx - frame.cx) / client.right,
                                   static_cast<double>(screen.cy - frame.cy) / client.bottom});
    if (share >= 1.0) return;
    m_resizing.Rescale(static_cast<UINT>(dotsPerInch * std::max(share, kSmallestShare)));
    const SIZE natural = m_resizing.NaturalClient();
    InflateRect(&rect, (natural.cx - client.right) / 2, (natural.cy - client.bottom) / 2);
    if (natural.cy + frame.cy > screen.cy) rect.right += GetSystemMetrics(SM_CXVSCROLL);
    MoveTo(rect);
    m_resizing.Arrange();
}

void Dialog::Place() {
    const auto style = GetWindowLongPtrW(m_window, GWL_STYLE);
    if (style & WS_CHILD) return;
    ShrinkToScreen(Win32::DotsPerInch(m_window));
    RECT rect = {};
    GetWindowRect(m_window, &rect);
    wchar_t text[kSizeCapacity + 1] = {};  // it ends whatever the host does
    const bool isKept = (style & WS_THICKFRAME) && m_host.settings && m_host.page &&
                        m_host.settings->GetString(1, kSizesSection, m_host.page->name, text, kSizeCapacity);
    if (const std::optional<SIZE> size = isKept ? ParseSize(text) : std::nullopt) {
        const UINT dots = Win32::DotsPerInch(m_window);
        const auto more = [dots](LONG length, LONG now) {
            return std::max(0L, Win32::Rescaled(static_cast<int>(length), USER_DEFAULT_SCREEN_DPI, dots) - now);
        };
        // Around the place where it would be otherwise, and never smaller than its controls need.
        InflateRect(&rect, more(size->cx, rect.right - rect.left) / 2, more(size->cy, rect.bottom - rect.top) / 2);
    }
    MoveTo(Win32::FitInto(rect, Win32::WorkAreaNear(rect)));
    m_placed = SizeOfWindow(m_window);
}

void Dialog::KeepSize() const noexcept {
    if (!m_host.settings || !m_host.page || !(GetWindowLongPtrW(m_window, GWL_STYLE) & WS_THICKFRAME)) return;
    // Only what the user has chosen: a size that was cut to a small screen would be kept for large ones.
    const SIZE size = SizeOfWindow(m_window);
    if (size.cx == m_placed.cx && size.cy == m_placed.cy) return;
    // Guarded, since a dialog that cannot keep its size must close all the same.
    Quorvane::SDK::AtBoundary(false, [&] {
        const std::wstring text = TextOfSize(size, Win32::DotsPerInch(m_window));
        return m_host.settings->SetString(1, kSizesSection, m_host.page->name, text.c_str());
    });
}

void Dialog::MoveTo(const RECT& rect) {
    SetWindowPos(m_window, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void Dialog::OnScaleChange(UINT dotsPerInch, const RECT& suggested) {
    const SIZE before = SizeOfWindow(m_window);
    const bool isAsPlaced = before.cx == m_placed.cx && before.cy == m_placed.cy;
    RescaleControls(dotsPerInch);
    // What is suggested follows the size of before, and that of a dialog that was shrunk says nothing about another
    // scale: it has its whole size first, and is shrunk where this screen asks for it.
    const SIZE whole = m_resizing.NaturalWindow();
    const SIZE wanted = Win32::SizeOf(suggested);
    MoveTo({suggested.left, suggested.top, suggested.left + whole.cx, suggested.top + whole.cy});
    ShrinkToScreen(dotsPerInch);
    RECT rect = {};
    GetWindowRect(m_window, &rect);
    // What the user has added to the size stays, as far as the screen goes.
    rect.right += std::max(0L, wanted.cx - whole.cx);
    rect.bottom += std::max(0L, wanted.cy - whole.cy);
    MoveTo(Win32::FitInto(rect, Win32::WorkAreaNear(rect)));
    if (isAsPlaced) m_placed = SizeOfWindow(m_window);
}

void Dialog::RescaleControls(UINT dotsPerInch) {
    m_resizing.Rescale(dotsPerInch);
    m_resizing.Arrange();
}

void Dialog::AddTips(std::span<const Tip> tips, const HostTexts& texts) {
    if (tips.empty()) return;
    m_tips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0,
                             0, m_window, nullptr, OwnModule(), nullptr);
    const int widest = MulDiv(kWidestTip, static_cast<int>(Win32::DotsPerInch(m_window)), USER_DEFAULT_SCREEN_DPI);
    SendMessageW(m_tips, TTM_SETMAXTIPWIDTH, 0, widest);
    for (const Tip& tip : tips) {
        std::wstring text = texts(tip.text);
        if (text.empty()) continue;
        TTTOOLINFOW tool = {};
        tool.cbSize = TTTOOLINFOW_V1_SIZE;
        tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
        tool.hwnd = m_window;
        tool.uId = reinterpret_cast<UINT_PTR>(Item(tip.control));
        tool.lpszText = text.data();
        SendMessageW(m_tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
}

}  // namespace Ui
