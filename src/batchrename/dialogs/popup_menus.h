// popup_menus.h - the menus that open at buttons: tags for a template, and profiles.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "batchrename/profiles.h"
#include "ui/controls.h"
#include "win32/handle.h"

namespace BatchRename {

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

/// What was chosen in the tag menu: a tag, or, with an empty text, the dialog for property tags.
std::optional<std::wstring> PickTag(HWND owner, HWND button, const Ui::HostTexts& texts);

enum class ProfileAction { Load, SaveAs, Delete };
struct ProfileChoice {
    ProfileAction action = ProfileAction::Load;
    RenameProfile profile;  // the one chosen, since others may have its name
};
/// The names in file order, then "Save as" and "Delete".
std::optional<ProfileChoice> PickProfile(HWND owner, HWND button, const std::vector<RenameProfile>& profiles,
                                         const Ui::HostTexts& texts);

}  // namespace BatchRename
