// window_position.h - where the window stood last time: its text in the settings, and whether that is still on a
// screen. Asks no screen itself.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace BatchRename {

/// Pixels of the screen; the numbers are those of the normal window, also while it is maximised.
struct WindowPosition {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool isMaximised = false;
    int panelHeight = 0;  // below the splitter; 0: as it comes

    bool operator==(const WindowPosition&) const = default;
};

/// "left,top,right,bottom,maximised,panel height"
std::wstring FormatWindowPosition(const WindowPosition& position);

/// Nothing for a text that is no such position, or whose window would have no size.
std::optional<WindowPosition> ParseWindowPosition(std::wstring_view text);

/// Moves and cuts the window so that it lies within a screen's work area, given by its edges.
WindowPosition FitIntoScreen(WindowPosition position, int left, int top, int right, int bottom);

}  // namespace BatchRename
