#include "ui/resizing.h"

#include <commctrl.h>
#include <algorithm>
#include <utility>

#include "ui/controls.h"
#include "win32/window_position.h"

namespace Ui {
namespace {

constexpr int kLeastShare = 70;  // percent of its width that a control keeps where the window is too narrow
constexpr int kLine = 24;        // pixels at 96 to the inch that an arrow of a scroll bar stands for

RECT RectIn(HWND dialog, HWND control) {
    RECT rect = {};
    GetWindowRect(control, &rect);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

/// The client area with the scroll bars that stand in it now.
SIZE ClientWithBars(HWND window, SIZE thickness) {
    RECT client = {};
    GetClientRect(window, &client);
    const auto style = GetWindowLongPtrW(window, GWL_STYLE);
    return {client.right + (style & WS_VSCROLL ? thickness.cx : 0),
            client.bottom + (style & WS_HSCROLL ? thickness.cy : 0)};
}

SIZE ThicknessOfBars() {
    return {GetSystemMetrics(SM_CXVSCROLL), GetSystemMetrics(SM_CYHSCROLL)};
}

SCROLLINFO ReadBar(HWND window, int bar) {
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_ALL;
    GetScrollInfo(window, bar, &info);
    return info;
}

}  // namespace

Bars BarsFor(SIZE window, SIZE content, SIZE thickness) {
    Bars bars = {content.cx > window.cx, content.cy > window.cy};
    if (bars.isHorizontal && content.cy > window.cy - thickness.cy) bars.isVertical = true;
    if (bars.isVertical && content.cx > window.cx - thickness.cx) bars.isHorizontal = true;
    return bars;
}

void RescaleColumns(HWND list, UINT from, UINT to) {
    const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
    const auto count = static_cast<WPARAM>(header ? SendMessageW(header, HDM_GETITEMCOUNT, 0, 0) : 0);
    for (WPARAM column = 0; column < count; ++column) {
        const auto width = static_cast<int>(SendMessageW(list, LVM_GETCOLUMNWIDTH, column, 0));
        SendMessageW(list, LVM_SETCOLUMNWIDTH, column, Win32::Rescaled(width, from, to));
    }
}

void Resizing::Start(HWND dialog, std::span<const Anchor> anchors, std::span<const int> column) {
    m_dialog = dialog;
    m_startDots = m_dots = Win32::DotsPerInch(dialog);
    m_isRescaled = false;
    m_scroll = {};
    m_font.Reset();
    RECT rect = {};
    GetWindowRect(dialog, &rect);
    m_window = Win32::SizeOf(rect);
    GetClientRect(dialog, &rect);
    m_client = Win32::SizeOf(rect);
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0)), sizeof(m_startFont), &m_startFont);
    m_places.clear();
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(child);
        const auto anchor = std::ranges::find(anchors, id, &Anchor::control);
        const bool isAnchored = anchor != anchors.end();
        m_places.push_back({child, isAnchored ? *anchor : Anchor{id, 0, 0, 0, 0}, RectIn(dialog, child),
                            std::ranges::find(column, id) != column.end(), isAnchored});
    }
}

int Resizing::GapOfButtons() const {
    return Scaled(MulDiv(kLine, static_cast<int>(m_startDots), USER_DEFAULT_SCREEN_DPI) / 4);
}

int Resizing::WidthBesideColumn() const {
    LONG others = 0;
    LONG column = 0;
    for (const Place& place : m_places) {
        LONG& right = place.isInColumn ? column : others;
        right = std::max(right, place.rect.right);
    }
    return Scaled(others + m_client.cx - column);
}

/// How much narrower than that it may become.
int Resizing::SpareWidth() const {
    LONG spare = m_client.cx;
    LONG fixed = 0;
    for (const Place& place : m_places) {
        const Anchor& anchor = place.anchor;
        if (place.isInColumn) continue;
        if (anchor.left == 0 && anchor.right == 100)
            spare = std::min(spare, Win32::SizeOf(place.rect).cx * (100 - kLeastShare) / 100);
        if (anchor.right == 0) fixed = std::max(fixed, place.rect.right);
    }
    return std::clamp(WidthBesideColumn() - Scaled(fixed) - GapOfButtons(), 0, Scaled(spare));
}

Resizing::Content Resizing::ContentFor(int width) const {
    Content content = {NaturalClient(), 0};
    if (!HasColumn() || width >= content.size.cx) return content;
    content.size.cx = LeastWidth();
    const int gap = GapOfButtons();
    int x = gap;
    int bottom = gap;
    for (const Place& place : m_places) {
        if (!place.isInColumn) continue;
        const SIZE size = Win32::SizeOf(place.rect);
        if (x > gap && x + Scaled(size.cx) + gap > std::max<int>(width, content.size.cx)) {
            x = gap;
            content.rowHeight = bottom;
        }
        x += Scaled(size.cx) + gap;
        bottom = std::max(bottom, content.rowHeight + gap + Scaled(size.cy));
    }
    content.rowHeight = bottom;
    content.size.cy += content.rowHeight;
    return content;
}

SIZE Resizing::NaturalClient() const {
    return {Scaled(m_client.cx), Scaled(m_client.cy)};
}

SIZE Resizing::NaturalWindow() const {
    return {Scaled(m_window.cx), Scaled(m_window.cy)};
}

bool Resizing::HasColumn() const {
    return std::ranges::any_of(m_places, &Place::isInColumn);
}

int Resizing::LeastWidth() const {
    return HasColumn() ? WidthBesideColumn() - SpareWidth() : static_cast<int>(NaturalClient().cx);
}

int Resizing::HeightFor(int width) const {
    return static_cast<int>(ContentFor(width).size.cy);
}

/// The bars that are needed, and no others; what they leave of the client area.
SIZE Resizing::ShowBars(const Content& content) {
    const SIZE thickness = ThicknessOfBars();
    const SIZE whole = ClientWithBars(m_dialog, thickness);
    const Bars bars = BarsFor(whole, content.size, thickness);
    const SIZE client = {whole.cx - (bars.isVertical ? thickness.cx : 0),
                         whole.cy - (bars.isHorizontal ? thickness.cy : 0)};
    const auto set = [&](int bar, bool isShown, LONG needed, LONG available, LONG& position) {
        position = isShown ? std::clamp<LONG>(position, 0, std::max<LONG>(needed - available, 0)) : 0;
        SCROLLINFO info = {};
        info.cbSize = sizeof(info);
        info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
        info.nMax = isShown ? static_cast<int>(needed) - 1 : 0;
        info.nPage = static_cast<UINT>(isShown ? available : 1);
        info.nPos = static_cast<int>(position);
        const LONG_PTR style = bar == SB_VERT ? WS_VSCROLL : WS_HSCROLL;
        if (isShown || (GetWindowLongPtrW(m_dialog, GWL_STYLE) & style)) SetScrollInfo(m_dialog, bar, &info, TRUE);
    };
    set(SB_HORZ, bars.isHorizontal, content.size.cx, client.cx, m_scroll.x);
    set(SB_VERT, bars.isVertical, content.size.cy, client.cy, m_scroll.y);
    return client;
}

RECT Resizing::RectOf(const Place& place, const Content& content, SIZE size) const {
    const bool isNarrow = content.rowHeight > 0;
    const int wider = static_cast<int>(size.cx) - (isNarrow ? WidthBesideColumn() : Scaled(m_client.cx));
    const int higher = static_cast<int>(size.cy) - content.rowHeight - Scaled(m_client.cy);
    const auto along = [](int growth, int percent) { return growth * percent / 100; };
    return {Scaled(place.rect.left) + along(wider, place.anchor.left) - m_scroll.x,
            Scaled(place.rect.top) + along(higher, place.anchor.top) + content.rowHeight - m_scroll.y,
            Scaled(place.rect.right) + along(wider, place.anchor.right) - m_scroll.x,
            Scaled(place.rect.bottom) + along(higher, place.anchor.bottom) + content.rowHeight - m_scroll.y};
}

void Resizing::Arrange() {
    if (m_places.empty() || m_isArranging) return;
    m_isArranging = true;  // a bar that comes or goes makes the window tell of another size
    const Content content = ContentFor(static_cast<int>(ClientWithBars(m_dialog, ThicknessOfBars()).cx));
    const SIZE client = ShowBars(content);
    const SIZE size = {std::max(client.cx, content.size.cx), std::max(client.cy, content.size.cy)};
    const int gap = GapOfButtons();
    POINT next = {gap - m_scroll.x, gap - m_scroll.y};  // of the row
    // All in one go: moved one by one, the controls would be seen to crawl. What a control showed is not carried along:
    // it would cover what another, or the ground, shows there now.
    HDWP moves = BeginDeferWindowPos(static_cast<int>(m_places.size()));
    for (const Place& place : m_places) {
        RECT rect = RectOf(place, content, size);
        if (place.isInColumn && content.rowHeight > 0) {
            const SIZE button = {Scaled(Win32::SizeOf(place.rect).cx), Scaled(Win32::SizeOf(place.rect).cy)};
            if (next.x > gap - m_scroll.x && next.x + m_scroll.x + button.cx + gap > size.cx)
                next = {gap - m_scroll.x, next.y + button.cy + gap};
            rect = {next.x, next.y, next.x + button.cx, next.y + button.cy};
            next.x = rect.right + gap;
        }
        // A list that drops down counts its closed height, which its font gives: a size that nobody asks for is not
        // set.
        const UINT keepsSize = place.isAnchored || m_isRescaled ? 0U : SWP_NOSIZE;
        if (moves)
            moves = DeferWindowPos(moves, place.control, nullptr, rect.left, rect.top, rect.right - rect.left,
                                   rect.bottom - rect.top, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS | keepsSize);
    }
    if (moves) EndDeferWindowPos(moves);
    m_isArranging = false;
}

void Resizing::LimitSize(MINMAXINFO& limits) const noexcept {
    limits.ptMaxTrackSize = {SHRT_MAX, SHRT_MAX};  // the usual limit is the screen, which may be a small one
    if (m_places.empty()) return;
    RECT rect = {};
    GetWindowRect(m_dialog, &rect);
    const SIZE screen = Win32::SizeOf(Win32::WorkAreaNear(rect));
    const SIZE whole = NaturalWindow();
    limits.ptMinTrackSize = {std::min(whole.cx, screen.cx), std::min(whole.cy, screen.cy)};
}

void Resizing::Rescale(UINT dotsPerInch) {
    if (dotsPerInch == 0 || dotsPerInch == m_dots) return;
    const UINT before = m_dots;
    m_dots = dotsPerInch;
    m_isRescaled = true;
    LOGFONTW description = m_startFont;
    description.lfHeight = Scaled(description.lfHeight);
    FontHandle font(CreateFontIndirectW(&description));
    for (const Place& place : m_places) {
        if (font) SendMessageW(place.control, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), TRUE);
        if (IsListView(place.control)) RescaleColumns(place.control, before, m_dots);
    }
    if (font) m_font = std::move(font);
}

void Resizing::ScrollTo(int bar, int position) {
    LONG& now = bar == SB_VERT ? m_scroll.y : m_scroll.x;
    const LONG before = std::exchange(now, position);
    Arrange();
    if (now != before) UpdateWindow(m_dialog);
}

bool Resizing::OnScroll(UINT message, WPARAM wParam) {
    const int bar = message == WM_HSCROLL ? SB_HORZ : SB_VERT;
    if (!(GetWindowLongPtrW(m_dialog, GWL_STYLE) & (bar == SB_VERT ? WS_VSCROLL : WS_HSCROLL))) return false;
    const SCROLLINFO info = ReadBar(m_dialog, bar);
    const int line = MulDiv(kLine, static_cast<int>(m_dots), USER_DEFAULT_SCREEN_DPI);
    if (message == WM_MOUSEWHEEL) {
        ScrollTo(bar, info.nPos - GET_WHEEL_DELTA_WPARAM(wParam) * 3 * line / WHEEL_DELTA);
        return true;
    }
    switch (LOWORD(wParam)) {
        case SB_LINEUP: ScrollTo(bar, info.nPos - line); break;
        case SB_LINEDOWN: ScrollTo(bar, info.nPos + line); break;
        case SB_PAGEUP: ScrollTo(bar, info.nPos - static_cast<int>(info.nPage)); break;
        case SB_PAGEDOWN: ScrollTo(bar, info.nPos + static_cast<int>(info.nPage)); break;
        case SB_TOP: ScrollTo(bar, 0); break;
        case SB_BOTTOM: ScrollTo(bar, info.nMax); break;
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION: ScrollTo(bar, info.nTrackPos); break;
        default: break;
    }
    return true;
}

void Resizing::Reveal(HWND control) {
    if (m_places.empty()) return;
    RECT client = {};
    GetClientRect(m_dialog, &client);
    const RECT rect = RectIn(m_dialog, control);
    const int gap = GapOfButtons();
    // The left and the upper edge count more than what does not fit.
    const auto missing = [gap](LONG begin, LONG end, LONG size) {
        return static_cast<int>(std::min(begin - gap, std::max<LONG>(end + gap - size, 0)));
    };
    const int right = missing(rect.left, rect.right, client.right);
    const int down = missing(rect.top, rect.bottom, client.bottom);
    const auto style = GetWindowLongPtrW(m_dialog, GWL_STYLE);
    if ((style & WS_HSCROLL) && right != 0) ScrollTo(SB_HORZ, static_cast<int>(m_scroll.x) + right);
    if ((style & WS_VSCROLL) && down != 0) ScrollTo(SB_VERT, static_cast<int>(m_scroll.y) + down);
}

}  // namespace Ui
