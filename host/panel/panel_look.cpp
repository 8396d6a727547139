#include "host/panel/panel_look.h"
#include "win32/module.h"

#include <commctrl.h>

namespace QVHost {
namespace {

constexpr int kHintTop = 12;  // pixels at 96 to the inch

/// True for a ground on which dark colours can be read.
bool IsLight(COLORREF ground) {
    return 2 * GetRValue(ground) + 5 * GetGValue(ground) + GetBValue(ground) > 8 * 128;  // about as the eye weighs them
}

}  // namespace

PanelLook::PanelLook() {
    const HDC screen = GetDC(nullptr);
    if (const int pixels = GetDeviceCaps(screen, LOGPIXELSY); pixels > 0) m_pixelsPerInch = pixels;
    ReleaseDC(nullptr, screen);
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof(metrics);
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0))
        m_font = CreateFontIndirectW(&metrics.lfMessageFont);
    ReadContrast();
}

void PanelLook::ReadContrast() {
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof(contrast);
    const bool isHigh = SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) &&
                        (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
    m_usesColours = !isHigh && IsLight(GetSysColor(COLOR_WINDOW));
}

void PanelLook::DrawHint(HWND list, HDC context, const wchar_t* text) const {
    RECT area = {};
    GetClientRect(list, &area);
    RECT header = {};
    if (const HWND above = ListView_GetHeader(list)) GetWindowRect(above, &header);
    area.top += header.bottom - header.top + Scaled(kHintTop);
    area.left += Scaled(kHintTop);
    area.right -= Scaled(kHintTop);
    DrawTextW(context, text, -1, &area, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
}

PanelLook::~PanelLook() {
    if (m_font) DeleteObject(m_font);
}

void LoadCommonControls() {
    // Under Wine the first window of a process sets up the desktop. Begun here and not inside the library's start, it
    // is done without the loader's lock, for which another thread that looks for windows may be waiting.
    GetDesktopWindow();
    // By its plain name, because only that leads to the version of the manifest.
    Win32::Module controls(LoadLibraryExW(L"comctl32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    const INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
    if (auto* init = Win32::FindFunction<decltype(&InitCommonControlsEx)>(controls, "InitCommonControlsEx"))
        init(&classes);
    controls.Release();  // its window classes live as long as the program
}

}  // namespace QVHost
