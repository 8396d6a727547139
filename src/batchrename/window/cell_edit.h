// cell_edit.h - an edit control over one cell of a list view, for lists whose cells are edited where they are.
#pragma once

#include <string>

#include "win32/windows.h"

namespace BatchRename {

/// Notification codes of the edit control, beside those that every edit control has: how it came to its end. The window
/// that gets one destroys the control.
namespace CellEnd {
inline constexpr int Taken = 0x4001;  // by Enter, and where another control gets the focus
inline constexpr int Next = 0x4002;   // by Tab
inline constexpr int Former = 0x4003;
inline constexpr int Cancelled = 0x4004;  // by Escape
}  // namespace CellEnd

/// Opens the control and gives it the focus. It is a sibling of the list, has the number `id`, and takes `limit` UTF-16
/// units. Null when the system has no window for it.
HWND OpenCell(HWND list, int row, int column, const std::wstring& text, int id, size_t limit);

}  // namespace BatchRename
