// window_position.h - where a window stood last time and how large it was: its text in the settings, free of the scale
// of the screen, and its way back onto a screen that may be another one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "win32/windows.h"

namespace Win32 {

/// Pixels at 96 to the inch, so that a window keeps its proportions on a screen of another scale. The numbers are those
/// of the normal window, also while it is maximised.
struct WindowPosition {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool isMaximised = false;
    int panelHeight = 0;  // of the part of the window that the user sizes; 0: as it comes

    bool operator==(const WindowPosition&) const = default;
};

/// "left,top,right,bottom,maximised,panel height"
std::wstring FormatWindowPosition(const WindowPosition& position);

/// Nothing for a text that is no such position, or whose window would have no size.
std::optional<WindowPosition> ParseWindowPosition(std::wstring_view text);

/// A length at one scale, in dots per inch, as that at another; rounded.
constexpr int Rescaled(int length, UINT from, UINT to) {
    const int64_t product = int64_t{length} * to;
    return static_cast<int>((product + (product < 0 ? -int64_t{from} : int64_t{from}) / 2) / from);
}

constexpr SIZE SizeOf(const RECT& rect) {
    return {rect.right - rect.left, rect.bottom - rect.top};
}

/// Moves and cuts a rectangle so that it lies within an area.
RECT FitInto(RECT rect, const RECT& area);

/// The part of the nearest screen that no bar of the desktop takes.
RECT WorkAreaNear(const RECT& rect);

/// The scale of the screen that a window is on; older systems have one for all screens.
UINT DotsPerInch(HWND window);

/// `panelHeight`: pixels of the window's screen.
WindowPosition PositionOf(HWND window, int panelHeight);

/// Moves the window there and onto a screen, with the whole of it in sight; its panel's height in pixels.
int PlaceWindow(HWND window, const WindowPosition& position);

}  // namespace Win32
