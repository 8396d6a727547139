// panel_window_actions.cpp - what the panel does: runs commands and tells what they did, and goes through folders.
#include <array>
#include <utility>

#include "host/app/host_text.h"
#include "host/app/unix_paths.h"
#include "host/panel/panel_window.h"
#include "sdk/text_format.h"
#include "ui/controls.h"
#include "ui/guide.h"
#include "win32/files.h"
#include "win32/path.h"
#include "win32/window_text.h"

#include <shlobj.h>
#include <shlwapi.h>

namespace QVHost {
namespace {

using Quorvane::SDK::FormatText;

std::wstring SizeText(uint64_t bytes) {
    std::array<wchar_t, 64> text = {};
    StrFormatByteSizeW(static_cast<LONGLONG>(bytes), text.data(), static_cast<UINT>(text.size()));
    return text.data();
}

}  // namespace

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
        case PanelCommand::OpenFocused: GoTo(m_content->list.FocusedPath()); return;
        case PanelCommand::CopyPaths: CopyPaths(); return;
        case PanelCommand::GoToFile: GoToFileOfLog(); return;
        case PanelCommand::SelectLog: m_content->log.SelectAll(); return;
        case PanelCommand::SwitchPane:
            SetFocus(GetFocus() == m_content->list.Window() ? m_content->log.Window() : m_content->list.Window());
            return;
        case PanelCommand::Guide:
            Ui::OpenGuide(m_frame, kPanelTopic,
                          [this](Quorvane::SDK::TextId id) { return m_session.State().texts.Find({}, id); });
            return;
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
    if (focus == m_content->log.Window()) return GoToFileOfLog();
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
    if (paths.size() == 1) {
        GoTo(paths.front());
        return;
    }
    if (!ShowFolder(std::wstring(Win32::FolderOf(paths.front())))) return;
    if (const size_t elsewhere = m_content->list.Select(paths))
        ShowLine(FormatText(Text(PanelText::OtherFolders), {static_cast<int>(elsewhere)}), Tone::Note);
}

void PanelWindow::RunCommand(uint32_t id) {
    HostState& state = m_session.State();
    m_content->list.ClearMarks();
    const size_t linesBefore = m_content->log.CountOfAdded();
    const std::wstring folder = m_content->list.Folder();
    std::vector<FolderRow> rows;
    ReadFolder(folder, rows);
    m_report.Begin(std::exchange(rows, {}));
    m_isBusy = true;
    m_foundNothing = false;
    SendMessageW(m_content->status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(Text(PanelText::Working).c_str()));
    const bool isHandled = m_session.RunCommand(id);
    state.settings.Save();
    m_isBusy = false;
    ReadFolder(folder, rows);
    const std::wstring summary = SummaryOf(m_report.End(rows));
    if (!isHandled) ShowLine(FormatText(Text(PanelText::NotHandled), {id}), Tone::Failure);
    // Some commands say nothing when all went well, and extensions do nothing where nothing is selected. Where no
    // dialog was seen either, people would wonder.
    const MenuModel::Command* const command = state.menus.Find(id);
    const bool isSilent = m_content->log.CountOfAdded() == linesBefore;
    if (command && !summary.empty()) {
        ShowLine(FormatText(Text(PanelText::Summary), {TitleOf(*command), summary}), Tone::Note);
    } else if (command && isSilent && (m_foundNothing || !OpensDialog(*command))) {
        const PanelText text = m_foundNothing ? PanelText::NothingSelected : PanelText::Ended;
        ShowLine(FormatText(Text(text), {TitleOf(*command)}), Tone::Note);
    }
    Refresh();
}

std::wstring PanelWindow::SummaryOf(const RunCounts& counts) const {
    const std::pair<PanelText, uint64_t> parts[] = {
        {PanelText::CountOfChanged, counts.changed},   {PanelText::CountOfAdded, counts.added},
        {PanelText::CountOfGone, counts.gone},         {PanelText::CountOfRenamed, counts.renamed},
        {PanelText::CountOfReplaced, counts.replaced}, {PanelText::CountOfTold, counts.told},
        {PanelText::CountOfFailed, counts.failed},     {PanelText::CountOfSkipped, counts.skipped},
    };
    std::wstring text;
    for (const auto& [part, count] : parts)
        if (count > 0) text += (text.empty() ? L"" : L", ") + FormatText(Text(part), {count});
    return text;
}

void PanelWindow::OnContextMenu(HWND control, bool isByKey, POINT place) {
    const bool isList = control == m_content->list.Window();
    if (m_isBusy || (!isList && control != m_content->log.Window())) return;
    if (isByKey) place = isList ? m_content->list.PlaceOfFocused() : m_content->log.PlaceOfFocused();
    const HostState& state = m_session.State();
    const UniqueMenu menu =
        isList ? MakeContextMenu(state.menus, m_session.State().texts, m_content->list.KindOfSelected())
               : MakeLogMenu(m_session.State().texts, m_content->log.CountOfAdded() > 0, !FileOfLog().empty());
    const int chosen = TrackPopupMenuEx(menu.Get(), TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, place.x, place.y,
                                        m_frame, nullptr);
    if (chosen > 0) OnCommand(static_cast<WORD>(chosen));
}

std::wstring PanelWindow::FileOfLog() const {
    return PathIn(m_content->log.FocusedLine(), [](const std::wstring& path) { return Win32::Exists(path); });
}

void PanelWindow::GoToFileOfLog() {
    const std::wstring path = FileOfLog();
    if (!path.empty() && GoToItem(path)) {
        SetFocus(m_content->list.Window());
        return;
    }
    MessageBeep(MB_OK);
    SendMessageW(m_content->status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(Text(PanelText::NoFileNamed).c_str()));
}

void PanelWindow::CopyPaths() {
    std::wstring text;
    for (const std::wstring& path : m_content->list.SelectedPaths()) text += path + L"\r\n";
    Ui::PutOnClipboard(m_frame, text);
}

bool PanelWindow::GoTo(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(Win32::ExtendedPath(path).c_str());
    const bool isFile = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    return isFile ? GoToItem(path) : ShowFolder(path);
}

bool PanelWindow::GoToItem(const std::wstring& path) {
    if (!ShowFolder(std::wstring(Win32::FolderOf(path)))) return false;
    m_content->list.Select({path});
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
