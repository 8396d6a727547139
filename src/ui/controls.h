// controls.h - values in and out of controls: texts, checks, lists with a number for each entry, numbers.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "sdk/text_id.h"
#include "win32/windows.h"

namespace Ui {

/// The host's text for an id, valid while the dialog is shown.
using HostTexts = std::function<const wchar_t*(Quorvane::SDK::TextId)>;

/// Sets the text unless it is there already: setting it again would move the caret and tell of a change.
void SetTextOf(HWND control, const std::wstring& text);

bool IsChecked(HWND box);
void SetChecked(HWND box, bool isChecked);

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
/// Puts another path in the place of one of them.
void ReplaceInList(HWND list, size_t row, const std::wstring& path);

/// Every line break (CR LF, LF, a lone CR) as CR LF: edit controls know no other.
std::wstring WithEditBreaks(std::wstring_view text);

/// A number of 0 or more as a person typed it, blanks around it allowed; "" is 0.
/// Nothing for a text that is no such number or too large for 32 bits.
std::optional<uint32_t> NumberFromText(std::wstring_view text);

/// Enables or disables a control and, standing right before it in the order of tabs, the label that names it.
void EnableWithLabel(HWND control, bool isEnabled);

}  // namespace Ui
