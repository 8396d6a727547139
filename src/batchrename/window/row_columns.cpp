#include "batchrename/window/row_columns.h"

#include <algorithm>
#include <utility>

#include "batchrename/batchrename_texts.h"
#include "batchrename/model/row_list.h"
#include "ui/controls.h"

#include <commctrl.h>

namespace BatchRename {
namespace {

constexpr Ui::ListColumn kColumns[] = {
    {Text::CurrentName, 448}, {Text::NewName, 448}, {Text::Status, 256}, {Text::Location, 256}};
static_assert(std::size(kColumns) == kColumnCount);
constexpr RowKey kKeys[] = {RowKey::CurrentName, RowKey::NewName, RowKey::Problems, RowKey::Location};
constexpr wchar_t kNarrowestName[] = L"A name.txt";
constexpr wchar_t kMargins[] = L"mm";  // as wide as what the control leaves around a text, and a little more
constexpr int kStatusPart = 38;        // percent of the list, at most
constexpr int kLocationPart = 22;

constexpr auto kCurrent = static_cast<size_t>(RowColumn::CurrentName);
constexpr auto kNew = static_cast<size_t>(RowColumn::NewName);
constexpr auto kStatus = static_cast<size_t>(RowColumn::Status);
constexpr auto kLocation = static_cast<size_t>(RowColumn::Location);

}  // namespace

std::array<int, kColumnCount> FitColumns(int available, const ColumnWishes& wishes) {
    std::array<int, kColumnCount> widths = {};
    widths[kStatus] = wishes.fixed[kStatus].value_or(std::min(wishes.status, available * kStatusPart / 100));
    widths[kLocation] = wishes.fixed[kLocation].value_or(std::min(wishes.location, available * kLocationPart / 100));
    int rest = available - widths[kStatus] - widths[kLocation];
    int sharing = 0;
    for (const size_t name : {kCurrent, kNew})
        if (wishes.fixed[name])
            rest -= widths[name] = *wishes.fixed[name];
        else
            ++sharing;
    for (const size_t name : {kCurrent, kNew}) {
        if (wishes.fixed[name]) continue;
        widths[name] = std::max(rest / sharing--, wishes.smallestName);
        rest -= widths[name];
    }
    return widths;
}

void RowColumns::Create(HWND list, Quorvane::SDK::Words say) {
    m_list = list;
    m_say = std::move(say);
    Ui::AddColumns(list, kColumns, m_say);
    Measure();
}

void RowColumns::Measure() {
    m_wishes = {};
    m_wishes.smallestName = WidthOf(kNarrowestName);
    SetTexts({}, {});
}

int RowColumns::WidthOf(const std::wstring& text) const {
    const auto width = [&](const wchar_t* measured) {
        return static_cast<int>(SendMessageW(m_list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(measured)));
    };
    return width(text.c_str()) + width(kMargins);
}

void RowColumns::SetTexts(std::span<const std::wstring> status, const std::wstring& location) {
    // The header has to show its word and an arrow.
    for (const std::wstring& text : status) m_wishes.status = std::max(m_wishes.status, WidthOf(text));
    m_wishes.status = std::max(m_wishes.status, WidthOf(m_say(kColumns[kStatus].title)) + WidthOf({}));
    m_wishes.location = std::max(WidthOf(location), WidthOf(m_say(kColumns[kLocation].title)) + WidthOf({}));
}

void RowColumns::Fit() {
    RECT client = {};
    GetClientRect(m_list, &client);
    const std::array<int, kColumnCount> widths = FitColumns(client.right, m_wishes);
    for (size_t column = 0; column < widths.size(); ++column)
        if (SendMessageW(m_list, LVM_GETCOLUMNWIDTH, column, 0) != widths[column])
            SendMessageW(m_list, LVM_SETCOLUMNWIDTH, column, widths[column]);
}

void RowColumns::OnUsersWidth(int column, bool isGiven) {
    if (column < 0 || static_cast<size_t>(column) >= kColumnCount) return;
    std::optional<int>& fixed = m_wishes.fixed[static_cast<size_t>(column)];
    fixed.reset();
    if (isGiven) fixed = static_cast<int>(SendMessageW(m_list, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0));
    Fit();
}

void RowColumns::ShowState(bool isOutdated, bool isAfterRun) {
    const auto show = [&](size_t column, const Quorvane::SDK::OwnText& title) {
        std::wstring text = m_say(title);
        LVCOLUMNW shown = {};
        shown.mask = LVCF_TEXT;
        shown.pszText = text.data();
        SendMessageW(m_list, LVM_SETCOLUMNW, column, reinterpret_cast<LPARAM>(&shown));
    };
    show(kCurrent, isAfterRun ? Text::OldName : kColumns[kCurrent].title);
    show(kNew, isOutdated ? Text::OutdatedName : kColumns[kNew].title);
}

void RowColumns::ShowOrder(const RowOrder& order) const {
    const auto header = reinterpret_cast<HWND>(SendMessageW(m_list, LVM_GETHEADER, 0, 0));
    for (size_t column = 0; column < kColumnCount; ++column) {
        HDITEMW item = {};
        item.mask = HDI_FORMAT;
        SendMessageW(header, HDM_GETITEMW, column, reinterpret_cast<LPARAM>(&item));
        item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        if (kKeys[column] == order.key) item.fmt |= order.isDescending ? HDF_SORTDOWN : HDF_SORTUP;
        SendMessageW(header, HDM_SETITEMW, column, reinterpret_cast<LPARAM>(&item));
    }
}

RowKey RowColumns::KeyOf(int column) {
    return kKeys[std::clamp(column, 0, static_cast<int>(kColumnCount) - 1)];
}

}  // namespace BatchRename
