// row_list_actions.cpp - what keys, the mouse and the menu do to the rows of the list.
#include <algorithm>

#include "batchrename/window/row_list_view.h"
#include "batchrename/window/row_menu.h"
#include "ui/controls.h"

namespace BatchRename {

bool RowListView::GoToProblem(bool isBack) {
    const LRESULT focused = SendMessageW(m_window, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
    const std::optional<size_t> place = NextProblem(m_rows.MarksOfPlaces(), static_cast<size_t>(focused), isBack);
    if (!place) return false;
    Ui::SelectRow(m_window, static_cast<int>(*place));
    SetFocus(m_window);
    return true;
}

void RowListView::SelectAll() {
    LVITEMW state = {};
    state.state = LVIS_SELECTED;
    state.stateMask = LVIS_SELECTED;
    SendMessageW(m_window, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&state));
}

void RowListView::Copy(const std::vector<bool>& isMarked) const {
    std::wstring text;
    for (size_t row = 0; row < isMarked.size(); ++row)
        if (isMarked[row]) text += m_rows.OldName(row) + L'\t' + m_rows.NewName(row) + L"\r\n";
    if (!text.empty()) Ui::PutOnClipboard(m_window, text);
}

void RowListView::Act(RowAction action) {
    const std::vector<bool> isMarked = TargetRows();
    switch (action) {
        case RowAction::Name: return EditName(Ui::FocusedRow(m_window));
        case RowAction::DropName: return m_listener.OnName(isMarked, {});
        case RowAction::Copy: return Copy(isMarked);
        case RowAction::SelectAll: return SelectAll();
        case RowAction::NextProblem:
            if (!GoToProblem(false)) MessageBeep(MB_OK);
            return;
        default: return m_listener.OnRows(action, isMarked);
    }
}

void RowListView::OnKey(WORD key) {
    const bool isControl = GetKeyState(VK_CONTROL) < 0;
    const bool isShift = GetKeyState(VK_SHIFT) < 0;
    switch (key) {
        case VK_DELETE: return Act(RowAction::TakeOut);
        case VK_F2: return Act(isShift ? RowAction::DropName : RowAction::Name);
        default: break;
    }
    if (!isControl) return;
    switch (key) {
        case VK_INSERT:
        case L'C': return Act(RowAction::Copy);
        case L'A': return Act(RowAction::SelectAll);
        case L'K': return Act(RowAction::Keep);
        case L'O': return Act(RowAction::OpenFolder);
        default: break;
    }
}

bool RowListView::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        // The blank is the key of the boxes: the control would select its row alone, and look for a name that begins
        // with it.
        case WM_KEYDOWN:
            if (wParam != VK_SPACE || GetKeyState(VK_CONTROL) < 0) return false;
            ToggleCheck(Ui::FocusedRow(m_window));
            return true;
        case WM_CHAR: return wParam == L' ';
        case WM_CONTEXTMENU:
            ShowMenu({static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
            return true;
        // The field would stand over another row.
        case WM_VSCROLL:
        case WM_HSCROLL:
        case WM_MOUSEWHEEL:
        case WM_SIZE: m_edit.Close(true); return false;
        default: return false;
    }
}

void RowListView::OnClick(POINT point, bool isDouble) {
    LVHITTESTINFO hit = {};
    hit.pt = point;
    const LRESULT place = SendMessageW(m_window, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    if (place < 0) return;
    if (hit.flags == LVHT_ONITEMSTATEICON)
        ToggleCheck(static_cast<int>(place));
    else if (isDouble)
        EditName(static_cast<int>(place));
}

void RowListView::ToggleCheck(int place) {
    if (place < 0 || static_cast<size_t>(place) >= m_rows.PlaceCount() || !m_listener.CanChangeRows()) return;
    const size_t row = m_rows.RowAt(static_cast<size_t>(place));
    // A box among the selected ones is for all of them.
    std::vector<bool> isMarked = SelectedRows();
    if (!isMarked[row]) isMarked.assign(isMarked.size(), false);
    isMarked[row] = true;
    m_listener.OnRows(m_rows.IsChecked(row) ? RowAction::Uncheck : RowAction::Check, isMarked);
}

std::vector<bool> RowListView::TargetRows() const {
    std::vector<bool> isMarked = SelectedRows();
    if (std::ranges::find(isMarked, true) != isMarked.end()) return isMarked;
    const int focused = Ui::FocusedRow(m_window);
    if (focused >= 0 && static_cast<size_t>(focused) < m_rows.PlaceCount())
        isMarked[m_rows.RowAt(static_cast<size_t>(focused))] = true;
    return isMarked;
}

void RowListView::ShowMenu(POINT point) {
    const int focused = Ui::FocusedRow(m_window);
    if (point.x == -1 && point.y == -1) {  // by a key
        RECT cell = {};
        cell.left = LVIR_LABEL;
        SendMessageW(m_window, LVM_GETITEMRECT, static_cast<WPARAM>(std::max(focused, 0)),
                     reinterpret_cast<LPARAM>(&cell));
        point = {cell.left, cell.bottom};
        ClientToScreen(m_window, &point);
    }
    const std::vector<bool> isMarked = TargetRows();
    RowMenuState state;
    state.canChange = m_listener.CanChangeRows();
    state.canName = m_listener.CanNameRows();
    state.hasProblems = m_rows.Counts().problems > 0;
    for (size_t row = 0; row < isMarked.size(); ++row) {
        if (!isMarked[row]) continue;
        state.hasRows = true;
        if (!(*m_rows.Rows())[row]->ownName.empty()) state.hasOwnName = true;
    }
    std::optional<RowAction> action;
    m_listener.RunModal([&] { action = PickRowAction(m_window, point, state, m_texts); });
    if (action) Act(*action);
}

void RowListView::EditName(int place) {
    if (place < 0 || static_cast<size_t>(place) >= m_rows.PlaceCount()) return;
    if (!m_listener.CanNameRows()) return m_listener.OnRows(RowAction::Name, {});
    const size_t row = m_rows.RowAt(static_cast<size_t>(place));
    const std::wstring name = m_rows.NewName(row).empty() ? m_rows.OldName(row) : m_rows.NewName(row);
    SendMessageW(m_window, LVM_ENSUREVISIBLE, static_cast<WPARAM>(place), FALSE);
    RECT cell = {};
    cell.top = static_cast<int>(RowColumn::NewName);
    cell.left = LVIR_LABEL;
    SendMessageW(m_window, LVM_GETSUBITEMRECT, static_cast<WPARAM>(place), reinterpret_cast<LPARAM>(&cell));
    m_edit.Open(m_window, cell, name, [this, row, place, name](const std::wstring& typed, NameEdit::Next next) {
        if (typed != name && row < m_rows.Rows()->size()) {
            std::vector<bool> isMarked(m_rows.Rows()->size(), false);
            isMarked[row] = true;
            m_listener.OnName(isMarked, typed);
        }
        if (next == NameEdit::Next::Nothing) return;
        const int other = next == NameEdit::Next::RowBelow ? place + 1 : place - 1;
        if (other < 0 || static_cast<size_t>(other) >= m_rows.PlaceCount()) return;
        Ui::SelectRow(m_window, other);
        EditName(other);
    });
}

}  // namespace BatchRename
