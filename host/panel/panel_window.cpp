#include "host/panel/panel_window.h"

#include <algorithm>
#include <array>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/unix_paths.h"
#include "host/contract/host_boundary.h"
#include "sdk/text_format.h"
#include "win32/path.h"
#include "win32/window_text.h"

#include <shlobj.h>
#include <shlwapi.h>

namespace QVHost {
namespace {

using Quorvane::SDK::FormatText;

constexpr wchar_t kClass[] = L"QVHostPanel";

enum ControlId : int { kList = 10, kLog, kAddress, kStatus, kLabel };

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

std::wstring SizeText(uint64_t bytes) {
    std::array<wchar_t, 64> text = {};
    StrFormatByteSizeW(static_cast<LONGLONG>(bytes), text.data(), static_cast<UINT>(text.size()));
    return text.data();
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
    windowClass.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    windowClass.lpszClassName = kClass;
    RegisterClassExW(&windowClass);  // a second panel of this process finds it there
    RECT desk = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &desk, 0);
    const int width = std::min(m_look.Scaled(kWidth), static_cast<int>(desk.right - desk.left));
    const int height = std::min(m_look.Scaled(kHeight), static_cast<int>(desk.bottom - desk.top));
    m_frame = CreateWindowExW(WS_EX_ACCEPTFILES, kClass, Text(PanelText::Program).c_str(),
                              WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, CW_USEDEFAULT, width, height,
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
    Layout();
    if (paths.size() == 1)
        GoTo(paths.front());
    else
        GoToAll(paths);
    m_before.clear();  // there is no way back before the first folder
    ShowAddress();
    m_isOpen = true;
    ShowWindow(m_frame, SW_SHOWDEFAULT);
    m_lastFocus = m_content->list.Window();
    SetFocus(m_lastFocus);
}

bool PanelWindow::PreTranslate(MSG& message) {
    if (m_isBusy || !m_content || (message.hwnd != m_frame && !IsChild(m_frame, message.hwnd))) return false;
    return TranslateAcceleratorW(m_frame, m_keys.Get(), &message) != 0 || IsDialogMessageW(m_frame, &message) != FALSE;
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
    if (m_content) m_content->log.Add(text, tone);
}

void PanelWindow::MarkFile(const std::wstring& path, uint32_t kind) {
    if (m_content) m_content->list.Mark(path, kind);
}

void PanelWindow::FileRenamed(const std::wstring& before, const std::wstring& now) {
    if (m_content) m_content->list.NoteRenamed(before, now);
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
        case WM_SYSCOLORCHANGE:
        case WM_SETTINGCHANGE:
            // The system tells the frame only, and the lists keep colours of their own.
            m_look.ReadContrast();
            for (const HWND list : {m_content->list.Window(), m_content->log.Window()})
                SendMessageW(list, WM_SYSCOLORCHANGE, 0, 0);
            RedrawWindow(m_frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
            return 0;
        case WM_GETMINMAXINFO:
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {m_look.Scaled(kWidth / 2),
                                                                     m_look.Scaled(kHeight / 2)};
            return 0;
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
            ShowWindow(m_frame, SW_HIDE);
            return 0;
        default: return DefWindowProcW(m_frame, message, wParam, lParam);
    }
}

void PanelWindow::Layout() const {
    RECT area = {};
    GetClientRect(m_frame, &area);
    SendMessageW(m_content->status, WM_SIZE, 0, 0);
    RECT status = {};
    GetWindowRect(m_content->status, &status);
    const int margin = m_look.Scaled(kMargin);
    const int bar = m_look.Scaled(kBarHeight);
    const int button = m_look.Scaled(kButtonWidth);
    const int label = m_look.Scaled(kLabelWidth);
    int x = margin;
    const auto place = [&](HWND control, int width) {
        MoveWindow(control, x, margin, width, bar, TRUE);
        x += width + margin;
    };
    place(m_content->back, button);
    place(m_content->up, button);
    place(m_content->label, label);
    // A field of one line shows its text at the top: it is made as high as the text needs.
    const int field = m_look.Scaled(kFieldHeight);
    MoveWindow(m_content->address, x, margin + (bar - field) / 2,
               std::max(0, static_cast<int>(area.right) - margin - x), field, TRUE);
    const int top = bar + 2 * margin;
    const int height = std::max(0, static_cast<int>(area.bottom - (status.bottom - status.top)) - top);
    const int log = height / kLogShare;
    const int width = static_cast<int>(area.right);
    MoveWindow(m_content->list.Window(), 0, top, width, height - log - margin, TRUE);
    MoveWindow(m_content->log.Window(), 0, top + height - log, width, log, TRUE);
}

LRESULT PanelWindow::OnNotification(NMHDR& header) {
    LRESULT result = 0;
    const bool isList = header.idFrom == kList;
    switch (header.code) {
        case LVN_ITEMACTIVATE:
            if (isList) OnEnter();
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

void PanelWindow::OnCommand(WORD command) {
    if (m_isBusy) return;
    switch (command) {
        case IDOK: OnEnter(); return;
        case IDCANCEL:
            // Escape: what was typed for a folder is given up.
            ShowAddress();
            SetFocus(m_content->list.Window());
            return;
        case PanelCommand::OpenFolder: ChooseFolder(); return;
        case PanelCommand::Up: GoUp(); return;
        case PanelCommand::Back: GoBack(); return;
        case PanelCommand::Refresh: Refresh(); return;
        case PanelCommand::SelectAll: m_content->list.SelectAll(); return;
        case PanelCommand::CopyLog: m_content->log.Copy(); return;
        case PanelCommand::ClearLog: m_content->log.Clear(); return;
        case PanelCommand::Exit: PostMessageW(m_frame, WM_CLOSE, 0, 0); return;
        case PanelCommand::Address:
            SetFocus(m_content->address);
            SendMessageW(m_content->address, EM_SETSEL, 0, -1);
            return;
        default: break;
    }
    if (const MenuModel::Command* const chosen = CommandBehind(m_session.State().menus, command))
        RunCommand(chosen->id);
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

void PanelWindow::OnAddress() {
    const std::wstring typed = FromUnixPath(Win32::WindowText(m_content->address));
    const std::wstring& folder = m_content->list.Folder();
    // A name alone is looked for in the folder that is shown.
    const bool isRelative = !folder.empty() && PathIsRelativeW(typed.c_str());
    if (GoTo(FullUserPath(isRelative ? Win32::JoinPath(folder, typed) : typed))) {
        SetFocus(m_content->list.Window());
        return;
    }
    // Most likely a letter is wrong in it: it stays, to be mended.
    SetWindowTextW(m_content->address, typed.c_str());
    SendMessageW(m_content->address, EM_SETSEL, 0, -1);
}

void PanelWindow::OnEnter() {
    const HWND focus = GetFocus();
    if (focus == m_content->address) {
        OnAddress();
        return;
    }
    const std::wstring path = m_content->list.FocusedPath();
    if (focus != m_content->list.Window() || path.empty()) return;
    const DWORD attributes = GetFileAttributesW(Win32::ExtendedPath(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) GoTo(path);
}

void PanelWindow::OnDrop(HDROP drop) {
    std::vector<std::wstring> paths(DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0));
    for (UINT at = 0; at < paths.size(); ++at) {
        std::wstring& path = paths[at];
        path.resize(DragQueryFileW(drop, at, nullptr, 0));
        DragQueryFileW(drop, at, path.data(), static_cast<UINT>(path.size()) + 1);
    }
    DragFinish(drop);
    if (!m_isBusy && !paths.empty()) GoToAll(paths);
}

void PanelWindow::GoToAll(const std::vector<std::wstring>& paths) {
    const std::wstring folder(Win32::FolderOf(paths.front()));
    if (!ShowFolder(folder)) return;
    std::vector<std::wstring> names;
    for (const std::wstring& path : paths)
        if (EqualIgnoringCase(Win32::FolderOf(path), folder)) names.emplace_back(Win32::FileNameOf(path));
    m_content->list.Select(names);
    if (names.size() < paths.size())
        ShowLine(FormatText(Text(PanelText::OtherFolders), {static_cast<int>(paths.size() - names.size())}),
                 Tone::Note);
}

void PanelWindow::RunCommand(uint32_t id) {
    HostState& state = m_session.State();
    m_content->list.ClearMarks();
    const size_t linesBefore = m_content->log.CountOfAdded();
    m_isBusy = true;
    m_foundNothing = false;
    SendMessageW(m_content->status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(Text(PanelText::Working).c_str()));
    const bool isHandled = m_session.RunCommand(id);
    state.settings.Save();
    m_isBusy = false;
    if (!isHandled) ShowLine(FormatText(Text(PanelText::NotHandled), {id}), Tone::Failure);
    // Some commands say nothing when all went well, and extensions do nothing where nothing is selected. Where no
    // dialog was seen either, people would wonder.
    const MenuModel::Command* const command = state.menus.Find(id);
    if (command && m_content->log.CountOfAdded() == linesBefore && (m_foundNothing || !OpensDialog(*command))) {
        const PanelText text = m_foundNothing ? PanelText::NothingSelected : PanelText::Ended;
        ShowLine(FormatText(Text(text), {TitleOf(*command)}), Tone::Note);
    }
    Refresh();
}

bool PanelWindow::GoTo(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(Win32::ExtendedPath(path).c_str());
    const bool isFile = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    if (!isFile) return ShowFolder(path);
    if (!ShowFolder(std::wstring(Win32::FolderOf(path)))) return false;
    m_content->list.Select({std::wstring(Win32::FileNameOf(path))});
    return true;
}

bool PanelWindow::ShowFolder(const std::wstring& folder, const std::wstring& focused, Way way) {
    const std::wstring shown(Win32::WithoutSeparator(folder));
    const std::wstring before = m_content->list.Folder();
    if (const uint32_t error = m_content->list.Open(shown, focused)) {
        ShowLine(FormatText(Text(PanelText::CannotOpen), {shown, DescribeError(error)}), Tone::Failure);
        MessageBeep(MB_ICONWARNING);
        ShowAddress();
        return false;
    }
    if (before != shown && way == Way::Forward) m_before.push_back(before);
    ShowAddress();
    ShowStatus();
    return true;
}

void PanelWindow::GoUp() {
    const std::wstring folder = m_content->list.Folder();
    if (folder.empty()) return;
    const std::wstring above = FolderAbove(folder);
    ShowFolder(above, above.empty() ? folder : std::wstring(Win32::FileNameOf(folder)));
}

void PanelWindow::GoBack() {
    if (m_before.empty()) return;
    const std::wstring folder = m_before.back();
    m_before.pop_back();
    ShowFolder(folder, {}, Way::Back);
}

void PanelWindow::ChooseFolder() {
    const std::wstring title = Text(PanelText::ChooseFolder);
    BROWSEINFOW browse = {};
    browse.hwndOwner = m_frame;
    browse.lpszTitle = title.c_str();
    browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE | BIF_NONEWFOLDERBUTTON;
    PIDLIST_ABSOLUTE const chosen = SHBrowseForFolderW(&browse);
    if (!chosen) return;
    std::array<wchar_t, MAX_PATH> path = {};  // the dialog gives no longer one; the address field takes any
    const bool hasPath = SHGetPathFromIDListW(chosen, path.data()) != FALSE;
    CoTaskMemFree(chosen);
    if (hasPath) GoTo(path.data());
}

void PanelWindow::Refresh() {
    // While a command runs, its files are its own; it is followed by a refresh.
    if (m_isBusy) return;
    if (const uint32_t error = m_content->list.Refresh()) {
        ShowLine(FormatText(Text(PanelText::CannotOpen), {m_content->list.Folder(), DescribeError(error)}),
                 Tone::Failure);
        return;
    }
    ShowStatus();
}

void PanelWindow::ShowAddress() const {
    const std::wstring& folder = m_content->list.Folder();
    const std::wstring shown = folder.empty() ? Text(PanelText::Drives) : folder;
    SetWindowTextW(m_content->address, shown.c_str());
    SetWindowTextW(m_frame, (shown + L" - " + Text(PanelText::Program)).c_str());
    EnableWindow(m_content->up, !folder.empty());
    EnableWindow(m_content->back, !m_before.empty());
}

void PanelWindow::ShowStatus() const {
    m_isStatusOld = false;
    if (m_isBusy) return;
    const FolderView& list = m_content->list;
    const size_t selected = list.CountOfSelected();
    const std::wstring text =
        selected == 0 ? FormatText(Text(PanelText::CountOfItems), {uint64_t{list.Count()}})
                      : FormatText(Text(PanelText::CountOfSelected),
                                   {uint64_t{selected}, uint64_t{list.Count()}, SizeText(list.SizeOfSelected())});
    SendMessageW(m_content->status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

}  // namespace QVHost
