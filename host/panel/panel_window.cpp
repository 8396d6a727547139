#include "host/panel/panel_window.h"

#include <algorithm>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/contract/host_boundary.h"
#include "ui/controls.h"
#include "ui/system_ink.h"
#include "win32/window_position.h"

#include <windowsx.h>

namespace QVHost {
namespace {

constexpr wchar_t kClass[] = L"QVHostPanel";

enum ControlId : int { kList = 10, kLog, kAddress, kStatus, kLabel };

constexpr wchar_t kSettings[] = L"qvhost";  // stands where an extension's id does
constexpr wchar_t kPositionKey[] = L"WinPos";

/// Messages that other threads and later moments post to the panel.
enum Message : UINT { kValuesHere = WM_APP + 1, kLinesHere, kFolderChanged, kShowStatus };

constexpr UINT_PTR kRefreshTimer = 1;
constexpr UINT kRefreshDelay = 200;  // milliseconds after the last change

constexpr int kMargin = 6;  // these are pixels at 96 to the inch
constexpr int kBarHeight = 24;
constexpr int kFieldHeight = 20;
constexpr int kButtonWidth = 64;
constexpr int kLabelWidth = 56;
constexpr int kWidth = 980;
constexpr int kHeight = 640;
constexpr int kLogShare = 4;  // the log gets a quarter of the height

HWND MakeChild(HWND frame, const wchar_t* windowClass, const std::wstring& text, DWORD style, DWORD extendedStyle,
               int id, const PanelLook& look) {
    const HWND child =
        CreateWindowExW(extendedStyle, windowClass, text.c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, frame,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(look.Font()), FALSE);
    return child;
}

}  // namespace

PanelWindow::Content::Content(HWND frame, Session& session, const PanelLook& look)
    : back(MakeChild(frame, L"BUTTON", TextOf(session.State().texts, PanelText::BackButton), WS_TABSTOP, 0,
                     PanelCommand::Back, look)),
      up(MakeChild(frame, L"BUTTON", TextOf(session.State().texts, PanelText::UpButton), WS_TABSTOP, 0,
                   PanelCommand::Up, look)),
      label(MakeChild(frame, L"STATIC", TextOf(session.State().texts, PanelText::Address), SS_CENTERIMAGE | SS_RIGHT, 0,
                      kLabel, look)),
      address(MakeChild(frame, L"EDIT", {}, WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE, kAddress, look)),
      list(frame, kList, kValuesHere, {session.State().columns, session.State().files, session.State().texts, look}),
      log(frame, kLog, kLinesHere, look, TextOf(session.State().texts, PanelText::EmptyLog)),
      status(MakeChild(frame, STATUSCLASSNAMEW, {}, SBARS_SIZEGRIP, 0, kStatus, look)) {}

PanelWindow::PanelWindow(Session& session) : m_session(session) {
    LoadCommonControls();
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);  // whatever colour that is then
    windowClass.lpszClassName = kClass;
    RegisterClassExW(&windowClass);  // a second panel of this process finds it there
    m_frame = CreateWindowExW(WS_EX_ACCEPTFILES, kClass, Text(PanelText::Program).c_str(),
                              WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT, kWidth, kHeight,
                              nullptr, nullptr, GetModuleHandleW(nullptr), this);
    if (!m_frame) throw HostError(L"the system gives no window: " + DescribeError(GetLastError()));
    HostState& state = m_session.State();
    state.mainWindow.Reset(m_frame);
    state.panel = this;
    state.output.ShowIn(this);
}

PanelWindow::~PanelWindow() {
    m_session.State().output.ShowIn(nullptr);
    m_session.State().panel = nullptr;
    SetWindowLongPtrW(m_frame, GWLP_USERDATA, 0);
    SetMenu(m_frame, nullptr);  // it has an owner of its own
}

std::wstring PanelWindow::Text(PanelText text) const {
    return TextOf(m_session.State().texts, text);
}

bool PanelWindow::IsOnOwnThread() const {
    return GetWindowThreadProcessId(m_frame, nullptr) == GetCurrentThreadId();
}

void PanelWindow::Open(const std::vector<std::wstring>& paths) {
    m_menu = MakePanelMenu(m_session.State().menus, m_session.State().texts);
    m_keys = MakePanelKeys(m_session.State().menus);
    SetMenu(m_frame, m_menu.Get());
    m_content.emplace(m_frame, m_session, m_look);
    const bool isMaximised = RestorePosition();
    Layout();
    GoToAll(paths);
    m_before.clear();  // there is no way back before the first folder
    ShowAddress();
    m_isOpen = true;
    // People who work with keys see where they go from the beginning, and not only after the first of them.
    SendMessageW(m_frame, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
    ShowWindow(m_frame, isMaximised ? SW_SHOWMAXIMIZED : SW_SHOWDEFAULT);
    m_lastFocus = m_content->list.Window();
    SetFocus(m_lastFocus);
}

bool PanelWindow::RestorePosition() {
    Win32::WindowPosition position = Win32::PositionOf(m_frame, 0);
    position.right = position.left + kWidth;
    position.bottom = position.top + kHeight;
    if (const auto text = m_session.State().settings.Text(kSettings, kPanelSection, kPositionKey))
        position = Win32::ParseWindowPosition(*text).value_or(position);
    Win32::PlaceWindow(m_frame, position);
    return position.isMaximised;
}

void PanelWindow::SavePosition() const {
    const std::wstring text = Win32::FormatWindowPosition(Win32::PositionOf(m_frame, 0));
    m_session.State().settings.SetText(kSettings, kPanelSection, kPositionKey, text.c_str());
}

void PanelWindow::OnScaleChange(UINT dotsPerInch, const RECT& suggested) {
    const UINT before = m_look.DotsPerInch();
    m_look.Rescale(dotsPerInch);
    for (const HWND control : {m_content->back, m_content->up, m_content->label, m_content->address, m_content->status})
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(m_look.Font()), TRUE);
    m_content->list.Rescale(before);
    m_content->log.Rescale(before);
    SetWindowPos(m_frame, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                 suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    Layout();
}

void PanelWindow::LimitSize(MINMAXINFO& limits) const {
    RECT window = {};
    GetWindowRect(m_frame, &window);
    const RECT screen = Win32::WorkAreaNear(window);
    limits.ptMinTrackSize = {std::min<LONG>(m_look.Scaled(kWidth / 2), screen.right - screen.left),
                             std::min<LONG>(m_look.Scaled(kHeight / 2), screen.bottom - screen.top)};
}

bool PanelWindow::PreTranslate(MSG& message) {
    if (m_isBusy || !m_content || (message.hwnd != m_frame && !IsChild(m_frame, message.hwnd))) return false;
    return TranslateAcceleratorW(m_frame, m_keys.Get(), &message) != 0 || Ui::SelectAllByKey(message) ||
           IsDialogMessageW(m_frame, &message) != FALSE;
}

IPanelView::Items PanelWindow::SelectedItems() {
    Items items = m_content && IsOnOwnThread() ? m_content->list.SelectedItems() : Items();
    if (IsOnOwnThread()) m_foundNothing = items.empty();
    return items;
}

IPanelView::Items PanelWindow::FocusedGroup() {
    return m_content && IsOnOwnThread() ? m_content->list.FocusedGroup() : Items();
}

void PanelWindow::ShowLine(std::wstring_view text, Tone tone) {
    if (!m_content) return;
    if (IsOnOwnThread()) m_report.Line(text, tone);
    m_content->log.Add(text, tone);
}

void PanelWindow::MarkFile(const std::wstring& path, uint32_t kind) {
    if (!m_content) return;
    if (IsOnOwnThread()) m_report.Mark(kind);
    m_content->list.Mark(path, kind);
}

void PanelWindow::FileRenamed(const std::wstring& before, const std::wstring& now) {
    if (!m_content) return;
    if (IsOnOwnThread()) m_report.Rename(before, now);
    m_content->list.NoteRenamed(before, now);
}

// Which folder it is makes no difference: reading one that has not changed is quick, and shows the same.
void PanelWindow::FolderChanged(const std::wstring&) {
    PostMessageW(m_frame, kFolderChanged, 0, 0);
}

LRESULT CALLBACK PanelWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        auto* const self = static_cast<PanelWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        self->m_frame = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* const self = reinterpret_cast<PanelWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!self || !self->m_content) return DefWindowProcW(window, message, wParam, lParam);
    return Guarded(LRESULT{0}, [&] { return self->OnMessage(message, wParam, lParam); });
}

LRESULT PanelWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE: Layout(); return 0;
        case WM_ACTIVATE: OnActivate(LOWORD(wParam) != WA_INACTIVE); return 0;
        case WM_DPICHANGED: OnScaleChange(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam)); return 0;
        case WM_CONTEXTMENU:
            OnContextMenu(reinterpret_cast<HWND>(wParam), lParam == -1, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            return 0;
        case WM_HELP: OnCommand(PanelCommand::Guide); return TRUE;
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED:
        case WM_SETTINGCHANGE: Ui::TellColours(m_frame); return 0;
        case WM_GETMINMAXINFO: LimitSize(*reinterpret_cast<MINMAXINFO*>(lParam)); return 0;
        case WM_COMMAND: OnCommand(LOWORD(wParam)); return 0;
        case WM_NOTIFY: return OnNotification(*reinterpret_cast<NMHDR*>(lParam));
        case WM_DROPFILES: OnDrop(reinterpret_cast<HDROP>(wParam)); return 0;
        case kValuesHere: m_content->list.OnAnswers(); return 0;
        case kLinesHere: m_content->log.TakeLines(); return 0;
        case kFolderChanged:
            // Changes come in rows, most of them while another window is showing what it did.
            SetTimer(m_frame, kRefreshTimer, kRefreshDelay, nullptr);
            return 0;
        case WM_TIMER:
            KillTimer(m_frame, wParam);
            Refresh();
            return 0;
        case kShowStatus: ShowStatus(); return 0;
        case WM_CLOSE:
            // A running command stands below us on the stack; it has a Cancel of its own.
            if (m_isBusy) return 0;
            m_isOpen = false;
            SavePosition();
            ShowWindow(m_frame, SW_HIDE);
            return 0;
        default: return DefWindowProcW(m_frame, message, wParam, lParam);
    }
}

void PanelWindow::Layout() const {
    RECT area = {};
    GetClientRect(m_frame, &area);
    SendMessageW(m_content->status, WM_SIZE, 0, 0);
    InvalidateRect(m_content->status, nullptr, TRUE);  // its corner has moved
    RECT status = {};
    GetWindowRect(m_content->status, &status);
    const int margin = m_look.Scaled(kMargin);
    const int bar = m_look.Scaled(kBarHeight);
    const int button = m_look.Scaled(kButtonWidth);
    const int label = m_look.Scaled(kLabelWidth);
    int x = margin;
    // What a control showed is not carried along: it would cover what the frame, or another one, shows there now.
    const auto move = [](HWND control, int left, int top, int width, int height) {
        SetWindowPos(control, nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    };
    const auto place = [&](HWND control, int width) {
        move(control, x, margin, width, bar);
        x += width + margin;
    };
    place(m_content->back, button);
    place(m_content->up, button);
    place(m_content->label, label);
    // A field of one line shows its text at the top: it is made as high as the text needs.
    const int field = m_look.Scaled(kFieldHeight);
    move(m_content->address, x, margin + (bar - field) / 2, std::max(0, static_cast<int>(area.right) - margin - x),
         field);
    const int top = bar + 2 * margin;
    const int height = std::max(0, static_cast<int>(area.bottom - (status.bottom - status.top)) - top);
    const int log = height / kLogShare;
    const int width = static_cast<int>(area.right);
    move(m_content->list.Window(), 0, top, width, height - log - margin);
    move(m_content->log.Window(), 0, top + height - log, width, log);
}

LRESULT PanelWindow::OnNotification(NMHDR& header) {
    LRESULT result = 0;
    const bool isList = header.idFrom == kList;
    switch (header.code) {
        case LVN_ITEMACTIVATE:
            if (isList)
                OnEnter();
            else
                GoToFileOfLog();
            return 0;
        case LVN_KEYDOWN: {
            const WORD key = reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey;
            if (isList)
                OnListKey(key);
            else
                OnLogKey(key);
            return 0;
        }
        case LVN_ITEMCHANGED:
        case LVN_ODSTATECHANGED:
            // Selecting ten thousand rows may come as ten thousand notifications.
            if (isList && !std::exchange(m_isStatusOld, true)) PostMessageW(m_frame, kShowStatus, 0, 0);
            return 0;
        default: break;
    }
    if (isList) m_content->list.OnNotification(header, result);
    if (header.idFrom == kLog) m_content->log.OnNotification(header, result);
    return result;
}

void PanelWindow::OnListKey(WORD key) {
    const bool isControl = GetKeyState(VK_CONTROL) < 0;
    if (key == VK_BACK) OnCommand(PanelCommand::Up);
    if (key == 'A' && isControl) OnCommand(PanelCommand::SelectAll);
}

void PanelWindow::OnLogKey(WORD key) {
    if (GetKeyState(VK_CONTROL) >= 0) return;
    if (key == 'C') m_content->log.Copy();
    if (key == 'A') m_content->log.SelectAll();
}

void PanelWindow::OnActivate(bool isActive) {
    if (!isActive) {
        if (IsChild(m_frame, GetFocus())) m_lastFocus = GetFocus();
        return;
    }
    // A button may have been disabled meanwhile: then the keys go to the list and not to nowhere.
    const bool isUsable = m_lastFocus && IsWindowEnabled(m_lastFocus);
    SetFocus(isUsable ? m_lastFocus : m_content->list.Window());
}

}  // namespace QVHost
