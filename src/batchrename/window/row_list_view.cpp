#include "batchrename/window/row_list_view.h"

#include <algorithm>
#include <numeric>
#include <system_error>

#include "batchrename/model/name_fit.h"
#include "ui/activation_context.h"
#include "ui/controls.h"
#include "win32/path.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr Ui::ListColumn kColumns[] = {
    {L"Current name", 624}, {L"New name", 624}, {L"Status", 1056}, {L"Location", 528}};
constexpr int kNewNameColumn = 1;
constexpr wchar_t kNewNameTitle[] = L"New name";
constexpr wchar_t kOutdatedTitle[] = L"New name (not up to date)";
constexpr int kNameColumns[] = {0, kNewNameColumn};
constexpr int kGapWidth = 3;        // pixels
constexpr int kNarrowestName = 40;  // pixels
constexpr int kNameMargin = 6;      // pixels at 96 dots an inch: what the control leaves before a text

FontHandle BoldOf(HFONT font) {
    LOGFONTW description = {};
    GetObjectW(font, sizeof(description), &description);
    description.lfWeight = FW_BOLD;
    return FontHandle(CreateFontIndirectW(&description));
}

RowKey KeyOfColumn(int column) {
    constexpr RowKey kKeys[] = {RowKey::CurrentName, RowKey::NewName, RowKey::HostOrder, RowKey::Location};
    return kKeys[std::clamp(column, 0, 3)];
}

/// Draws pieces of a line one after the other.
class LineDrawing {
public:
    LineDrawing(HDC context, const RECT& bounds) : m_context(context), m_bounds(bounds) {}

    /// Each unit is put where it was measured to be: what the system draws by itself may be narrower, and the gap
    /// before the next piece would look like a blank in the name.
    void Piece(std::wstring_view text, HFONT font) {
        const HGDIOBJ before = SelectObject(m_context, font);
        const auto length = static_cast<int>(text.size());
        std::vector<int> advances(text.size());
        SIZE size = {};
        GetTextExtentExPointW(m_context, text.data(), length, 0, nullptr, advances.data(), &size);
        std::adjacent_difference(advances.begin(), advances.end(), advances.begin());
        const int top = (m_bounds.top + m_bounds.bottom - size.cy) / 2;
        ExtTextOutW(m_context, m_bounds.left, top, ETO_CLIPPED, &m_bounds, text.data(), static_cast<UINT>(length),
                    advances.data());
        SelectObject(m_context, before);
        m_bounds.left += size.cx;
    }

    /// A thin bar: here something was taken out.
    void Gap() {
        const RECT bar = {m_bounds.left, m_bounds.top + 2, m_bounds.left + 2, m_bounds.bottom - 2};
        SetDCBrushColor(m_context, GetTextColor(m_context));
        FillRect(m_context, &bar, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
        m_bounds.left += kGapWidth;
    }

private:
    HDC m_context;
    RECT m_bounds;
};

/// Adds the right edge of each unit of the text, which begins where the last one ends.
void AddEdges(HDC context, std::wstring_view text, HFONT font, std::vector<int>& edges) {
    if (text.empty()) return;
    const int left = edges.empty() ? 0 : edges.back();
    const size_t first = edges.size();
    edges.resize(first + text.size());
    const HGDIOBJ before = SelectObject(context, font);
    SIZE size = {};
    GetTextExtentExPointW(context, text.data(), static_cast<int>(text.size()), 0, nullptr, edges.data() + first, &size);
    SelectObject(context, before);
    for (size_t at = first; at < edges.size(); ++at) edges[at] += left;
}

struct GlobalMemoryTraits {
    using Raw = HGLOBAL;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { GlobalFree(raw); }
};
using GlobalMemory = Win32::UniqueHandle<GlobalMemoryTraits>;

GlobalMemory GlobalCopyOf(const std::wstring& text) {
    GlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t)));
    if (void* const bytes = memory ? GlobalLock(memory.Get()) : nullptr) {
        std::copy_n(text.c_str(), text.size() + 1, static_cast<wchar_t*>(bytes));
        GlobalUnlock(memory.Get());
    }
    return memory;
}

void PutOnClipboard(HWND owner, const std::wstring& text) {
    GlobalMemory memory = GlobalCopyOf(text);
    if (!memory || !OpenClipboard(owner)) return;
    EmptyClipboard();
    if (SetClipboardData(CF_UNICODETEXT, memory.Get())) memory.Release();  // it is the clipboard's now
    CloseClipboard();
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
    m_bold = BoldOf(font);
    Ui::AddColumns(m_window, kColumns);
    Recolour();
}

LRESULT CALLBACK RowListView::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    const auto* const self = reinterpret_cast<const RowListView*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const LRESULT result = CallWindowProcW(self->m_control, window, message, wParam, lParam);
    // The control keeps what is drawn in a column whose right edge moves; a name that is cut at its beginning must move
    // with the edge.
    if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == HDN_ITEMCHANGEDW)
        InvalidateRect(window, nullptr, FALSE);
    return result;
}

void RowListView::Recolour() {
    m_icons = MakeRowIcons(GetSystemMetrics(SM_CXSMICON));
    SendMessageW(m_window, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(m_icons.Get()));
}

void RowListView::Refresh(bool areInPlace) {
    const RowSnapshot& rows = m_rows.Rows();
    std::optional<std::vector<uint32_t>> places = m_rows.Places();
    const bool wasEmptied = !m_keptSelection.empty();
    const bool isSame = !wasEmptied && rows == m_shownRows && places == m_shownPlaces;
    std::vector<bool> isSelected = isSame || wasEmptied ? m_keptSelection : ShownRowsWith(LVNI_SELECTED);
    std::vector<bool> isFocused = isSame || wasEmptied ? m_keptFocus : ShownRowsWith(LVNI_FOCUSED);
    SendMessageW(m_window, LVM_SETITEMCOUNT, m_rows.PlaceCount(), LVSICF_NOSCROLL | LVSICF_NOINVALIDATEALL);
    FillWidth();  // a scroll bar may have come or gone
    InvalidateRect(m_window, nullptr, FALSE);
    if (isSame) return;
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
    for (LRESULT place = -1;;) {
        place = SendMessageW(m_window, LVM_GETNEXTITEM, static_cast<WPARAM>(place), static_cast<LPARAM>(state));
        if (place < 0 || static_cast<size_t>(place) >= count) return marked;
        marked[m_shownPlaces ? (*m_shownPlaces)[static_cast<size_t>(place)] : static_cast<size_t>(place)] = true;
    }
}

void RowListView::SetStates(const std::vector<bool>& isSelected, const std::vector<bool>& isFocused) {
    const auto set = [&](size_t place, UINT state) {
        LVITEMW item = {};
        item.state = state;
        item.stateMask = state ? state : LVIS_SELECTED;
        SendMessageW(m_window, LVM_SETITEMSTATE, place, reinterpret_cast<LPARAM>(&item));
    };
    constexpr size_t kAll = SIZE_MAX;
    // One message for all rows where it will do: there may be a hundred thousand.
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

void RowListView::FillWidth() {
    const auto widthOf = [&](int column) {
        return static_cast<int>(SendMessageW(m_window, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0));
    };
    RECT client = {};
    GetClientRect(m_window, &client);
    int available = static_cast<int>(client.right);
    for (int column = 0; column < static_cast<int>(std::size(kColumns)); ++column) available -= widthOf(column);
    for (const int spare : m_spareWidths) available += spare;
    for (const int column : kNameColumns) {
        int& spare = m_spareWidths[static_cast<size_t>(column)];
        const int former = std::exchange(spare, std::max(0, available / 2));
        if (spare != former)
            SendMessageW(m_window, LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column),
                         std::max(widthOf(column) + spare - former, kNarrowestName));
    }
}

void RowListView::ShowOutdated(bool isOutdated) {
    std::wstring title = isOutdated ? kOutdatedTitle : kNewNameTitle;
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT;
    column.pszText = title.data();
    SendMessageW(m_window, LVM_SETCOLUMNW, kNewNameColumn, reinterpret_cast<LPARAM>(&column));
}

void RowListView::ShowOrder(const RowOrder& order) {
    const auto header = reinterpret_cast<HWND>(SendMessageW(m_window, LVM_GETHEADER, 0, 0));
    for (int index = 0; index < static_cast<int>(std::size(kColumns)); ++index) {
        HDITEMW item = {};
        item.mask = HDI_FORMAT;
        SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
        item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        if (order.key != RowKey::HostOrder && KeyOfColumn(index) == order.key)
            item.fmt |= order.isDescending ? HDF_SORTDOWN : HDF_SORTUP;
        SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
    }
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

bool RowListView::GoToProblem(bool isBack) {
    const LRESULT focused = SendMessageW(m_window, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
    const std::optional<size_t> place = NextProblem(m_rows.MarksOfPlaces(), static_cast<size_t>(focused), isBack);
    if (!place) return false;
    Ui::SelectRow(m_window, static_cast<int>(*place));
    SetFocus(m_window);
    return true;
}

void RowListView::SelectAll() {
    LVITEMW state = {};
    state.state = LVIS_SELECTED;
    state.stateMask = LVIS_SELECTED;
    SendMessageW(m_window, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&state));
}

void RowListView::CopySelection() const {
    std::wstring text;
    const std::vector<bool> isSelected = SelectedRows();
    for (size_t row = 0; row < isSelected.size(); ++row)
        if (isSelected[row]) text += m_rows.OldName(row) + L'\t' + m_rows.NewName(row) + L"\r\n";
    if (!text.empty()) PutOnClipboard(m_window, text);
}

std::optional<LRESULT> RowListView::OnNotify(NMHDR& header) {
    switch (header.code) {
        case LVN_GETDISPINFOW: FillItem(reinterpret_cast<NMLVDISPINFOW&>(header).item); return 0;
        case LVN_ODFINDITEMW: return FindByText(reinterpret_cast<NMLVFINDITEMW&>(header));
        case LVN_KEYDOWN: OnKey(reinterpret_cast<NMLVKEYDOWN&>(header).wVKey); return 0;
        case LVN_COLUMNCLICK: {
            const int column = reinterpret_cast<NMLISTVIEW&>(header).iSubItem;
            if (KeyOfColumn(column) != RowKey::HostOrder) m_listener.OnHeader(KeyOfColumn(column));
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
    if (item.mask & LVIF_IMAGE) item.iImage = static_cast<int>(m_rows.Mark(row));
}

void RowListView::OnKey(WORD key) {
    const bool isControl = GetKeyState(VK_CONTROL) < 0;
    if (key == VK_DELETE) m_listener.OnRemoveRows();
    if (key == L'C' && isControl) CopySelection();
    if (key == VK_INSERT && isControl) CopySelection();
    if (key == L'A' && isControl) SelectAll();
}

LRESULT RowListView::FindByText(const NMLVFINDITEMW& search) const {
    const bool isText = (search.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) != 0 && search.lvfi.psz;
    const size_t count = m_rows.PlaceCount();
    if (!isText || count == 0) return -1;
    const std::wstring_view wanted = search.lvfi.psz;
    const size_t from = search.iStart < 0 ? 0 : static_cast<size_t>(search.iStart);
    for (size_t step = 0; step < count; ++step) {
        const size_t place = (from + step) % count;
        const std::wstring_view name = m_rows.CurrentName(m_rows.RowAt(place));
        if (Win32::EqualIgnoringCase(name.substr(0, wanted.size()), wanted)) return static_cast<LRESULT>(place);
    }
    return -1;
}

LRESULT RowListView::OnDraw(NMLVCUSTOMDRAW& draw) {
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
        case CDDS_ITEMPREPAINT: return CDRF_NOTIFYSUBITEMDRAW;  // the same number asks for the items
        case CDDS_ITEMPREPAINT | CDDS_SUBITEM: break;
        default: return CDRF_DODEFAULT;
    }
    const size_t place = draw.nmcd.dwItemSpec;
    if (draw.iSubItem != kNewNameColumn || place >= m_rows.PlaceCount()) return CDRF_DODEFAULT;
    const size_t row = m_rows.RowAt(place);
    if (m_rows.NewName(row) == m_rows.OldName(row)) return CDRF_DODEFAULT;
    DrawNewName(draw.nmcd.hdc, place);
    return CDRF_SKIPDEFAULT;
}

void RowListView::DrawNewName(HDC context, size_t place) {
    RECT bounds = {};
    bounds.top = kNewNameColumn;
    bounds.left = LVIR_LABEL;
    SendMessageW(m_window, LVM_GETSUBITEMRECT, place, reinterpret_cast<LPARAM>(&bounds));
    const bool isSelected = SendMessageW(m_window, LVM_GETITEMSTATE, place, LVIS_SELECTED) != 0;
    const bool hasFocus = GetFocus() == m_window;
    const int ground = !isSelected ? COLOR_WINDOW : hasFocus ? COLOR_HIGHLIGHT : COLOR_BTNFACE;
    const int ink = !isSelected ? COLOR_WINDOWTEXT : hasFocus ? COLOR_HIGHLIGHTTEXT : COLOR_BTNTEXT;
    FillRect(context, &bounds, GetSysColorBrush(ground));
    SetTextColor(context, GetSysColor(static_cast<int>(ink)));
    SetBkMode(context, TRANSPARENT);

    const size_t row = m_rows.RowAt(place);
    const std::wstring_view name = m_rows.NewName(row);
    const ChangedPart changed = FindChangedPart(m_rows.OldName(row), name);
    const auto font = reinterpret_cast<HFONT>(SendMessageW(m_window, WM_GETFONT, 0, 0));
    bounds.left += MulDiv(kNameMargin, GetDeviceCaps(context, LOGPIXELSX), USER_DEFAULT_SCREEN_DPI);
    std::vector<int> edges;
    AddEdges(context, name.substr(0, changed.begin), font, edges);
    AddEdges(context, name.substr(changed.begin, changed.end - changed.begin), m_bold.Get(), edges);
    AddEdges(context, name.substr(changed.end), font, edges);
    std::vector<int> ellipsis;
    AddEdges(context, L"\u2026", font, ellipsis);
    const int gap = changed.begin == changed.end ? kGapWidth : 0;
    LineDrawing line(context, bounds);
    for (const NamePiece& piece : FitName(name, changed, edges, bounds.right - bounds.left - gap, ellipsis.back()))
        if (piece.text.empty())
            line.Gap();
        else
            line.Piece(piece.text, piece.isChanged ? m_bold.Get() : font);
}

}  // namespace BatchRename
