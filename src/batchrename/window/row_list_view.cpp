#include "batchrename/window/row_list_view.h"

#include <algorithm>
#include <system_error>

#include "sdk/boundary.h"
#include "ui/activation_context.h"
#include "ui/controls.h"
#include "win32/text.h"
#include "win32/window_position.h"

namespace BatchRename {
namespace {

constexpr int kNewNameColumn = static_cast<int>(RowColumn::NewName);
// Pixels at 96 dots an inch: what the control leaves before and after a text, and after an icon.
constexpr int kNameMargin = 6;
constexpr int kFirstMargin = 2;
constexpr int kIconSize = 16;

bool IsNameColumn(int column) {
    return column == static_cast<int>(RowColumn::CurrentName) || column == kNewNameColumn;
}

}  // namespace

void RowListView::Create(HWND parent, int id, HFONT font) {
    m_window = CreateWindowExW(
        WS_EX_CLIENTEDGE, WC_LISTVIEWW, L"Files to rename",
        WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS, 0, 0,
        0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), Ui::OwnModule(), nullptr);
    if (!m_window)
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "The list cannot be made");
    SendMessageW(m_window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_control =
        reinterpret_cast<WNDPROC>(SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    m_columns.Create(m_window, Quorvane::SDK::Words(m_texts));
    SendMessageW(m_window, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    SendMessageW(m_window, LVM_SETCALLBACKMASK, LVIS_STATEIMAGEMASK, 0);
    m_tips.Create(m_window);
    Recolour();
}

LRESULT CALLBACK RowListView::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    auto* const self = reinterpret_cast<RowListView*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    LRESULT result = 0;
    const auto isAnswered = [&] {
        return self->m_tips.OnMessage(message, wParam, lParam, result) || self->OnMessage(message, wParam, lParam);
    };
    if (Quorvane::SDK::AtBoundary(false, isAnswered)) return result;
    result = CallWindowProcW(self->m_control, window, message, wParam, lParam);
    if (message == WM_NOTIFY) self->OnHeaderNotice(*reinterpret_cast<const NMHEADERW*>(lParam));
    return result;
}

void RowListView::OnHeaderNotice(const NMHEADERW& notice) {
    switch (notice.hdr.code) {
        // The control keeps what is drawn in a column whose right edge moves; a name that is cut at its beginning must
        // move with the edge.
        case HDN_ITEMCHANGEDW: InvalidateRect(m_window, nullptr, FALSE); break;
        case HDN_ENDTRACKW: m_columns.OnUsersWidth(notice.iItem, true); break;
        case HDN_DIVIDERDBLCLICKW: m_columns.OnUsersWidth(notice.iItem, false); break;
        default: break;
    }
}

void RowListView::Rescale(HFONT font) {
    SendMessageW(m_window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    // The control draws its boxes once.
    for (const LPARAM boxes : {0, LVS_EX_CHECKBOXES})
        SendMessageW(m_window, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, boxes);
    m_columns.Measure();
    Recolour();
    Refresh(true);
}

void RowListView::Recolour() {
    m_icons = MakeRowIcons(MulDiv(kIconSize, static_cast<int>(Win32::DotsPerInch(m_window)), USER_DEFAULT_SCREEN_DPI));
    SendMessageW(m_window, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(m_icons.Get()));
}

void RowListView::Refresh(bool areInPlace) {
    const RowSnapshot& rows = m_rows.Rows();
    std::optional<std::vector<uint32_t>> places = m_rows.Places();
    const bool wasEmptied = !m_keptSelection.empty();
    // Then each place stands for the row it stood for, and what is selected in the control stays true.
    const bool isSame = !wasEmptied && places == m_shownPlaces &&
                        (rows == m_shownRows || (areInPlace && rows->size() == m_shownRows->size()));
    std::vector<bool> isSelected = isSame || wasEmptied ? m_keptSelection : ShownRowsWith(LVNI_SELECTED);
    std::vector<bool> isFocused = isSame || wasEmptied ? m_keptFocus : ShownRowsWith(LVNI_FOCUSED);
    SendMessageW(m_window, LVM_SETITEMCOUNT, m_rows.PlaceCount(), LVSICF_NOSCROLL | LVSICF_NOINVALIDATEALL);
    if (rows != m_shownRows) m_columns.ForgetTexts();
    m_columns.SetTexts(m_rows.LongestStatuses(), m_rows.LongestLocation());
    m_columns.Fit();  // a scroll bar may have come or gone as well
    m_columns.ShowState(m_isOutdated, m_rows.Outcomes() != nullptr);
    InvalidateRect(m_window, nullptr, FALSE);
    if (rows != m_shownRows && !areInPlace) m_edit.Close(false);  // whatever is typed was for another row
    if (isSame) {
        m_shownRows = rows;
        return;
    }
    if (rows->empty()) {
        m_keptSelection = std::move(isSelected);
        m_keptFocus = std::move(isFocused);
        return;
    }
    if (rows == m_shownRows || (areInPlace && isSelected.size() == rows->size()))
        SetStates(isSelected, isFocused);
    else
        SetStates(CarriedMarks(*m_shownRows, isSelected, *rows), CarriedMarks(*m_shownRows, isFocused, *rows));
    m_shownRows = rows;
    m_shownPlaces = std::move(places);
    m_keptSelection.clear();
    m_keptFocus.clear();
}

std::vector<bool> RowListView::ShownRowsWith(WPARAM state) const {
    std::vector<bool> marked(m_shownRows->size(), false);
    const size_t count = m_shownPlaces ? m_shownPlaces->size() : m_shownRows->size();
    const auto mark = [&](size_t place) { marked[m_shownPlaces ? (*m_shownPlaces)[place] : place] = true; };
    // No message for each row, and no search to the end, where the number tells: there may be a hundred thousand.
    const size_t wanted =
        state == LVNI_SELECTED ? static_cast<size_t>(SendMessageW(m_window, LVM_GETSELECTEDCOUNT, 0, 0)) : 1;
    if (wanted == count && wanted > 1) {
        for (size_t place = 0; place < count; ++place) mark(place);
        return marked;
    }
    LRESULT place = -1;
    for (size_t found = 0; found < wanted; ++found) {
        place = SendMessageW(m_window, LVM_GETNEXTITEM, static_cast<WPARAM>(place), static_cast<LPARAM>(state));
        if (place < 0 || static_cast<size_t>(place) >= count) break;
        mark(static_cast<size_t>(place));
    }
    return marked;
}

void RowListView::SetStates(const std::vector<bool>& isSelected, const std::vector<bool>& isFocused) {
    const auto set = [&](size_t place, UINT state) {
        LVITEMW item = {};
        item.state = state;
        item.stateMask = state ? state : LVIS_SELECTED;
        SendMessageW(m_window, LVM_SETITEMSTATE, place, reinterpret_cast<LPARAM>(&item));
    };
    constexpr size_t kAll = SIZE_MAX;
    const bool areAll = std::ranges::find(isSelected, false) == isSelected.end();
    set(kAll, areAll ? LVIS_SELECTED : 0);
    for (size_t place = 0; place < m_rows.PlaceCount(); ++place) {
        const size_t row = m_rows.RowAt(place);
        if (isSelected[row] && !areAll) set(place, LVIS_SELECTED);
        if (!isFocused[row]) continue;
        set(place, LVIS_FOCUSED);
        SendMessageW(m_window, LVM_SETSELECTIONMARK, 0, static_cast<LPARAM>(place));
    }
}

void RowListView::ShowOutdated(bool isOutdated) {
    m_isOutdated = isOutdated;
    m_columns.ShowState(isOutdated, m_rows.Outcomes() != nullptr);
}

RowRange RowListView::VisibleRows() const {
    const auto top = static_cast<size_t>(SendMessageW(m_window, LVM_GETTOPINDEX, 0, 0));
    const auto count = static_cast<size_t>(SendMessageW(m_window, LVM_GETCOUNTPERPAGE, 0, 0)) + 1;
    if (top >= m_rows.PlaceCount()) return {};
    const size_t last = std::min(top + count, m_rows.PlaceCount()) - 1;
    return {m_rows.RowAt(top), m_rows.RowAt(last) - m_rows.RowAt(top) + 1};
}

std::vector<bool> RowListView::SelectedRows() const {
    // Where memory ran out before, the places still stand for other rows.
    const bool areShown = m_shownRows == m_rows.Rows();
    return areShown ? ShownRowsWith(LVNI_SELECTED) : std::vector<bool>(m_rows.Rows()->size(), false);
}

void RowListView::Select(const std::vector<bool>& isSelected) {
    std::vector<bool> isFocused(isSelected.size(), false);
    const auto first = std::ranges::find(isSelected, true);
    if (first != isSelected.end()) isFocused[static_cast<size_t>(first - isSelected.begin())] = true;
    SetStates(isSelected, isFocused);
    const LRESULT place = SendMessageW(m_window, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
    SendMessageW(m_window, LVM_ENSUREVISIBLE, static_cast<WPARAM>(place), FALSE);
}

std::optional<LRESULT> RowListView::OnNotify(NMHDR& header) {
    switch (header.code) {
        case LVN_GETDISPINFOW: FillItem(reinterpret_cast<NMLVDISPINFOW&>(header).item); return 0;
        case LVN_ODFINDITEMW: return FindByText(reinterpret_cast<NMLVFINDITEMW&>(header));
        case LVN_KEYDOWN: OnKey(reinterpret_cast<NMLVKEYDOWN&>(header).wVKey); return 0;
        case NM_CLICK:
        case NM_DBLCLK: OnClick(reinterpret_cast<NMITEMACTIVATE&>(header).ptAction, header.code == NM_DBLCLK); return 0;
        case LVN_COLUMNCLICK: {
            const int column = reinterpret_cast<NMLISTVIEW&>(header).iSubItem;
            m_listener.OnHeader(RowColumns::KeyOf(column));
            return 0;
        }
        case NM_CUSTOMDRAW: return OnDraw(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
        default: return std::nullopt;
    }
}

void RowListView::FillItem(LVITEMW& item) const {
    if (item.iItem < 0 || static_cast<size_t>(item.iItem) >= m_rows.PlaceCount()) return;
    const size_t row = m_rows.RowAt(static_cast<size_t>(item.iItem));
    if (item.mask & LVIF_TEXT)
        Ui::FillItemText(item.pszText, item.cchTextMax, m_rows.Text(row, static_cast<RowColumn>(item.iSubItem)));
    if (item.mask & LVIF_STATE && item.stateMask & LVIS_STATEIMAGEMASK)
        item.state = INDEXTOSTATEIMAGEMASK(m_rows.IsChecked(row) ? 2U : 1U);
    if (item.mask & LVIF_IMAGE) item.iImage = static_cast<int>(m_rows.Mark(row));
}

std::wstring RowListView::TextOfCell(int place, int column) const {
    if (static_cast<size_t>(place) >= m_rows.PlaceCount()) return {};
    return m_rows.Text(m_rows.RowAt(static_cast<size_t>(place)), static_cast<RowColumn>(column));
}

LRESULT RowListView::FindByText(const NMLVFINDITEMW& search) const {
    const bool isText = (search.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) != 0 && search.lvfi.psz;
    const size_t count = m_rows.PlaceCount();
    if (!isText || count == 0) return -1;
    const std::wstring_view wanted = search.lvfi.psz;
    const size_t from = search.iStart < 0 ? 0 : static_cast<size_t>(search.iStart);
    for (size_t step = 0; step < count; ++step) {
        const size_t place = (from + step) % count;
        const std::wstring_view name = m_rows.OldName(m_rows.RowAt(place));
        if (Win32::EqualIgnoringCase(name.substr(0, wanted.size()), wanted)) return static_cast<LRESULT>(place);
    }
    return -1;
}

LRESULT RowListView::OnDraw(const NMLVCUSTOMDRAW& draw) const {
    // The icon and the box of a row are the control's, so that the names are drawn after it.
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
        case CDDS_ITEMPREPAINT: return CDRF_NOTIFYSUBITEMDRAW;  // the same number asks for the items
        case CDDS_ITEMPREPAINT | CDDS_SUBITEM:
            return IsNameColumn(draw.iSubItem) ? CDRF_NOTIFYPOSTPAINT : CDRF_DODEFAULT;
        case CDDS_ITEMPOSTPAINT | CDDS_SUBITEM: break;
        default: return CDRF_DODEFAULT;
    }
    const size_t place = draw.nmcd.dwItemSpec;
    if (!IsNameColumn(draw.iSubItem) || place >= m_rows.PlaceCount()) return CDRF_DODEFAULT;
    const size_t row = m_rows.RowAt(place);
    const std::wstring& before = m_rows.OldName(row);
    const std::wstring& after = m_rows.NewName(row);
    const bool isNew = draw.iSubItem == kNewNameColumn;
    const std::wstring& name = isNew ? after : before;
    // Of both names the same part is in sight: what is there instead of the other's.
    if (after.empty())
        DrawName(draw.nmcd.hdc, draw, {name});
    else
        DrawName(
            draw.nmcd.hdc, draw,
            {name, isNew ? FindChangedPart(before, after) : FindChangedPart(after, before), isNew && before != after});
    return CDRF_DODEFAULT;
}

void RowListView::DrawName(HDC context, const NMLVCUSTOMDRAW& cell, const DrawnName& name) const {
    const size_t place = cell.nmcd.dwItemSpec;
    RECT bounds = {};
    bounds.top = cell.iSubItem;
    bounds.left = LVIR_LABEL;
    SendMessageW(m_window, LVM_GETSUBITEMRECT, place, reinterpret_cast<LPARAM>(&bounds));
    const bool isSelected = SendMessageW(m_window, LVM_GETITEMSTATE, place, LVIS_SELECTED) != 0;
    NameColours colours = {COLOR_WINDOW, COLOR_WINDOWTEXT, COLOR_HOTLIGHT};
    if (isSelected && GetFocus() == m_window)
        colours = {COLOR_HIGHLIGHT, COLOR_HIGHLIGHTTEXT, COLOR_HIGHLIGHTTEXT};
    else if (isSelected)
        colours = {COLOR_BTNFACE, COLOR_BTNTEXT, COLOR_BTNTEXT};
    FillRect(context, &bounds, GetSysColorBrush(colours.ground));
    const int dotsPerInch = GetDeviceCaps(context, LOGPIXELSX);
    bounds.left += MulDiv(cell.iSubItem == 0 ? kFirstMargin : kNameMargin, dotsPerInch, USER_DEFAULT_SCREEN_DPI);
    bounds.right -= MulDiv(kNameMargin, dotsPerInch, USER_DEFAULT_SCREEN_DPI);
    m_painter.Draw(context, bounds, name, colours);
}

}  // namespace BatchRename
