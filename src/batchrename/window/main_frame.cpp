#include "batchrename/window/main_frame.h"

#include <algorithm>
#include <new>
#include <system_error>

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/qv_batch_rename.h"
#include "batchrename/rule_context.h"
#include "sdk/boundary.h"
#include "ui/activation_context.h"
#include "ui/system_ink.h"
#include "win32/window_position.h"

namespace BatchRename {
namespace {

constexpr wchar_t kPositionKey[] = L"WinPos";
constexpr uint32_t kPositionCapacity = 256;  // units
constexpr int kSplitterHeight = 6;           // these are pixels at 96 to the inch
constexpr int kSplitterStep = 16;            // by which a key moves the bar
constexpr int kSmallestList = 100;
constexpr int kUsualWidth = 960;
constexpr int kUsualHeight = 640;
constexpr WPARAM kAgain = 1;
constexpr DWORD kPauseBeforeRetry = 100;  // milliseconds

[[noreturn]] void ThrowLastError(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

void RegisterFrameClass(WNDPROC procedure) {
    WNDCLASSEXW description = {};
    description.cbSize = sizeof(description);
    description.lpfnWndProc = procedure;
    description.hInstance = Ui::OwnModule();
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    description.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);  // whatever colour that is then
    description.lpszClassName = kFrameClass;
    if (!RegisterClassExW(&description) && GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
        ThrowLastError("The window's class cannot be registered");
}

RECT ClientOf(HWND window) {
    RECT rect = {};
    GetClientRect(window, &rect);
    return rect;
}

int HeightOf(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return rect.bottom - rect.top;
}

}  // namespace

BatchRenameMainFrame::BatchRenameMainFrame(const FrameEnvironment& environment)
    : m_environment(environment),
      m_model(*this, environment.context.rule, LocalTimeNow(), Quorvane::SDK::Words(Texts())),
      m_list(m_model.Rows(), *this, Texts()) {}

BatchRenameMainFrame::~BatchRenameMainFrame() {
    CloseWindow();
    // A class whose procedure is in unloaded code would end the next program that uses its name.
    UnregisterClassW(kFrameClass, Ui::OwnModule());
}

void BatchRenameMainFrame::Create() {
    RegisterFrameClass(Procedure);
    const HWND window = CreateWindowExW(WS_EX_CONTROLPARENT | WS_EX_APPWINDOW, kFrameClass, kFrameTitle,
                                        WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT,
                                        kUsualWidth, kUsualHeight, nullptr, nullptr, Ui::OwnModule(), this);
    if (!window) ThrowLastError("The window cannot be made");
    RestorePosition();
    SetForegroundWindow(m_window);
    SetFocus(m_panel->Button(IDC_NAME_TEMPLATE));
    SendMessageW(m_panel->Button(IDC_NAME_TEMPLATE), EM_SETSEL, 0, -1);
}

BatchRenameMainFrame* BatchRenameMainFrame::FromWindow(HWND window) {
    return window ? reinterpret_cast<BatchRenameMainFrame*>(GetWindowLongPtrW(window, GWLP_USERDATA)) : nullptr;
}

LRESULT CALLBACK BatchRenameMainFrame::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        auto* const self =
            static_cast<BatchRenameMainFrame*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
        self->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* const self = reinterpret_cast<BatchRenameMainFrame*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!self) return DefWindowProcW(window, message, wParam, lParam);
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        self->m_window = nullptr;
        return DefWindowProcW(window, message, wParam, lParam);
    }
    try {
        return self->OnMessage(message, wParam, lParam);
    } catch (...) {
        // No exception may pass through the system. A window that could not be made ends; otherwise what was asked for
        // was not done (memory has run out, most likely), and everything else still works.
        return message == WM_CREATE ? -1 : 0;
    }
}

LRESULT BatchRenameMainFrame::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE: OnCreate(); return 0;
        case WM_SIZE: Layout(); return 0;
        case WM_DPICHANGED: OnScaleChange(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam)); return 0;
        case WM_GETMINMAXINFO: LimitSize(*reinterpret_cast<MINMAXINFO*>(lParam)); return 0;
        case WM_SETFOCUS:
            if (m_lastFocus) SetFocus(m_lastFocus);
            return 0;
        case WM_ACTIVATE:
            if (LOWORD(wParam) == WA_INACTIVE) m_list.EndEdit();  // its field must not be where the focus returns
            if (LOWORD(wParam) == WA_INACTIVE && IsChild(m_window, GetFocus())) m_lastFocus = GetFocus();
            break;
        case WM_NEXTDLGCTL: MoveFocus(wParam, LOWORD(lParam) != 0); return 0;
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED: OnColours(); return 0;
        case WM_HELP: OpenGuide(); return TRUE;
        case WM_NOTIFY: {
            auto& header = *reinterpret_cast<NMHDR*>(lParam);
            if (header.hwndFrom == m_list.GetWindow())
                if (const std::optional<LRESULT> answer = m_list.OnNotify(header)) return *answer;
            break;
        }
        case WM_SETCURSOR:
        case WM_LBUTTONDOWN:
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
            if (OnSplitter(message, lParam)) return TRUE;
            break;
        case WM_COMMAND:
            if (LOWORD(wParam) != kRenameCommand) return 0;
            if (IsIconic(m_window)) ShowWindow(m_window, SW_RESTORE);
            SetForegroundWindow(GetLastActivePopup(m_window));  // an open dialog: the window itself takes no key
            return 0;
        case FrameMessage::PreviewReady: m_model.OnPreview(m_preview->Take()); return 0;
        case FrameMessage::RunProgress: m_model.OnRunProgress(static_cast<uint32_t>(wParam)); return 0;
        case FrameMessage::RunUnrecorded: m_model.OnRunUnrecorded(static_cast<uint32_t>(wParam)); return 0;
        case FrameMessage::RunEnded: OnRunEnd(wParam == kAgain); return 0;
        case WM_CLOSE: m_model.OnClose(m_environment.isClosing); return 0;
        case WM_DESTROY: OnDestroy(); return 0;
        default: break;
    }
    return DefWindowProcW(m_window, message, wParam, lParam);
}

void BatchRenameMainFrame::OnCreate() {
    m_dotsPerInch = Win32::DotsPerInch(m_window);
    m_panel = std::make_unique<RulePanel>(Texts(), static_cast<IPaneListener&>(*this));
    // Made first: the list comes before the panel in the order of tabs, but shares the panel's font.
    m_panel->Create(m_window);
    const auto font = reinterpret_cast<HFONT>(SendMessageW(m_panel->GetWindow(), WM_GETFONT, 0, 0));
    m_list.Create(m_window, IDC_ROWS, font);
    SetWindowPos(m_list.GetWindow(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    m_statusBar =
        CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0, m_window,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_STATUS_BAR)), Ui::OwnModule(), nullptr);
    SendMessageW(m_statusBar, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    m_wishedHeight = m_panel->NaturalSize().cy;
    // The window's handle, not the window: it may be gone when a thread has something to say.
    const HWND window = m_window;
    m_preview = std::make_unique<PreviewWorker>(m_environment.services,
                                                [window] { PostMessageW(window, FrameMessage::PreviewReady, 0, 0); });
    m_run = std::make_unique<RunController>(
        m_environment.services, m_environment.context.isStopped,
        [window](uint32_t count) { PostMessageW(window, FrameMessage::RunProgress, count, 0); },
        [window](uint32_t code) { PostMessageW(window, FrameMessage::RunUnrecorded, code, 0); },
        [window] { PostMessageW(window, FrameMessage::RunEnded, 0, 0); });
    m_panel->SetRule(m_environment.context.rule);
    m_model.ShowState();
}

void BatchRenameMainFrame::OnRunEnd(bool isAgain) {
    if (isAgain && m_model.IsRunning()) return;  // a newer one, which ends by itself
    try {
        m_model.OnRunEnd(m_run->Result());
    } catch (const std::bad_alloc&) {
        // Until it is shown: the next time there may be memory for that.
        Sleep(kPauseBeforeRetry);
        PostMessageW(m_window, FrameMessage::RunEnded, kAgain, 0);
    }
}

void BatchRenameMainFrame::MoveFocus(WPARAM where, bool isControl) {
    // The system's dialogs do this by themselves; keys of labels and Tab count on it in every window.
    const HWND control =
        isControl ? reinterpret_cast<HWND>(where) : GetNextDlgTabItem(m_window, GetFocus(), where != 0);
    if (!control) return;
    SetFocus(control);
    if (SendMessageW(control, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) SendMessageW(control, EM_SETSEL, 0, -1);
}

void BatchRenameMainFrame::CloseWindow() {
    if (!m_window) return;
    SavePosition();  // while it is seen: a host may take a window that is not for the end
    DestroyWindow(m_window);
}

void BatchRenameMainFrame::OnDestroy() {
    // Both wait for their threads; the run's ends after its current row.
    m_run.reset();
    m_preview.reset();
    PostQuitMessage(0);
}

int BatchRenameMainFrame::SplitterTop() const {
    return ClientOf(m_window).bottom - HeightOf(m_statusBar) - m_panelHeight - Scaled(kSplitterHeight);
}

void BatchRenameMainFrame::Layout() {
    if (!m_statusBar || IsIconic(m_window)) return;
    SendMessageW(m_statusBar, WM_SIZE, 0, 0);
    InvalidateRect(m_statusBar, nullptr, TRUE);  // its corner has moved
    const RECT client = ClientOf(m_window);
    const int available = client.bottom - HeightOf(m_statusBar) - Scaled(kSplitterHeight);
    // Some rows are always in sight: what the panel then has no space for, it scrolls.
    const int most = std::max(available - Scaled(kSmallestList), available / 2);
    m_panelHeight = std::clamp(m_wishedHeight, std::min(m_panel->HeightFor(client.right), most), most);
    const int top = SplitterTop();
    // What the panes showed is not carried along: it would cover what the frame, or the other pane, shows there now.
    HDWP moves = BeginDeferWindowPos(2);
    const auto place = [&](HWND window, int y, int height) {
        if (moves)
            moves = DeferWindowPos(moves, window, nullptr, 0, y, client.right, std::max(height, 0),
                                   SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    };
    place(m_list.GetWindow(), 0, top);
    place(m_panel->GetWindow(), top + Scaled(kSplitterHeight), m_panelHeight);
    if (moves) EndDeferWindowPos(moves);
    m_list.FillWidth();
}

bool BatchRenameMainFrame::OnSplitter(UINT message, LPARAM lParam) {
    POINT mouse = {};
    GetCursorPos(&mouse);
    ScreenToClient(m_window, &mouse);
    const bool isOver = m_isDragging || (mouse.y >= SplitterTop() && mouse.y < SplitterTop() + Scaled(kSplitterHeight));
    switch (message) {
        case WM_SETCURSOR:
            if (LOWORD(lParam) != HTCLIENT || !isOver) return false;
            SetCursor(LoadCursorW(nullptr, IDC_SIZENS));
            return true;
        case WM_LBUTTONDOWN:
            if (!isOver) return false;
            m_isDragging = true;
            SetCapture(m_window);
            return true;
        case WM_MOUSEMOVE:
            if (!m_isDragging) return false;
            m_wishedHeight = ClientOf(m_window).bottom - HeightOf(m_statusBar) - mouse.y - Scaled(kSplitterHeight) / 2;
            Layout();
            return true;
        case WM_LBUTTONUP:
            if (m_isDragging) ReleaseCapture();
            return m_isDragging;
        default: m_isDragging = false; return false;
    }
}

int BatchRenameMainFrame::Scaled(int pixels) const {
    return MulDiv(pixels, static_cast<int>(m_dotsPerInch), USER_DEFAULT_SCREEN_DPI);
}

void BatchRenameMainFrame::OnScaleChange(UINT dotsPerInch, const RECT& suggested) {
    m_wishedHeight = Win32::Rescaled(m_wishedHeight, m_dotsPerInch, dotsPerInch);
    m_panel->Rescale(dotsPerInch);
    // That of its controls: a dialog goes on telling the one that it was made with.
    const auto font = reinterpret_cast<HFONT>(SendMessageW(m_panel->Button(IDC_START), WM_GETFONT, 0, 0));
    m_list.Rescale(font);
    SendMessageW(m_statusBar, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    m_dotsPerInch = dotsPerInch;
    SetWindowPos(m_window, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                 suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    Layout();
}

void BatchRenameMainFrame::OnColours() {
    if (!m_list.GetWindow() || !m_panel || !m_statusBar) return;
    m_list.Recolour();
    Ui::TellColours(m_window);
}

void BatchRenameMainFrame::SwitchPane() {
    const HWND focus = GetFocus();
    const HWND list = m_list.GetWindow();
    if (focus == list || IsChild(list, focus)) {
        SetFocus(m_focusInRule ? m_focusInRule : m_panel->Button(IDC_NAME_TEMPLATE));
        return;
    }
    m_focusInRule = focus;
    SetFocus(list);
}

void BatchRenameMainFrame::MoveSplitter(bool isUp) {
    m_wishedHeight = m_panelHeight + (isUp ? Scaled(kSplitterStep) : -Scaled(kSplitterStep));
    Layout();
}

void BatchRenameMainFrame::LimitSize(MINMAXINFO& limits) const {
    if (!m_panel || !m_statusBar) return;
    const int width = m_panel->LeastWidth();
    RECT rect = {0, 0, width,
                 Scaled(kSmallestList + kSplitterHeight) + m_panel->HeightFor(width) + HeightOf(m_statusBar)};
    AdjustWindowRectEx(&rect, WS_OVERLAPPEDWINDOW, FALSE, 0);
    RECT window = {};
    GetWindowRect(m_window, &window);
    const RECT screen = Win32::WorkAreaNear(window);
    limits.ptMinTrackSize = {std::min(rect.right - rect.left, screen.right - screen.left),
                             std::min(rect.bottom - rect.top, screen.bottom - screen.top)};
}

void BatchRenameMainFrame::RestorePosition() {
    // Where the system has put it, unless it has had a place of its own.
    Win32::WindowPosition position = Win32::PositionOf(m_window, 0);
    position.right = position.left + kUsualWidth;
    position.bottom = position.top + kUsualHeight;
    wchar_t text[kPositionCapacity + 1] = {};  // it ends whatever the host does
    Quorvane::SDK::ISettings* const settings = m_environment.services ? m_environment.services->GetSettings() : nullptr;
    if (settings && settings->GetString(1, kSettingsSection, kPositionKey, text, kPositionCapacity))
        position = Win32::ParseWindowPosition(text).value_or(position);
    m_wishedHeight = std::max(Win32::PlaceWindow(m_window, position), m_wishedHeight);
    Layout();
    ShowWindow(m_window, position.isMaximised ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL);
}

void BatchRenameMainFrame::SavePosition() const noexcept {
    // Guarded, since a window that cannot remember where it was must close all the same.
    Quorvane::SDK::AtBoundary(false, [&] {
        Quorvane::SDK::ISettings* const settings =
            m_environment.services ? m_environment.services->GetSettings() : nullptr;
        if (!settings) return false;
        const std::wstring text = Win32::FormatWindowPosition(Win32::PositionOf(m_window, m_wishedHeight));
        return settings->SetString(1, kSettingsSection, kPositionKey, text.c_str());
    });
}

bool BatchRenameMainFrame::PreTranslate(MSG& message) {
    if (!m_window || (message.hwnd != m_window && !IsChild(m_window, message.hwnd))) return false;
    if (OnKey(message) || Ui::SelectAllByKey(message)) return true;
    // A letter without Alt is its control's alone: on a button the system would take it for the key of another.
    return message.message != WM_CHAR && IsDialogMessageW(m_window, &message);
}

bool BatchRenameMainFrame::OnKey(const MSG& message) {
    const bool isShift = GetKeyState(VK_SHIFT) < 0;
    if (message.message == WM_KEYDOWN && message.wParam == VK_F8) {
        if (!m_list.GoToProblem(isShift)) MessageBeep(MB_OK);
        return true;
    }
    if (message.message == WM_KEYDOWN && message.wParam == VK_F5) {
        m_model.OnRefresh();
        return true;
    }
    if (message.message == WM_KEYDOWN && message.wParam == VK_F6) {
        SwitchPane();
        return true;
    }
    const bool isArrow = message.wParam == VK_UP || message.wParam == VK_DOWN;
    if (message.message == WM_KEYDOWN && isArrow && isShift && GetKeyState(VK_CONTROL) < 0) {
        MoveSplitter(message.wParam == VK_UP);
        return true;
    }
    if (message.message == WM_SYSKEYDOWN && isArrow && message.hwnd == m_list.GetWindow()) {
        m_model.OnMoveRows(m_list.TargetRows(), message.wParam == VK_UP);
        return true;
    }
    return false;
}

}  // namespace BatchRename
