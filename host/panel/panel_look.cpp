#include "host/panel/panel_look.h"

#include <commctrl.h>

namespace QVHost {
namespace {

constexpr int kHintTop = 12;  // pixels at 96 to the inch

}  // namespace

PanelLook::PanelLook() : m_graphics(Win32::LoadSystemModule(L"gdi32.dll")) {
    if (auto* capsOf = Win32::FindFunction<decltype(&GetDeviceCaps)>(m_graphics, "GetDeviceCaps")) {
        const HDC screen = GetDC(nullptr);
        if (const int pixels = capsOf(screen, LOGPIXELSY); pixels > 0) m_pixelsPerInch = pixels;
        ReleaseDC(nullptr, screen);
    }
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof(metrics);
    auto* createFont = Win32::FindFunction<decltype(&CreateFontIndirectW)>(m_graphics, "CreateFontIndirectW");
    if (createFont && SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0))
        m_font = createFont(&metrics.lfMessageFont);
    ReadContrast();
}

void PanelLook::ReadContrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof(contrast);
    if (SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0))
        m_usesColours = (contrast.dwFlags & HCF_HIGHCONTRASTON) == 0;
}

void PanelLook::DrawHint(HWND list, HDC context, const wchar_t* text) const {
    RECT room = {};
    GetClientRect(list, &room);
    RECT header = {};
    if (const HWND above = ListView_GetHeader(list)) GetWindowRect(above, &header);
    room.top += header.bottom - header.top + Scaled(kHintTop);
    room.left += Scaled(kHintTop);
    room.right -= Scaled(kHintTop);
    DrawTextW(context, text, -1, &room, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
}

PanelLook::~PanelLook() {
    if (auto* deleteObject = Win32::FindFunction<decltype(&DeleteObject)>(m_graphics, "DeleteObject"))
        if (m_font) deleteObject(m_font);
}

}  // namespace QVHost
