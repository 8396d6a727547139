#include "ui/resizing.h"

#include "win32/module.h"

namespace Ui {
namespace {

SIZE SizeOf(const RECT& rect) {
    return {rect.right - rect.left, rect.bottom - rect.top};
}

}  // namespace

UINT DotsPerInch(HWND window) {
    using Function = UINT(WINAPI*)(HWND);
    const Win32::Module user = Win32::LoadSystemModule(L"user32.dll");
    if (const auto getDpiForWindow = Win32::FindFunction<Function>(user, "GetDpiForWindow"))
        return getDpiForWindow(window);
    const HDC context = GetDC(window);
    const int dots = GetDeviceCaps(context, LOGPIXELSX);
    ReleaseDC(window, context);
    return static_cast<UINT>(dots);
}

void Resizing::Start(HWND dialog, std::span<const Anchor> anchors) {
    m_dialog = dialog;
    m_dotsPerInch = DotsPerInch(dialog);
    RECT rect = {};
    GetWindowRect(dialog, &rect);
    m_smallest = SizeOf(rect);
    GetClientRect(dialog, &rect);
    m_client = SizeOf(rect);
    m_places.clear();
    for (const Anchor& anchor : anchors) {
        GetWindowRect(GetDlgItem(dialog, anchor.control), &rect);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
        m_places.push_back({anchor, rect});
    }
}

void Resizing::Arrange() {
    if (m_places.empty()) return;
    RECT client = {};
    GetClientRect(m_dialog, &client);
    const SIZE size = SizeOf(client);
    const int wider = size.cx - m_client.cx;
    const int higher = size.cy - m_client.cy;
    // All in one go: moved one by one, the controls would be seen to crawl.
    HDWP moves = BeginDeferWindowPos(static_cast<int>(m_places.size()));
    for (const auto& [anchor, rect] : m_places) {
        const int left = rect.left + wider * anchor.left / 100;
        const int top = rect.top + higher * anchor.top / 100;
        const int right = rect.right + wider * anchor.right / 100;
        const int bottom = rect.bottom + higher * anchor.bottom / 100;
        if (moves)
            moves = DeferWindowPos(moves, GetDlgItem(m_dialog, anchor.control), nullptr, left, top, right - left,
                                   bottom - top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (moves) EndDeferWindowPos(moves);
}

bool Resizing::LimitSize(MINMAXINFO& limits) const noexcept {
    if (m_places.empty()) return false;
    limits.ptMinTrackSize = {m_smallest.cx, m_smallest.cy};
    return true;
}

void Resizing::Rescale(UINT dotsPerInch) {
    const auto scale = [&](LONG& length) {
        length = MulDiv(length, static_cast<int>(dotsPerInch), static_cast<int>(m_dotsPerInch));
    };
    for (LONG* const length : {&m_client.cx, &m_client.cy, &m_smallest.cx, &m_smallest.cy}) scale(*length);
    for (Place& place : m_places)
        for (LONG* const edge : {&place.rect.left, &place.rect.top, &place.rect.right, &place.rect.bottom})
            scale(*edge);
    m_dotsPerInch = dotsPerInch;
}

}  // namespace Ui
