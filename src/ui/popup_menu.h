// popup_menu.h - a menu that opens at a button.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "win32/handle.h"

namespace Ui {

struct MenuTraits {
    using Raw = HMENU;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { DestroyMenu(raw); }
};
using MenuHandle = Win32::UniqueHandle<MenuTraits>;

/// A popup menu whose entries are numbered in the order in which they were added.
class PopupMenu {
public:
    PopupMenu() : m_menu(CreatePopupMenu()) {}

    /// The entry's number.
    int Add(const std::wstring& text, bool isEnabled = true);
    void AddSeparator();
    /// Entries with the texts of a list, one level down. The number of the first.
    int AddList(const std::wstring& title, const std::vector<std::wstring>& texts);
    /// Opens below a button. The number of the entry chosen, or -1.
    int Show(HWND owner, HWND button);

private:
    MenuHandle m_menu;
    int m_count = 0;
};

/// A name as a menu shows it: "&" would mark a key, a tab would begin another column.
std::wstring MenuText(std::wstring_view name);

}  // namespace Ui
