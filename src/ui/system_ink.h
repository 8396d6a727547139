// system_ink.h - the system's colours where something is to stand out, in every theme.
#pragma once

#include "win32/windows.h"

namespace Ui {

/// How far apart two colours are, from 1 (the same) to 21 (black and white): the contrast ratio of WCAG 2.1.
double ContrastOf(COLORREF left, COLORREF right) noexcept;

/// The first colour where it can be read on the ground (a contrast of 4.5 at least, as WCAG 2.1 has it), else the
/// other.
COLORREF ReadableInk(COLORREF first, COLORREF ground, COLORREF other) noexcept;

/// The colour of links, which every theme has beside that of texts; that of texts where links could not be read on the
/// ground of a list, since not every theme means them to.
COLORREF AccentInk() noexcept;

/// To be called when the system's colours have changed, which it tells a window of the desktop alone: the controls in
/// it keep the colours that they have asked for once, and lists their ground. Draws all of it anew.
void TellColours(HWND window);

}  // namespace Ui
