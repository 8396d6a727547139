// controls.h - values in and out of controls: texts, checks, lists with a number for each entry, numbers, list views
// with columns, and popup menus.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/words.h"
#include "win32/handle.h"
#include "win32/windows.h"

namespace Ui {

/// The host's text for an id, valid while the dialog is shown.
using HostTexts = std::function<const wchar_t*(Quorvane::SDK::TextId)>;

/// Sets the text unless it is there already: setting it again would move the caret and tell of a change.
void SetTextOf(HWND control, const std::wstring& text);

bool IsChecked(HWND box);
void SetChecked(HWND box, bool isChecked);

/// Selects the whole text of a field where the message is Ctrl+A for one: not every version of the system does it in
/// fields of several lines. True when it was; there is nothing left to dispatch then.
bool SelectAllByKey(const MSG& message);

/// A check box that stands for an option bit.
struct OptionBox {
    int control;
    uint32_t bit;
};
void SetBoxes(HWND dialog, std::span<const OptionBox> boxes, uint32_t options);
/// The bits of the checked ones.
uint32_t BitsOfBoxes(HWND dialog, std::span<const OptionBox> boxes);

/// One entry of a list whose entries stand for option bits.
struct ListEntry {
    Quorvane::SDK::TextId text;
    uint32_t bit;
};
/// Fills a combo box and selects the first entry whose bit is in `options`, else the one of `otherwise`.
void FillCombo(HWND combo, const HostTexts& texts, std::span<const ListEntry> entries, uint32_t options,
               uint32_t otherwise);
/// The bit of the selected entry; 0 when none is selected.
uint32_t SelectedBit(HWND combo);

/// Fills a list box with paths, which are scrolled sideways where they are too long.
void FillList(HWND list, std::span<const std::wstring> paths);

/// Every line break (CR LF, LF, a lone CR) as CR LF: edit controls know no other.
std::wstring WithEditBreaks(std::wstring_view text);

/// A number of 0 or more as a person typed it, blanks around it allowed; "" is 0.
/// Nothing for a text that is no such number or too large for 32 bits.
std::optional<uint32_t> NumberFromText(std::wstring_view text);

/// Enables or disables a control and, standing right before it in the order of tabs, the label that names it.
void EnableWithLabel(HWND control, bool isEnabled);

/// True for a list with columns.
bool IsListView(HWND window);

struct ListColumn {
    Quorvane::SDK::OwnText title;
    int width;  // in sixteenths of an average character of the list's font: so it grows with the font
};

/// Adds the columns, and selects whole rows.
void AddColumns(HWND list, std::span<const ListColumn> columns, const Quorvane::SDK::Words& say);
void SetListText(HWND list, int row, int column, const std::wstring& text);
/// The first selected row, or -1.
int SelectedRow(HWND list);
/// The row with the focus, or -1.
int FocusedRow(HWND list);
/// Selects this row alone and brings it into view.
void SelectRow(HWND list, int row);
/// Copies a text into the buffer that a list view offers for it, cut to its capacity.
void FillItemText(LPWSTR buffer, int capacity, const std::wstring& text);

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

/// Nothing changes where the clipboard is in use or memory is short.
void PutOnClipboard(HWND owner, const std::wstring& text);

}  // namespace Ui
