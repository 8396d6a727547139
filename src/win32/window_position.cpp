#include "win32/window_position.h"

#include <algorithm>
#include <iterator>

#include "win32/module.h"
#include "win32/text.h"

namespace Win32 {
namespace {

constexpr int kFurthest = 100000;  // pixels; no desktop is larger

/// Moves a stretch into another and cuts what does not fit.
void FitStretch(LONG& begin, LONG& end, LONG from, LONG to) {
    const LONG size = std::min(end - begin, to - from);
    begin = std::clamp(begin, from, to - size);
    end = begin + size;
}

MONITORINFO ScreenNear(const RECT& rect) {
    MONITORINFO screen = {};
    screen.cbSize = sizeof(screen);
    GetMonitorInfoW(MonitorFromRect(&rect, MONITOR_DEFAULTTONEAREST), &screen);
    return screen;
}

UINT DotsOfDevice(HWND window) {
    const HDC context = GetDC(window);
    const int dots = GetDeviceCaps(context, LOGPIXELSX);
    ReleaseDC(window, context);
    return dots > 0 ? static_cast<UINT>(dots) : USER_DEFAULT_SCREEN_DPI;
}

int Down(LONG pixels, UINT dots) {
    return Rescaled(static_cast<int>(pixels), dots, USER_DEFAULT_SCREEN_DPI);
}

int Up(int length, UINT dots) {
    return Rescaled(length, USER_DEFAULT_SCREEN_DPI, dots);
}

}  // namespace

std::wstring FormatWindowPosition(const WindowPosition& position) {
    std::wstring text;
    for (const int number : {position.left, position.top, position.right, position.bottom,
                             static_cast<int>(position.isMaximised), position.panelHeight})
        text += (text.empty() ? L"" : L",") + std::to_wstring(number);
    return text;
}

std::optional<WindowPosition> ParseWindowPosition(std::wstring_view text) {
    int numbers[6] = {};
    for (size_t index = 0; index < std::size(numbers); ++index) {
        const bool isLast = index + 1 == std::size(numbers);
        const size_t end = isLast ? text.size() : text.find(L',');
        if (end == std::wstring_view::npos) return std::nullopt;
        const std::optional<int> number = WholeNumber<int>(text.substr(0, end));
        if (!number || *number < -kFurthest || *number > kFurthest) return std::nullopt;
        numbers[index] = *number;
        text.remove_prefix(isLast ? end : end + 1);
    }
    if (numbers[2] <= numbers[0] || numbers[3] <= numbers[1]) return std::nullopt;
    return WindowPosition{numbers[0], numbers[1], numbers[2], numbers[3], numbers[4] != 0, std::max(numbers[5], 0)};
}

RECT FitInto(RECT rect, const RECT& area) {
    FitStretch(rect.left, rect.right, area.left, area.right);
    FitStretch(rect.top, rect.bottom, area.top, area.bottom);
    return rect;
}

RECT WorkAreaNear(const RECT& rect) {
    return ScreenNear(rect).rcWork;
}

UINT DotsPerInch(HWND window) {
    using Function = UINT(WINAPI*)(HWND);
    const Module user = LoadSystemModule(L"user32.dll");
    const auto getDpiForWindow = FindFunction<Function>(user, "GetDpiForWindow");
    const UINT dots = getDpiForWindow ? getDpiForWindow(window) : 0;
    return dots > 0 ? dots : DotsOfDevice(window);
}

// A corner is counted at the scale of the whole desktop, since that is how the system tells screens of different scales
// apart; a size at the scale of the window's own screen.

WindowPosition PositionOf(HWND window, int panelHeight) {
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof(placement);
    GetWindowPlacement(window, &placement);
    RECT normal = placement.rcNormalPosition;
    // Placements count from the corner of the work area, and everything else from that of the screen.
    const MONITORINFO screen = ScreenNear(normal);
    OffsetRect(&normal, screen.rcWork.left - screen.rcMonitor.left, screen.rcWork.top - screen.rcMonitor.top);
    const UINT desktop = DotsOfDevice(nullptr);
    const UINT own = DotsPerInch(window);
    WindowPosition position;
    position.left = Down(normal.left, desktop);
    position.top = Down(normal.top, desktop);
    position.right = position.left + Down(normal.right - normal.left, own);
    position.bottom = position.top + Down(normal.bottom - normal.top, own);
    position.isMaximised = IsZoomed(window) || (IsIconic(window) && (placement.flags & WPF_RESTORETOMAXIMIZED) != 0);
    position.panelHeight = Down(panelHeight, own);
    return position;
}

int PlaceWindow(HWND window, const WindowPosition& position) {
    const UINT desktop = DotsOfDevice(nullptr);
    RECT rect = {};
    rect.left = Up(position.left, desktop);
    rect.top = Up(position.top, desktop);
    // First to its screen, whose scale then says how large it is.
    SetWindowPos(window, nullptr, rect.left, rect.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    const UINT own = DotsPerInch(window);
    rect.right = rect.left + Up(position.right - position.left, own);
    rect.bottom = rect.top + Up(position.bottom - position.top, own);
    rect = FitInto(rect, WorkAreaNear(rect));
    SetWindowPos(window, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    return Up(position.panelHeight, own);
}

}  // namespace Win32
