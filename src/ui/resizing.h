// resizing.h - lets the controls of a dialog follow its size, its scale, and a screen that is too small for it.
#pragma once

#include <span>
#include <vector>

#include "win32/handle.h"
#include "win32/windows.h"

namespace Ui {

/// Where the edges of a control go when the dialog grows: percent of the growth that each edge moves by. {0, 0, 100, 0}
/// grows in width; {100, 100, 100, 100} stays in the lower right corner. Controls that have none stay where they are.
struct Anchor {
    int control;
    int left, top, right, bottom;
};

struct FontTraits {
    using Raw = HFONT;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { DeleteObject(raw); }
};
using FontHandle = Win32::UniqueHandle<FontTraits>;

struct Bars {
    bool isHorizontal = false;
    bool isVertical = false;
    bool operator==(const Bars&) const = default;
};
/// The scroll bars that a content needs in a window of this size, bars included; `thickness` of a vertical and of a
/// horizontal one. One bar may make the other necessary.
Bars BarsFor(SIZE window, SIZE content, SIZE thickness);

/// Widens or narrows all columns of a list.
void RescaleColumns(HWND list, UINT from, UINT to);

class Resizing {
public:
    /// Takes the sizes as they are now for the natural ones: a window may get smaller where the screen is, and then
    /// scrolls. `column`: buttons at the right that become a row at the top where the window is too narrow for a column
    /// of them; what has anchors then also gives way a little. Both are copied.
    void Start(HWND dialog, std::span<const Anchor> anchors, std::span<const int> column = {});
    bool IsStarted() const noexcept { return m_dialog != nullptr; }
    /// Puts the controls where they belong in the window as it is.
    void Arrange();
    void LimitSize(MINMAXINFO& limits) const noexcept;
    /// What the controls need, in pixels: in their usual places, at least, and in height in a window that is so wide.
    SIZE NaturalClient() const;
    SIZE NaturalWindow() const;  // with its frame
    int LeastWidth() const;
    int HeightFor(int width) const;
    /// The window goes to a screen of another scale: sizes, fonts and the columns of lists are made anew.
    void Rescale(UINT dotsPerInch);
    /// WM_HSCROLL, WM_VSCROLL and WM_MOUSEWHEEL; false when there is nothing to scroll.
    bool OnScroll(UINT message, WPARAM wParam);
    /// Scrolls as far as it takes to have a control in sight.
    void Reveal(HWND control);

private:
    struct Place {
        HWND control;
        Anchor anchor;
        RECT rect;  // these are pixels at the scale of the start
        bool isInColumn;
        bool isAnchored;
    };
    /// The size of everything in a window that is so wide, and the height of the row of buttons in it.
    struct Content {
        SIZE size;
        int rowHeight;
    };

    int Scaled(LONG length) const { return MulDiv(length, static_cast<int>(m_dots), static_cast<int>(m_startDots)); }
    int GapOfButtons() const;
    bool HasColumn() const;
    int WidthBesideColumn() const;
    int SpareWidth() const;
    Content ContentFor(int width) const;
    SIZE ShowBars(const Content& content);
    void ScrollTo(int bar, int position);
    RECT RectOf(const Place& place, const Content& content, SIZE size) const;

    HWND m_dialog = nullptr;
    SIZE m_client = {};  // natural, at the scale of the start, as is the size of the window
    SIZE m_window = {};
    UINT m_startDots = USER_DEFAULT_SCREEN_DPI;
    UINT m_dots = USER_DEFAULT_SCREEN_DPI;
    std::vector<Place> m_places;
    POINT m_scroll = {};
    bool m_isArranging = false;
    bool m_isRescaled = false;
    LOGFONTW m_startFont = {};
    FontHandle m_font;
};

}  // namespace Ui
