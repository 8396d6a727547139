#include <algorithm>

#include "sdk/words.h"
#include "ui/dialog_host.h"
#include "win32/window_text.h"

namespace Ui {

using Quorvane::SDK::TextId;

namespace {

/// A window without a text of its own shows what it is given later, and gets none here.
void ShowText(HWND window, TextId id, const HostTexts& texts) {
    if (Win32::WindowText(window).empty()) return;
    const wchar_t* const text = texts(id);
    if (Quorvane::SDK::IsHostText(text, id)) SetWindowTextW(window, text);
}

}  // namespace

TextId TextOfControl(WORD dialog, int control) {
    constexpr int kFirstOfOneDialog = 1100;
    const int number = control < kFirstOfOneDialog ? dialog * 100 + control % 1000 : control;
    return Quorvane::SDK::MakeTextId(static_cast<uint32_t>(number), 'd');
}

void ShowTexts(HWND window, WORD dialog, const HostTexts& texts, std::span<const Tip> others) {
    const auto idOf = [&](int control) {
        const auto other = std::ranges::find(others, control, &Tip::control);
        return other == others.end() ? TextOfControl(dialog, control) : other->text;
    };
    ShowText(window, idOf(0), texts);
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        ShowText(child, idOf(GetDlgCtrlID(child)), texts);
}

}  // namespace Ui
