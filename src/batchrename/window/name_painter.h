// name_painter.h - draws a name as one line, so that letters which belong together stay together in every script,
// and marks its changed part over it: by an underline, by weight, and by a colour where one of the system's is
// readable.
#pragma once

#include <string_view>

#include "batchrename/model/name_fit.h"
#include "win32/module.h"
#include "win32/windows.h"

namespace BatchRename {

/// Colours of the system (COLOR_...).
struct NameColours {
    int ground;
    int ink;
    int mark;  // of the changed part, where it can be read on the ground
};

/// A name to be drawn.
struct DrawnName {
    std::wstring_view text;
    ChangedPart changed = {};  // stays in sight
    bool isMarked = false;
};

class NamePainter {
public:
    NamePainter();

    /// Draws the name into `bounds`, on its ground, in the font that is selected. False when the system cannot lay the
    /// line out: nothing is drawn then.
    bool Draw(HDC context, const RECT& bounds, const DrawnName& name, const NameColours& colours) const;

private:
    class Line;
    class Marks;
    /// All of a line that fits.
    static void DrawLine(HDC context, const RECT& bounds, const Line& line, const DrawnName& name,
                         const NameColours& colours);

    Win32::Module m_library;  // of the system's layout of text
};

}  // namespace BatchRename
