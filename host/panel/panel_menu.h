// panel_menu.h - the panel's menu bar and keys: its own commands, then what the extensions registered.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/contract/language.h"
#include "host/contract/menus.h"
#include "win32/handle.h"

namespace QVHost {

/// The panel's own commands, as they come in WM_COMMAND. Those of extensions come as numbers from
/// `FirstOfExtensions` on.
namespace PanelCommand {
enum : WORD {
    OpenFolder = 100,
    Up,
    Back,
    Refresh,
    SelectAll,
    CopyLog,
    ClearLog,
    Exit,
    Address,
    OpenFocused,
    CopyPaths,
    GoToFile,
    SelectLog,
    SwitchPane,
    Guide,
    FirstOfExtensions = 1000,
};
}  // namespace PanelCommand

struct MenuTraits {
    using Raw = HMENU;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { DestroyMenu(raw); }
};
using UniqueMenu = Win32::UniqueHandle<MenuTraits>;

struct KeysTraits {
    using Raw = HACCEL;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { DestroyAcceleratorTable(raw); }
};
using UniqueKeys = Win32::UniqueHandle<KeysTraits>;

UniqueMenu MakePanelMenu(const MenuModel& model, LanguageTexts& texts);

/// What is selected in the panel.
struct SelectionKind {
    size_t files = 0;
    size_t folders = 0;
};
/// Whether a command has something to do for such a selection. The contract does not tell what a command is for; by
/// their numbers, those from 30100 to 30299 work on the content of files, and those below 30000 on no selection.
bool Fits(uint32_t command, const SelectionKind& selected);
/// What can be done with the selection: the panel's own commands, then those of the extensions that fit it.
UniqueMenu MakeContextMenu(const MenuModel& model, LanguageTexts& texts, const SelectionKind& selected);
/// What can be done with the line of the log that has the focus. `namesFile`: it names one that is there.
UniqueMenu MakeLogMenu(LanguageTexts& texts, bool hasLines, bool namesFile);
UniqueKeys MakePanelKeys(const MenuModel& model);

/// The extension's command for a WM_COMMAND; null for one of the panel's own.
const MenuModel::Command* CommandBehind(const MenuModel& model, WORD menuCommand);

/// The command's text as a title: without the marks of a menu.
std::wstring TitleOf(const MenuModel::Command& command);

/// By the custom of menus, a text that ends in "..." stands for a command that asks first.
bool OpensDialog(const MenuModel::Command& command);

/// "Ctrl+Shift+J"; "" for no shortcut.
std::wstring ShortcutText(uint32_t shortcut);

/// Puts a "&" before a letter of each text that names none, so that no two have the same: its first letter, else that
/// of a later word, else any. Texts whose letters are all taken stay as they are. `used`, in capitals: letters that are
/// taken already.
void GiveAccessKeys(std::vector<std::wstring>& texts, std::set<std::wstring> used = {});

}  // namespace QVHost
