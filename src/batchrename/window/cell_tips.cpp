#include "batchrename/window/cell_tips.h"

#include <windowsx.h>

#include "ui/activation_context.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr int kTipWidth = 600;          // pixels at 96 to the inch, before the text goes on in a second line
constexpr size_t kLongestStretch = 60;  // units
constexpr int kTipTime = 30000;         // milliseconds: a long name takes its time
constexpr LONG kCellMargins = 12;       // pixels at 96 to the inch: what the control leaves around a text

/// With a line break wherever a long stretch has no blank at which the tip could break it by itself.
std::wstring Wrapped(const std::wstring& text) {
    std::wstring wrapped;
    size_t length = 0;
    for (const wchar_t unit : text) {
        length = unit == L' ' ? 0 : length + 1;
        if (length > kLongestStretch && !Win32::IsLowSurrogate(unit)) {
            wrapped += L'\n';
            length = 1;
        }
        wrapped += unit;
    }
    return wrapped;
}

}  // namespace

void CellTips::Create(HWND list) {
    m_list = list;
    m_tips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0,
                             0, list, nullptr, Ui::OwnModule(), nullptr);
    if (!m_tips) return;
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof(tool);
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = list;
    tool.uId = reinterpret_cast<UINT_PTR>(list);
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    SendMessageW(m_tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageW(m_tips, TTM_SETDELAYTIME, TTDT_AUTOPOP, kTipTime);
}

bool CellTips::OnMessage(UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
    if (!m_tips) return false;
    if (message == WM_MOUSEMOVE) FollowMouse({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
    if (message != WM_NOTIFY) return false;
    auto& header = *reinterpret_cast<NMHDR*>(lParam);
    if (header.hwndFrom != m_tips || header.code != TTN_GETDISPINFOW) return false;
    const HDC context = GetDC(m_list);
    const int dotsPerInch = GetDeviceCaps(context, LOGPIXELSX);
    ReleaseDC(m_list, context);
    SendMessageW(m_tips, TTM_SETMAXTIPWIDTH, 0, MulDiv(kTipWidth, dotsPerInch, USER_DEFAULT_SCREEN_DPI));
    auto& info = reinterpret_cast<NMTTDISPINFOW&>(header);
    m_text = Wrapped(TextUnderMouse());
    info.lpszText = m_text.data();
    result = 0;
    return true;
}

void CellTips::FollowMouse(POINT mouse) {
    LVHITTESTINFO hit = {};
    hit.pt = mouse;
    SendMessageW(m_list, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    if (hit.iItem == m_place && hit.iSubItem == m_column) return;
    m_place = hit.iItem;
    m_column = hit.iSubItem;
    SendMessageW(m_tips, TTM_POP, 0, 0);  // the next cell has a tip of its own
}

std::wstring CellTips::TextUnderMouse() const {
    if (m_place < 0 || m_column < 0) return {};
    std::wstring text = m_textOf(m_place, m_column);
    RECT cell = {};
    cell.top = m_column;
    cell.left = LVIR_LABEL;
    SendMessageW(m_list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(m_place), reinterpret_cast<LPARAM>(&cell));
    const LRESULT width = SendMessageW(m_list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(text.c_str()));
    if (width + kCellMargins <= cell.right - cell.left) text.clear();
    return text;
}

}  // namespace BatchRename
