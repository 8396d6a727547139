#include "host/panel/panel_look.h"
#include "ui/system_ink.h"
#include "win32/module.h"
#include "win32/window_position.h"

namespace QVHost {
namespace {

constexpr int kHintTop = 12;  // pixels at 96 to the inch

}  // namespace

PanelLook::PanelLook() {
    m_startDots = m_dots = Win32::DotsPerInch(GetDesktopWindow());
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof(metrics);
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0)) m_message = metrics.lfMessageFont;
    MakeFonts();
}

void PanelLook::MakeFonts() {
    if (m_message.lfHeight == 0) return;
    LOGFONTW description = m_message;
    description.lfHeight = Win32::Rescaled(static_cast<int>(description.lfHeight), m_startDots, m_dots);
    m_font.Reset(CreateFontIndirectW(&description));
    description.lfWeight = FW_BOLD;
    m_bold.Reset(CreateFontIndirectW(&description));
}

void PanelLook::Rescale(UINT dotsPerInch) {
    m_dots = dotsPerInch;
    MakeFonts();
}

LRESULT PanelLook::Ink(NMLVCUSTOMDRAW& draw, Tone tone) const {
    const HWND list = draw.nmcd.hdr.hwndFrom;
    const bool isSelected = ListView_GetItemState(list, static_cast<int>(draw.nmcd.dwItemSpec), LVIS_SELECTED) != 0;
    // In some themes the ground of a selection without the focus is that of the list.
    if (isSelected && GetFocus() != list && GetSysColor(COLOR_BTNFACE) == GetSysColor(COLOR_WINDOW)) {
        draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_SELECTED);
        draw.clrText = GetSysColor(COLOR_HIGHLIGHTTEXT);
        draw.clrTextBk = GetSysColor(COLOR_HIGHLIGHT);
    }
    if (tone != Tone::Failure) return CDRF_NEWFONT;
    if (!isSelected) draw.clrText = Ui::AccentInk();
    if (m_bold) SelectObject(draw.nmcd.hdc, m_bold.Get());
    return CDRF_NEWFONT;
}

void PanelLook::DrawHint(HWND list, HDC context, const wchar_t* text) const {
    RECT area = {};
    GetClientRect(list, &area);
    RECT header = {};
    if (const HWND above = ListView_GetHeader(list)) GetWindowRect(above, &header);
    area.top += header.bottom - header.top + Scaled(kHintTop);
    area.left += Scaled(kHintTop);
    area.right -= Scaled(kHintTop);
    SetTextColor(context, GetSysColor(COLOR_WINDOWTEXT));
    SetBkMode(context, TRANSPARENT);
    DrawTextW(context, text, -1, &area, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
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
