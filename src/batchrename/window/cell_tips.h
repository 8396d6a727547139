// cell_tips.h - the whole text of a list's cell under the mouse, where the cell shows only a part of it.
#pragma once

#include <functional>
#include <string>

#include "win32/windows.h"

#include <commctrl.h>

namespace BatchRename {

class CellTips {
public:
    /// What a cell would show if it were wide enough.
    using TextOf = std::function<std::wstring(int place, int column)>;

    explicit CellTips(TextOf textOf) : m_textOf(std::move(textOf)) {}

    /// For this list. It goes with the list's window; without one nothing is shown.
    void Create(HWND list);
    /// A message that the list gets, before the list: true when it is answered by `result`.
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

private:
    void FollowMouse(POINT mouse);
    std::wstring TextUnderMouse() const;

    TextOf m_textOf;
    HWND m_list = nullptr;
    HWND m_tips = nullptr;
    int m_place = -1;
    int m_column = -1;
    std::wstring m_text;  // the tip's, while it is shown
};

}  // namespace BatchRename
