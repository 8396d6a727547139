#include "ui/list_columns.h"

#include <algorithm>

#include <commctrl.h>

namespace Ui {
namespace {

constexpr int kUnit = 16;
constexpr wchar_t kSample[] = L"abcdefghijklmnopqrstuvwxyz";

}  // namespace

void AddColumns(HWND list, std::span<const ListColumn> columns) {
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    const LRESULT sample = SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(kSample));
    const int character = std::max(static_cast<int>(sample) / 26, 1);
    int index = 0;
    for (const ListColumn& column : columns) {
        std::wstring title = column.title;
        LVCOLUMNW added = {};
        added.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        added.pszText = title.data();
        added.cx = column.width * character / kUnit;
        added.iSubItem = index;
        SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(index++), reinterpret_cast<LPARAM>(&added));
    }
}

void SetListText(HWND list, int row, int column, const std::wstring& text) {
    std::wstring copy = text;
    LVITEMW item = {};
    item.mask = LVIF_TEXT;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = copy.data();
    SendMessageW(list, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

int SelectedRow(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void SelectRow(HWND list, int row) {
    LVITEMW state = {};
    state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&state));
    state.state = state.stateMask;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
    SendMessageW(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}

void FillItemText(LPWSTR buffer, int capacity, const std::wstring& text) {
    if (!buffer || capacity <= 0) return;
    const size_t length = std::min(text.size(), static_cast<size_t>(capacity) - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = L'\0';
}

}  // namespace Ui
