#include "ui/system_ink.h"

#include <commctrl.h>
#include <algorithm>
#include <cmath>

#include "ui/controls.h"

namespace Ui {
namespace {

constexpr double kReadable = 4.5;

/// From 0 (black) to 1 (white), as the eye weighs the three parts.
double LuminanceOf(COLORREF colour) noexcept {
    const auto linear = [](BYTE part) {
        const double share = part / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(GetRValue(colour)) + 0.7152 * linear(GetGValue(colour)) + 0.0722 * linear(GetBValue(colour));
}

}  // namespace

double ContrastOf(COLORREF left, COLORREF right) noexcept {
    const auto [darker, lighter] = std::minmax({LuminanceOf(left), LuminanceOf(right)});
    return (lighter + 0.05) / (darker + 0.05);
}

COLORREF ReadableInk(COLORREF first, COLORREF ground, COLORREF other) noexcept {
    return ContrastOf(first, ground) >= kReadable ? first : other;
}

COLORREF AccentInk() noexcept {
    return ReadableInk(GetSysColor(COLOR_HOTLIGHT), GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_WINDOWTEXT));
}

void TellColours(HWND window) {
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
        if (IsListView(child)) SendMessageW(child, LVM_SETBKCOLOR, 0, static_cast<LPARAM>(GetSysColor(COLOR_WINDOW)));
    }
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

}  // namespace Ui
