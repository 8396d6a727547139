// panel_look.h - the library and the font of the panel's controls, and sizes in pixels at the screen's resolution.
#pragma once

#include "win32/windows.h"

namespace QVHost {

class PanelLook {
public:
    PanelLook();
    PanelLook(const PanelLook&) = delete;
    PanelLook& operator=(const PanelLook&) = delete;
    ~PanelLook();

    /// The system's font for messages; null where it gives none, then controls keep their own.
    HFONT Font() const { return m_font; }
    /// `pixels` are meant at 96 to the inch.
    int Scaled(int pixels) const { return MulDiv(pixels, m_pixelsPerInch, 96); }
    /// What an empty list says in the place of its rows: `text`, in the middle of its upper part.
    void DrawHint(HWND list, HDC context, const wchar_t* text) const;
    /// A person who has chosen the system's colours for contrast gets no others, and neither does one with a dark
    /// ground, on which ours could not be read.
    bool UsesColours() const { return m_usesColours; }
    /// Asks the system for that choice again.
    void ReadContrast();

private:
    HFONT m_font = nullptr;
    int m_pixelsPerInch = 96;
    bool m_usesColours = true;
};

/// Makes the window classes of list views and status lines known. The version is the one that the program's manifest
/// names. Once loaded it stays. Called when the panel opens, and not when the
/// program starts: loading sets up the desktop, and a command line that shows no window should not wait for that.
void LoadCommonControls();

}  // namespace QVHost
