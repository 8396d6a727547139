#include "ui/controls.h"

#include <algorithm>
#include <limits>

namespace Ui {

std::wstring TextOf(HWND control) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

void SetTextOf(HWND control, const std::wstring& text) {
    if (TextOf(control) != text) SetWindowTextW(control, text.c_str());
}

bool IsChecked(HWND box) {
    return SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void SetChecked(HWND box, bool isChecked) {
    SendMessageW(box, BM_SETCHECK, isChecked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void SetBoxes(HWND dialog, std::span<const OptionBox> boxes, uint32_t options) {
    for (const OptionBox& box : boxes) SetChecked(GetDlgItem(dialog, box.control), (options & box.bit) != 0);
}

uint32_t BitsOfBoxes(HWND dialog, std::span<const OptionBox> boxes) {
    uint32_t bits = 0;
    for (const OptionBox& box : boxes)
        if (IsChecked(GetDlgItem(dialog, box.control))) bits |= box.bit;
    return bits;
}

void FillCombo(HWND combo, const HostTexts& texts, std::span<const ListEntry> entries, uint32_t options,
               uint32_t otherwise) {
    const bool isKnown = std::ranges::any_of(entries, [&](const ListEntry& entry) { return options & entry.bit; });
    const uint32_t wanted = isKnown ? options : otherwise;
    bool isSelected = false;
    for (const ListEntry& entry : entries) {
        const LRESULT index = SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(texts(entry.text)));
        if (index < 0) continue;
        SendMessageW(combo, CB_SETITEMDATA, static_cast<WPARAM>(index), static_cast<LPARAM>(entry.bit));
        if (isSelected || !(wanted & entry.bit)) continue;
        SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
        isSelected = true;
    }
}

uint32_t SelectedBit(HWND combo) {
    const LRESULT index = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    if (index < 0) return 0;
    return static_cast<uint32_t>(SendMessageW(combo, CB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}

void FillList(HWND list, std::span<const std::wstring> paths) {
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    const HDC context = GetDC(list);
    const HGDIOBJ before = SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(list, WM_GETFONT, 0, 0)));
    LONG widest = 0;
    for (const std::wstring& path : paths) {
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(path.c_str()));
        SIZE size = {};
        GetTextExtentPoint32W(context, path.c_str(), static_cast<int>(path.size()), &size);
        widest = std::max(widest, size.cx);
    }
    SelectObject(context, before);
    ReleaseDC(list, context);
    constexpr LONG kMargin = 8;
    SendMessageW(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest + kMargin), 0);
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
}

std::wstring WithEditBreaks(std::wstring_view text) {
    std::wstring result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        const bool isBreak = text[at] == L'\r' || text[at] == L'\n';
        if (isBreak)
            result += L"\r\n";
        else
            result += text[at];
        if (text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n') ++at;
    }
    return result;
}

std::optional<uint32_t> NumberFromText(std::wstring_view text) {
    const auto isBlank = [](wchar_t unit) { return unit == L' ' || unit == L'\t'; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    uint64_t number = 0;
    for (const wchar_t digit : text) {
        if (digit < L'0' || digit > L'9') return std::nullopt;
        number = number * 10 + static_cast<uint64_t>(digit - L'0');
        if (number > std::numeric_limits<uint32_t>::max()) return std::nullopt;
    }
    return static_cast<uint32_t>(number);
}

void EnableWithLabel(HWND control, bool isEnabled) {
    // A key that leads to a disabled field would seem dead, so its label is disabled with it.
    EnableWindow(GetWindow(control, GW_HWNDPREV), isEnabled);
    EnableWindow(control, isEnabled);
}

}  // namespace Ui
