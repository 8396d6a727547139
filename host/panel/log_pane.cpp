#include "host/panel/log_pane.h"

#include <algorithm>
#include <utility>

#include "host/app/host_text.h"
#include "ui/controls.h"
#include "win32/window_position.h"

namespace QVHost {
namespace {

constexpr int kBoldShare = 8;    // of its width that a text takes more in bold, about
constexpr int kCellMargin = 16;  // pixels at 96 to the inch that a cell needs beside its text

}  // namespace

LogPane::LogPane(HWND parent, int id, UINT linesMessage, const PanelLook& look, std::wstring hint)
    : m_parent(parent),
      m_linesMessage(linesMessage),
      m_look(look),
      m_hint(std::move(hint)),
      m_list(CreateWindowExW(
          WS_EX_CLIENTEDGE, WC_LISTVIEWW, L"",
          WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_NOCOLUMNHEADER | LVS_SHOWSELALWAYS, 0,
          0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr)) {
    SendMessageW(m_list, WM_SETFONT, reinterpret_cast<WPARAM>(look.Font()), FALSE);
    ListView_SetExtendedListViewStyle(m_list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    LVCOLUMNW column = {};
    SendMessageW(m_list, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
}

void LogPane::Add(std::wstring_view text, Tone tone) {
    bool isFirst = false;
    {
        const std::lock_guard lock(m_mutex);
        isFirst = m_newLines.empty();
        ++m_added;
        m_newLines.push_back({OnOneLine(text), tone});
    }
    if (isFirst) PostMessageW(m_parent, m_linesMessage, 0, 0);
}

size_t LogPane::CountOfAdded() {
    const std::lock_guard lock(m_mutex);
    return m_added;
}

void LogPane::TakeLines() {
    std::vector<Line> lines;
    {
        const std::lock_guard lock(m_mutex);
        lines = std::exchange(m_newLines, {});
    }
    if (lines.empty()) return;
    const auto longest = std::ranges::max_element(lines, {}, [](const Line& line) { return line.text.size(); });
    Widen(longest->text);
    m_lines.insert(m_lines.end(), std::make_move_iterator(lines.begin()), std::make_move_iterator(lines.end()));
    ListView_SetItemCountEx(m_list, m_lines.size(), LVSICF_NOSCROLL);
    ListView_EnsureVisible(m_list, static_cast<int>(m_lines.size()) - 1, FALSE);
}

void LogPane::Widen(const std::wstring& text) {
    const auto width =
        static_cast<int>(SendMessageW(m_list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(text.c_str())));
    const int needed = width + width / kBoldShare + m_look.Scaled(kCellMargin);
    if (needed <= m_width) return;
    m_width = needed;
    ListView_SetColumnWidth(m_list, 0, m_width);
}

void LogPane::Clear() {
    m_lines.clear();
    m_width = 0;
    ListView_SetItemCountEx(m_list, 0, 0);
}

void LogPane::Copy() const {
    const bool isAll = ListView_GetSelectedCount(m_list) == 0;
    std::wstring text;
    for (int at = -1; (at = ListView_GetNextItem(m_list, at, isAll ? LVNI_ALL : LVNI_SELECTED)) >= 0;)
        text += m_lines[static_cast<size_t>(at)].text + L"\r\n";
    Ui::PutOnClipboard(m_parent, text);
}

std::wstring LogPane::FocusedLine() const {
    const int at = ListView_GetNextItem(m_list, -1, LVNI_FOCUSED);
    return at < 0 || static_cast<size_t>(at) >= m_lines.size() ? std::wstring() : m_lines[static_cast<size_t>(at)].text;
}

void LogPane::TakeFocus() {
    // Without a focused line nothing would show that the keys go here.
    if (!m_lines.empty() && ListView_GetNextItem(m_list, -1, LVNI_FOCUSED) < 0)
        ListView_SetItemState(m_list, static_cast<int>(m_lines.size()) - 1, LVIS_FOCUSED | LVIS_SELECTED,
                              LVIS_FOCUSED | LVIS_SELECTED);
}

POINT LogPane::PlaceOfFocused() const {
    RECT rect = {};
    ListView_GetItemRect(m_list, std::max(ListView_GetNextItem(m_list, -1, LVNI_FOCUSED), 0), &rect, LVIR_LABEL);
    POINT place = {rect.left, rect.bottom};
    ClientToScreen(m_list, &place);
    return place;
}

void LogPane::Rescale(UINT from) {
    SendMessageW(m_list, WM_SETFONT, reinterpret_cast<WPARAM>(m_look.Font()), TRUE);
    Ui::RescaleColumns(m_list, from, m_look.DotsPerInch());
    m_width = Win32::Rescaled(m_width, from, m_look.DotsPerInch());
}

void LogPane::SelectAll() {
    ListView_SetItemState(m_list, -1, LVIS_SELECTED, LVIS_SELECTED);
}

LRESULT LogPane::OnCustomDraw(NMLVCUSTOMDRAW& draw) const {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return m_lines.empty() ? CDRF_NOTIFYPOSTPAINT : CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage == CDDS_POSTPAINT) m_look.DrawHint(m_list, draw.nmcd.hdc, m_hint.c_str());
    const auto at = static_cast<size_t>(draw.nmcd.dwItemSpec);
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || at >= m_lines.size()) return CDRF_DODEFAULT;
    return m_look.Ink(draw, m_lines[at].tone);
}

bool LogPane::OnNotification(NMHDR& header, LRESULT& result) {
    switch (header.code) {
        case LVN_GETDISPINFOW: {
            LVITEMW& item = reinterpret_cast<NMLVDISPINFOW&>(header).item;
            const auto at = static_cast<size_t>(item.iItem);
            if ((item.mask & LVIF_TEXT) != 0 && at < m_lines.size())
                CopyText(m_lines[at].text, item.pszText, static_cast<uint32_t>(item.cchTextMax));
            return true;
        }
        case NM_SETFOCUS: TakeFocus(); return true;
        case NM_CUSTOMDRAW: result = OnCustomDraw(reinterpret_cast<NMLVCUSTOMDRAW&>(header)); return true;
        default: return false;
    }
}

}  // namespace QVHost
