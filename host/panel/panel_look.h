// panel_look.h - the library and the fonts of the panel's controls, sizes in pixels at the screen's resolution, and how
// lines of a list that say something of a file stand out.
#pragma once

#include "host/contract/panel_view.h"
#include "ui/resizing.h"
#include "win32/windows.h"

#include <commctrl.h>

namespace QVHost {

class PanelLook {
public:
    PanelLook();
    PanelLook(const PanelLook&) = delete;
    PanelLook& operator=(const PanelLook&) = delete;

    /// The system's font for messages; null where it gives none, then controls keep their own.
    HFONT Font() const { return m_font.Get(); }
    /// `pixels` are meant at 96 to the inch.
    int Scaled(int pixels) const { return MulDiv(pixels, static_cast<int>(m_dots), USER_DEFAULT_SCREEN_DPI); }
    UINT DotsPerInch() const { return m_dots; }
    /// The window goes to a screen of another scale: the fonts are others from then on.
    void Rescale(UINT dotsPerInch);
    /// What an empty list says in the place of its rows: `text`, in the middle of its upper part.
    void DrawHint(HWND list, HDC context, const wchar_t* text) const;
    /// The answer to a list that is about to draw a row of this tone. All colours are the system's, so that they suit
    /// its ground in every theme; failures are bold besides, since no colour says anything to everybody.
    LRESULT Ink(NMLVCUSTOMDRAW& draw, Tone tone) const;

private:
    void MakeFonts();

    UINT m_dots = USER_DEFAULT_SCREEN_DPI;
    LOGFONTW m_message = {};  // at the scale of the start
    UINT m_startDots = USER_DEFAULT_SCREEN_DPI;
    Ui::FontHandle m_font;
    Ui::FontHandle m_bold;
};

/// Makes the window classes of list views and status lines known. The version is the one that the program's manifest
/// names. Once loaded it stays. Called when the panel opens, and not when the
/// program starts: loading sets up the desktop, and a command line that shows no window should not wait for that.
void LoadCommonControls();

}  // namespace QVHost
