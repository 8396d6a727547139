#include "host/panel/panel_look.h"

namespace QVHost {

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
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof(contrast);
    if (SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0))
        m_usesColours = (contrast.dwFlags & HCF_HIGHCONTRASTON) == 0;
}

PanelLook::~PanelLook() {
    if (auto* deleteObject = Win32::FindFunction<decltype(&DeleteObject)>(m_graphics, "DeleteObject"))
        if (m_font) deleteObject(m_font);
}

}  // namespace QVHost
