// resizing.h - lets the controls of a dialog follow its size.
#pragma once

#include <span>
#include <vector>

#include "win32/windows.h"

namespace Ui {

/// Where the edges of a control go when the dialog grows: percent of the growth that each edge moves by. {0, 0, 100, 0}
/// grows in width; {100, 100, 100, 100} stays in the lower right corner. Controls that have none stay where they are.
struct Anchor {
    int control;
    int left, top, right, bottom;
};

/// The scale of the screen that a window is on; older systems have one for all screens.
UINT DotsPerInch(HWND window);

class Resizing {
public:
    /// Takes the sizes as they are now for the smallest ones. `anchors` is copied.
    void Start(HWND dialog, std::span<const Anchor> anchors);
    /// Puts the controls where they belong in the window as it is.
    void Arrange();
    /// False while the dialog is of fixed size.
    bool LimitSize(MINMAXINFO& limits) const noexcept;
    /// The window goes to a screen of another scale: what counts in pixels is counted anew.
    void Rescale(UINT dotsPerInch);

private:
    struct Place {
        Anchor anchor;
        RECT rect;
    };

    HWND m_dialog = nullptr;
    SIZE m_client = {};
    SIZE m_smallest = {};
    UINT m_dotsPerInch = USER_DEFAULT_SCREEN_DPI;
    std::vector<Place> m_places;
};

}  // namespace Ui
