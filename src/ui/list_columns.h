// list_columns.h - columns of a list view in report form, and selecting in it.
#pragma once

#include <span>
#include <string>

#include "win32/windows.h"

namespace Ui {

struct ListColumn {
    const wchar_t* title;
    int width;  // in sixteenths of an average character of the list's font: so it grows with the font
};

/// Adds the columns, and selects whole rows.
void AddColumns(HWND list, std::span<const ListColumn> columns);
void SetListText(HWND list, int row, int column, const std::wstring& text);
/// The first selected row, or -1.
int SelectedRow(HWND list);
/// Selects this row alone and brings it into view.
void SelectRow(HWND list, int row);
/// Copies a text into the buffer that a list view offers for it, cut to its capacity.
void FillItemText(LPWSTR buffer, int capacity, const std::wstring& text);

}  // namespace Ui
