#include "batchrename/dialogs/undo_manager_dlg.h"

#include "batchrename/batchrename_texts.h"
#include "batchrename/dialogs/batchrename_resource.h"
#include "ui/controls.h"
#include "win32/window_text.h"

#include <utility>

#include <commctrl.h>

namespace BatchRename {
namespace {

// compatibility: 11
constexpr Ui::ListColumn kSessionColumns[] = {{Text::TimeOfRun, 848}, {Text::Items, 176}, {Text::State, 640}};
constexpr Ui::ListColumn kEntryColumns[] = {{Text::NewName, 544}, {Text::OldName, 544}, {Text::Location, 576}};

constexpr Ui::Anchor kUndoAnchors[] = {
    {IDC_SESSIONS, 0, 0, 100, 40},  {IDC_ENTRIES_LABEL, 0, 40, 0, 40},  {IDC_ENTRIES, 0, 40, 100, 100},
    {IDOK, 100, 100, 100, 100},     {IDC_DELETE, 100, 100, 100, 100},   {IDC_DELETE_ALL, 100, 100, 100, 100},
    {IDCANCEL, 100, 100, 100, 100}, {IDC_ENTRIES_HINT, 0, 100, 0, 100},
};

std::wstring StateOf(const BatchRenameUndo& session, const Quorvane::SDK::Words& say) {
    if (session.haveRestored) return say(Text::Restored);
    return session.isUnfinished ? say(Text::Unfinished) : std::wstring();
}

}  // namespace

std::wstring TextOfTime(const CalendarTime& time) {
    SYSTEMTIME system = {};
    system.wYear = static_cast<WORD>(time.year);
    system.wMonth = static_cast<WORD>(time.month);
    system.wDay = static_cast<WORD>(time.day);
    system.wHour = static_cast<WORD>(time.hour);
    system.wMinute = static_cast<WORD>(time.minute);
    system.wSecond = static_cast<WORD>(time.second);
    wchar_t date[128] = {};
    wchar_t clock[128] = {};
    GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &system, nullptr, date, 128);
    GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &system, nullptr, clock, 128);
    return std::wstring(date) + L"  " + clock;
}

BatchRenameUndoManagerDlg::BatchRenameUndoManagerDlg(UndoStore& store) : Dialog(IDD_UNDO_MANAGER), m_store(store) {
    m_store.Refresh();  // other windows and the command line record and restore too
}

std::optional<SessionChoice> BatchRenameUndoManagerDlg::Show(HWND owner) {
    if (ShowModal(owner) != IDOK || !m_shown) return std::nullopt;
    return SessionChoice{m_shown, m_entries};
}

bool BatchRenameUndoManagerDlg::OnInit() {
    MakeResizable(kUndoAnchors);
    Ui::AddColumns(Item(IDC_SESSIONS), kSessionColumns, Say());
    Ui::AddColumns(Item(IDC_ENTRIES), kEntryColumns, Say());
    FillSessions();
    SetFocus(Item(IDC_SESSIONS));
    return false;
}

void BatchRenameUndoManagerDlg::FillSessions() {
    const HWND list = Item(IDC_SESSIONS);
    SendMessageW(list, LVM_DELETEALLITEMS, 0, 0);
    int row = 0;
    for (const auto& session : m_store.Sessions()) {
        Ui::SetListText(list, row, 0, TextOfTime(session->time));
        Ui::SetListText(list, row, 1, std::to_wstring(session->entries.size()));
        Ui::SetListText(list, row++, 2, StateOf(*session, Say()));
    }
    if (row > 0) Ui::SelectRow(list, 0);
    Refresh();
}

bool BatchRenameUndoManagerDlg::OnCommand(int id, int) {
    switch (id) {
        case IDOK:
            m_entries = SelectedEntries();
            if (m_shown) End(IDOK);
            return true;
        case IDC_DELETE: DeleteAll(SelectedSessions()); return true;
        case IDC_DELETE_ALL: DeleteAll(AllSessions()); return true;
        default: return false;
    }
}

bool BatchRenameUndoManagerDlg::OnMessage(UINT message, WPARAM, LPARAM lParam) {
    if (message != WM_NOTIFY) return false;
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    if (header.idFrom == IDC_SESSIONS && header.code == LVN_ITEMCHANGED) Refresh();
    if (header.idFrom == IDC_SESSIONS && header.code == NM_DBLCLK) return OnCommand(IDOK, BN_CLICKED);
    if (header.idFrom == IDC_SESSIONS && header.code == LVN_KEYDOWN &&
        reinterpret_cast<const NMLVKEYDOWN*>(lParam)->wVKey == VK_DELETE)
        return OnCommand(IDC_DELETE, BN_CLICKED);
    if (header.idFrom != IDC_ENTRIES || header.code != LVN_GETDISPINFOW || !m_shown) return false;
    LVITEMW& item = reinterpret_cast<NMLVDISPINFOW*>(lParam)->item;
    if (!(item.mask & LVIF_TEXT) || static_cast<size_t>(item.iItem) >= m_shown->entries.size()) return true;
    const UndoEntry& entry = m_shown->entries[static_cast<size_t>(item.iItem)];
    Ui::FillItemText(item.pszText, item.cchTextMax,
                     item.iSubItem == 0   ? entry.newName
                     : item.iSubItem == 1 ? entry.oldName
                                          : entry.location);
    return true;
}

std::vector<std::shared_ptr<BatchRenameUndo>> BatchRenameUndoManagerDlg::SelectedSessions() const {
    std::vector<std::shared_ptr<BatchRenameUndo>> selected;
    const HWND list = Item(IDC_SESSIONS);
    for (int row = Ui::SelectedRow(list); row >= 0;
         row = static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)))
        if (static_cast<size_t>(row) < m_store.Sessions().size())
            selected.push_back(m_store.Sessions()[static_cast<size_t>(row)]);
    return selected;
}

std::vector<size_t> BatchRenameUndoManagerDlg::SelectedEntries() const {
    std::vector<size_t> selected;
    const HWND list = Item(IDC_ENTRIES);
    for (int row = Ui::SelectedRow(list); row >= 0;
         row = static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)))
        selected.push_back(static_cast<size_t>(row));
    return selected;
}

void BatchRenameUndoManagerDlg::Refresh() {
    const auto selected = SelectedSessions();
    // Several sessions can be deleted together, but only one can be looked at and loaded.
    const auto former = std::exchange(m_shown, selected.size() == 1 ? selected.front() : nullptr);
    const HWND list = Item(IDC_ENTRIES);
    LVITEMW none = {};
    none.stateMask = LVIS_SELECTED;
    if (m_shown != former)
        SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&none));
    SendMessageW(list, LVM_SETITEMCOUNT, m_shown ? m_shown->entries.size() : 0, 0);
    InvalidateRect(list, nullptr, TRUE);
    EnableWindow(Item(IDOK), m_shown && !m_shown->entries.empty());
    EnableWindow(Item(IDC_DELETE), !selected.empty());
    EnableWindow(Item(IDC_DELETE_ALL), !m_store.Sessions().empty());
}

void BatchRenameUndoManagerDlg::DeleteAll(const std::vector<std::shared_ptr<BatchRenameUndo>>& sessions) {
    if (sessions.empty()) return;
    const std::wstring question = Say()(Text::DeleteSessions, sessions.size()) + L"\n\n" + Say()(Text::WhatStays);
    const std::wstring title = Win32::WindowText(GetWindow());
    if (MessageBoxW(GetWindow(), question.c_str(), title.c_str(), MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) != IDYES)
        return;
    size_t failedCount = 0;
    for (const auto& session : sessions)
        if (!m_store.Delete(session)) ++failedCount;
    FillSessions();
    if (failedCount == 0) return;
    const std::wstring text = Say()(Text::SessionsNotDeleted, {failedCount, m_store.LastError()});
    MessageBoxW(GetWindow(), text.c_str(), title.c_str(), MB_OK | MB_ICONWARNING);
}

}  // namespace BatchRename
