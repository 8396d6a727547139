#include "host/panel/folder_view.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "host/app/host_text.h"
#include "host/panel/panel_texts.h"
#include "sdk/file_list.h"
#include "win32/path.h"
#include "win32/text.h"

namespace QVHost {
namespace {

enum Column : int { kName, kSize, kDate, kResult, kFirstProperty };

struct FixedColumn {
    PanelText text;
    int width;  // pixels at 96 to the inch
    int format;
};
constexpr FixedColumn kFixedColumns[] = {
    {PanelText::Name, 250, LVCFMT_LEFT},
    {PanelText::Size, 90, LVCFMT_RIGHT},
    {PanelText::Date, 130, LVCFMT_LEFT},
    {PanelText::Result, 70, LVCFMT_LEFT},
};

constexpr int kTitleMargin = 24;  // what a header needs beside its title

/// "12,345" as the user writes numbers.
std::wstring GroupedNumber(uint64_t number) {
    wchar_t separator[8] = {};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STHOUSAND, separator, static_cast<int>(std::size(separator)));
    std::wstring text = std::to_wstring(number);
    for (size_t at = text.size(); at > 3;) text.insert(at -= 3, separator);
    return text + L" ";  // the last digit keeps its distance from the edge of the column
}

/// Date and time as the user writes them, in local time.
std::wstring DateText(uint64_t written) {
    const FILETIME time = {static_cast<DWORD>(written), static_cast<DWORD>(written >> 32)};
    SYSTEMTIME universal = {};
    SYSTEMTIME local = {};
    if (written == 0 || !FileTimeToSystemTime(&time, &universal) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local))
        return {};
    std::array<wchar_t, 64> date = {};
    std::array<wchar_t, 64> clock = {};
    GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &local, nullptr, date.data(), static_cast<int>(date.size()));
    GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &local, nullptr, clock.data(), static_cast<int>(clock.size()));
    return std::wstring(date.data()) + L"  " + clock.data();
}

/// The style of a header's item with the arrow of an order.
int HeaderFormat(int format, bool isSorted, bool isDescending) {
    constexpr int kArrows = HDF_SORTUP | HDF_SORTDOWN;
    if (!isSorted) return format & ~kArrows;
    return (format & ~kArrows) | (isDescending ? HDF_SORTDOWN : HDF_SORTUP);
}

std::wstring StemOf(const std::wstring& name) {
    return std::wstring(Win32::SplitAtLastDot(name).stem);
}

}  // namespace

FolderView::FolderView(HWND parent, int id, UINT answersMessage, const Parts& parts)
    : m_parent(parent),
      m_answersMessage(answersMessage),
      m_parts(parts),
      m_list(CreateWindowExW(
          WS_EX_CLIENTEDGE, WC_LISTVIEWW, L"",
          WS_CHILD | WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS, 0,
          0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr)),
      m_worker(parts.columns, [parent, answersMessage] { PostMessageW(parent, answersMessage, 0, 0); }) {
    SendMessageW(m_list, WM_SETFONT, reinterpret_cast<WPARAM>(parts.look.Font()), FALSE);
    ListView_SetExtendedListViewStyle(m_list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    AddColumns();
    ShowOrder();
}

void FolderView::AddColumns() {
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
    int at = 0;
    const auto add = [&](const std::wstring& title, int width, int format) {
        std::wstring text = title;
        column.pszText = text.data();
        // An extension names the width that its values need; the title may need more.
        const auto titleWidth =
            static_cast<int>(SendMessageW(m_list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(text.c_str())));
        column.cx = std::max(m_parts.look.Scaled(width), titleWidth + m_parts.look.Scaled(kTitleMargin));
        column.fmt = format;
        SendMessageW(m_list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(at++), reinterpret_cast<LPARAM>(&column));
    };
    for (const FixedColumn& fixed : kFixedColumns) add(TextOf(m_parts.texts, fixed.text), fixed.width, fixed.format);
    for (const ColumnValues::Column& property : m_parts.columns.Columns())
        add(property.definition->displayName, property.definition->defaultWidth,
            property.definition->valueType == kNumberValue ? LVCFMT_RIGHT : LVCFMT_LEFT);
}

uint32_t FolderView::Open(const std::wstring& folder, const std::wstring& focused) {
    std::vector<FolderRow> rows;
    if (const uint32_t error = ReadFolder(folder, rows)) return error;
    {
        // What was read now knows all of them.
        const std::lock_guard lock(m_reportsMutex);
        m_renamings.clear();
    }
    // Emptied first, the list forgets a selection of twenty thousand rows at once and not row by row.
    ListView_SetItemCountEx(m_list, 0, 0);
    m_rows = std::move(rows);
    m_folder = folder;
    SortRows(m_rows, m_order, m_isDescending);
    ShowRows();
    // Without a focused row the arrow keys would begin nowhere.
    const auto wanted = std::ranges::find_if(
        m_rows, [&](const FolderRow& row) { return !focused.empty() && EqualIgnoringCase(row.entry.name, focused); });
    const auto at = wanted == m_rows.end() ? 0 : static_cast<int>(wanted - m_rows.begin());
    ListView_SetItemState(m_list, at, LVIS_FOCUSED, LVIS_FOCUSED);
    ListView_EnsureVisible(m_list, at, FALSE);
    return ERROR_SUCCESS;
}

void FolderView::ShowOrder() const {
    const HWND header = ListView_GetHeader(m_list);
    for (int column = kName; column <= kDate; ++column) {
        HDITEMW item = {};
        item.mask = HDI_FORMAT;
        SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
        item.fmt = HeaderFormat(item.fmt, static_cast<int>(m_order) == column, m_isDescending);
        SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
    }
}

void FolderView::ShowRows() {
    ++m_reading;
    m_worker.ForgetRequests();
    for (FolderRow& row : m_rows) row.isAsked = false;
    ListView_SetItemState(m_list, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_SetItemCountEx(m_list, m_rows.size(), LVSICF_NOSCROLL);
    InvalidateRect(m_list, nullptr, FALSE);
}

uint32_t FolderView::Refresh() {
    std::vector<FolderRow> rows;
    if (const uint32_t error = ReadFolder(m_folder, rows)) return error;
    // Selection and focus go with a renamed file: an item knows its new path, and other renames have been reported.
    FollowRenames();
    const auto nameOf = [](const FolderRow& row) {
        return row.item ? std::wstring(Win32::FileNameOf(row.item->Path())) : row.entry.name;
    };
    std::set<std::wstring> selected;
    for (const size_t row : SelectedRows()) selected.insert(nameOf(m_rows[row]));
    const int focusedRow = Focused();
    const std::wstring focused = focusedRow >= 0 ? nameOf(m_rows[static_cast<size_t>(focusedRow)]) : std::wstring();
    // The values known so far are shown until the new ones come: a cell that goes blank for a moment flickers.
    std::map<std::wstring, std::vector<std::wstring>> known;
    for (FolderRow& row : m_rows) known[nameOf(row)] = std::move(row.properties);
    m_rows = std::move(rows);
    SortRows(m_rows, m_order, m_isDescending);
    ShowRows();
    int position = 0;
    int newFocus = std::min(focusedRow, static_cast<int>(m_rows.size()) - 1);
    for (FolderRow& row : m_rows) {
        if (const auto entry = known.find(row.entry.name); entry != known.end())
            row.properties = std::move(entry->second);
        if (selected.contains(row.entry.name)) ListView_SetItemState(m_list, position, LVIS_SELECTED, LVIS_SELECTED);
        if (row.entry.name == focused) newFocus = position;
        ++position;
    }
    if (newFocus >= 0) ListView_SetItemState(m_list, newFocus, LVIS_FOCUSED, LVIS_FOCUSED);
    return ERROR_SUCCESS;
}

void FolderView::FollowRenames() {
    std::vector<Renaming> renamings;
    {
        const std::lock_guard lock(m_reportsMutex);
        renamings = std::exchange(m_renamings, {});
    }
    if (renamings.empty()) return;
    std::map<std::wstring, FolderRow*> rows;
    for (FolderRow& row : m_rows) rows[Win32::ToLowerCase(row.item ? row.item->Path() : PathOf(row))] = &row;
    // One after the other: a name that was given up may have been taken by the next file.
    for (const Renaming& renaming : renamings) {
        auto row = rows.extract(Win32::ToLowerCase(renaming.before));
        if (row.empty()) continue;
        row.mapped()->item = m_parts.files.MakeItem(renaming.now);  // threads may be reading the one before
        row.key() = Win32::ToLowerCase(renaming.now);
        rows.insert(std::move(row));
    }
}

void FolderView::NoteRenamed(const std::wstring& before, const std::wstring& now) {
    const std::lock_guard lock(m_reportsMutex);
    m_renamings.push_back({before, now});
}

size_t FolderView::Select(const std::vector<std::wstring>& paths) {
    size_t elsewhere = 0;
    std::set<std::wstring> wanted;
    for (const std::wstring& path : paths) {
        if (Win32::EqualIgnoringCase(Win32::WithoutSeparator(Win32::FolderOf(path)), m_folder))
            wanted.insert(Win32::ToLowerCase(Win32::FileNameOf(path)));
        else
            ++elsewhere;
    }
    ListView_SetItemState(m_list, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    bool isFirst = true;
    for (size_t row = 0; row < m_rows.size(); ++row) {
        if (!wanted.contains(Win32::ToLowerCase(m_rows[row].entry.name))) continue;
        const auto at = static_cast<int>(row);
        ListView_SetItemState(m_list, at, LVIS_SELECTED | (isFirst ? LVIS_FOCUSED : 0), LVIS_SELECTED | LVIS_FOCUSED);
        if (isFirst) ListView_EnsureVisible(m_list, at, FALSE);
        isFirst = false;
    }
    return elsewhere;
}

void FolderView::SelectAll() {
    ListView_SetItemState(m_list, -1, LVIS_SELECTED, LVIS_SELECTED);
}

std::vector<size_t> FolderView::SelectedRows() const {
    std::vector<size_t> rows;
    for (int at = -1; (at = ListView_GetNextItem(m_list, at, LVNI_SELECTED)) >= 0;)
        if (static_cast<size_t>(at) < m_rows.size()) rows.push_back(static_cast<size_t>(at));
    return rows;
}

int FolderView::Focused() const {
    const int at = ListView_GetNextItem(m_list, -1, LVNI_FOCUSED);
    return at < static_cast<int>(m_rows.size()) ? at : -1;
}

size_t FolderView::CountOfSelected() const {
    return ListView_GetSelectedCount(m_list);
}

uint64_t FolderView::SizeOfSelected() const {
    uint64_t size = 0;
    for (const size_t row : SelectedRows()) size += m_rows[row].IsFolder() ? 0 : m_rows[row].entry.size;
    return size;
}

std::wstring FolderView::PathOf(const FolderRow& row) const {
    return m_folder.empty() ? row.entry.name : Win32::JoinPath(m_folder, row.entry.name);
}

std::wstring FolderView::FocusedPath() const {
    const int at = Focused();
    return at < 0 ? std::wstring() : PathOf(m_rows[static_cast<size_t>(at)]);
}

const std::shared_ptr<FileItem>& FolderView::ItemOf(FolderRow& row) {
    if (!row.item) row.item = m_parts.files.MakeItem(PathOf(row));
    return row.item;
}

IPanelView::Items FolderView::SelectedItems() {
    IPanelView::Items items;
    if (m_folder.empty()) return items;
    for (const size_t row : SelectedRows()) items.push_back(ItemOf(m_rows[row]));
    return items;
}

IPanelView::Items FolderView::FocusedGroup() {
    const int focused = Focused();
    if (m_folder.empty() || focused < 0) return {};
    FolderRow& first = m_rows[static_cast<size_t>(focused)];
    IPanelView::Items items = {ItemOf(first)};
    const std::wstring stem = StemOf(first.entry.name);
    for (FolderRow& row : m_rows)
        if (&row != &first && EqualIgnoringCase(StemOf(row.entry.name), stem)) items.push_back(ItemOf(row));
    return items;
}

void FolderView::Mark(const std::wstring& path, uint32_t kind) {
    {
        const std::lock_guard lock(m_reportsMutex);
        m_marks.insert_or_assign(Win32::ToLowerCase(path), kind);
    }
    PostMessageW(m_parent, m_answersMessage, 0, 0);
}

void FolderView::ClearMarks() {
    const std::lock_guard lock(m_reportsMutex);
    m_marks.clear();
    InvalidateRect(m_list, nullptr, FALSE);
}

std::wstring FolderView::ResultOf(const FolderRow& row) {
    const std::lock_guard lock(m_reportsMutex);
    if (m_marks.empty()) return {};
    const auto mark = m_marks.find(Win32::ToLowerCase(PathOf(row)));
    if (mark == m_marks.end()) return {};
    if (mark->second == Quorvane::SDK::MarkKind::Failed) return TextOf(m_parts.texts, PanelText::Failed);
    return TextOf(m_parts.texts,
                  mark->second == Quorvane::SDK::MarkKind::Skipped ? PanelText::Skipped : PanelText::Done);
}

std::wstring FolderView::CellText(size_t row, int column) {
    const FolderRow& shown = m_rows[row];
    switch (column) {
        case kName: return shown.entry.name;
        case kSize:
            return shown.IsFolder() ? TextOf(m_parts.texts, PanelText::Folder) : GroupedNumber(shown.entry.size);
        case kDate: return DateText(shown.entry.written);
        case kResult: return ResultOf(shown);
        default: break;
    }
    if (m_folder.empty()) return {};
    AskForProperties(row);
    const auto property = static_cast<size_t>(column - kFirstProperty);
    return property < shown.properties.size() ? shown.properties[property] : std::wstring();
}

void FolderView::AskForProperties(size_t row) {
    FolderRow& shown = m_rows[row];
    if (shown.isAsked) return;
    shown.isAsked = true;
    m_worker.Ask({ItemOf(shown), row, m_reading});
}

void FolderView::Rescale(UINT from) {
    SendMessageW(m_list, WM_SETFONT, reinterpret_cast<WPARAM>(m_parts.look.Font()), TRUE);
    Ui::RescaleColumns(m_list, from, m_parts.look.DotsPerInch());
}

std::vector<std::wstring> FolderView::SelectedPaths() const {
    std::vector<std::wstring> paths;
    for (const size_t row : SelectedRows()) paths.push_back(PathOf(m_rows[row]));
    return paths;
}

SelectionKind FolderView::KindOfSelected() const {
    SelectionKind kind;
    if (m_folder.empty()) return kind;
    for (const size_t row : SelectedRows()) ++(m_rows[row].IsFolder() ? kind.folders : kind.files);
    return kind;
}

POINT FolderView::PlaceOfFocused() const {
    RECT rect = {};
    ListView_GetItemRect(m_list, std::max(Focused(), 0), &rect, LVIR_LABEL);
    POINT place = {rect.left, rect.bottom};
    ClientToScreen(m_list, &place);
    return place;
}

void FolderView::OnAnswers() {
    for (PropertyWorker::Answer& answer : m_worker.TakeAnswers())
        if (answer.reading == m_reading) m_rows[answer.row].properties = std::move(answer.properties);
    InvalidateRect(m_list, nullptr, FALSE);
}

void FolderView::SortBy(int column) {
    if (column > kDate) return;  // the other values are known only for rows that somebody has looked at
    const auto order = static_cast<RowOrder>(column);
    m_isDescending = order == m_order && !m_isDescending;
    m_order = order;
    ShowOrder();
    Refresh();
}

LRESULT FolderView::OnCustomDraw(NMLVCUSTOMDRAW& draw) {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return m_rows.empty() ? CDRF_NOTIFYPOSTPAINT : CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage == CDDS_POSTPAINT)
        m_parts.look.DrawHint(m_list, draw.nmcd.hdc, TextOf(m_parts.texts, PanelText::EmptyFolder));
    const auto row = static_cast<size_t>(draw.nmcd.dwItemSpec);
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || row >= m_rows.size()) return CDRF_DODEFAULT;
    const bool isFailure = ResultOf(m_rows[row]) == TextOf(m_parts.texts, PanelText::Failed);
    return m_parts.look.Ink(draw, isFailure ? Tone::Failure : Tone::Plain);
}

bool FolderView::OnNotification(NMHDR& header, LRESULT& result) {
    switch (header.code) {
        case LVN_GETDISPINFOW: {
            LVITEMW& item = reinterpret_cast<NMLVDISPINFOW&>(header).item;
            const auto row = static_cast<size_t>(item.iItem);
            if ((item.mask & LVIF_TEXT) != 0 && row < m_rows.size())
                CopyText(CellText(row, item.iSubItem), item.pszText, static_cast<uint32_t>(item.cchTextMax));
            return true;
        }
        case LVN_ODFINDITEMW: {
            const auto& find = reinterpret_cast<const NMLVFINDITEMW&>(header);
            // Typed letters come as one of the two, depending on the system.
            const bool isText = (find.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) != 0;
            result = isText && find.lvfi.psz ? FindByBeginning(m_rows, find.lvfi.psz, find.iStart) : -1;
            return true;
        }
        case LVN_COLUMNCLICK: SortBy(reinterpret_cast<const NMLISTVIEW&>(header).iSubItem); return true;
        case NM_CUSTOMDRAW: result = OnCustomDraw(reinterpret_cast<NMLVCUSTOMDRAW&>(header)); return true;
        default: return false;
    }
}

}  // namespace QVHost
