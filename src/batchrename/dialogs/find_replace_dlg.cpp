#include "batchrename/dialogs/find_replace_dlg.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "batchrename/batchrename_texts.h"
#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/model/name_sample.h"
#include "batchrename/profiles.h"
#include "ui/controls.h"
#include "win32/window_text.h"

namespace BatchRename {
namespace {

constexpr ULONGLONG kPatience = 40;  // milliseconds for one look at the names: goes unnoticed while typing

struct Group {
    Quorvane::SDK::OwnText text;
    const wchar_t* code;
};
constexpr Group kGroups[] = {
    {Text::GroupWhole, L"$&"},  {Text::GroupFirst, L"$1"}, {Text::GroupSecond, L"$2"}, {Text::GroupThird, L"$3"},
    {Text::GroupFourth, L"$4"}, {Text::GroupFifth, L"$5"}, {Text::GroupDollar, L"$$"},
};

}  // namespace

BatchRenameFindReplaceDlg::BatchRenameFindReplaceDlg(const RuleDefinition& rule, size_t place, RowSnapshot rows,
                                                     Follow follow)
    : Dialog(IDD_RENAME_ITEM),
      m_rule(rule),
      m_items(*rule.items),
      m_place(place),
      m_rows(std::move(rows)),
      m_follow(std::move(follow)) {}

std::optional<SearchAndReplaceItem> BatchRenameFindReplaceDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_items[m_place]) : std::nullopt;
}

bool BatchRenameFindReplaceDlg::OnInit() {
    for (const int edit : {IDC_ITEM_FIND, IDC_ITEM_REPLACE})
        SendMessageW(Item(edit), EM_LIMITTEXT, kLongestProfileText, 0);
    Ui::SetTextOf(Item(IDC_ITEM_REPLACE), m_items[m_place].replaceWith);
    Ui::SetTextOf(Item(IDC_ITEM_FIND), m_items[m_place].find);
    Ui::SetTextOf(Item(IDC_ITEM_MODES), TextOfModes(m_rule.options, Say()));
    EnableWindow(Item(IDC_ITEM_GROUPS), (m_rule.options & RenameOption::RegularExpression) != 0);
    MoveToLowerEdge();
    Refresh();
    m_isFilled = true;
    return true;
}

bool BatchRenameFindReplaceDlg::OnCommand(int id, int notification) {
    if (id == IDOK) {
        if (Refresh()) End(IDOK);
        return true;
    }
    if (id == IDC_ITEM_GROUPS && notification == BN_CLICKED) PickGroup();
    if (id != IDCANCEL && notification == EN_CHANGE && m_isFilled) {
        Refresh();
        m_follow(m_items[m_place]);
    }
    return id != IDCANCEL;
}

void BatchRenameFindReplaceDlg::MoveToLowerEdge() {
    RECT dialog = {};
    RECT owner = {};
    if (!GetWindowRect(GetWindow(), &dialog) || !GetWindowRect(GetParent(GetWindow()), &owner)) return;
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(GetWindow(), MONITOR_DEFAULTTONEAREST), &monitor);
    const LONG lowest = std::min(owner.bottom, monitor.rcWork.bottom) - (dialog.bottom - dialog.top);
    SetWindowPos(GetWindow(), nullptr, dialog.left, std::max(lowest, monitor.rcWork.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void BatchRenameFindReplaceDlg::PickGroup() {
    Ui::PopupMenu menu;
    for (const Group& group : kGroups) menu.Add(Say()(group.text));
    const int chosen = menu.Show(GetWindow(), Item(IDC_ITEM_GROUPS));
    if (chosen < 0) return;
    SendMessageW(Item(IDC_ITEM_REPLACE), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(kGroups[chosen].code));
    SetFocus(Item(IDC_ITEM_REPLACE));
}

bool BatchRenameFindReplaceDlg::Refresh() {
    SearchAndReplaceItem& item = m_items[m_place];
    item.find = Win32::WindowText(Item(IDC_ITEM_FIND));
    item.replaceWith = Win32::WindowText(Item(IDC_ITEM_REPLACE));
    m_rule.items = std::make_shared<const SearchAndReplaceItems>(m_items);
    const ULONGLONG end = GetTickCount64() + kPatience;
    const ItemTrial trial = TryItem(m_rule, m_place, *m_rows, [&] { return GetTickCount64() > end; });
    const std::wstring text = m_rows->empty() && trial.error.empty() ? L"" : TextOfTrial(trial, m_rows->size(), Say());
    Ui::SetTextOf(Item(IDC_ITEM_MATCHES), text);
    const bool isUsable = !item.find.empty() && trial.error.empty();
    EnableWindow(Item(IDOK), isUsable);
    return isUsable;
}

}  // namespace BatchRename
