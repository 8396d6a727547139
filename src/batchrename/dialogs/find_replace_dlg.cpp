#include "batchrename/dialogs/find_replace_dlg.h"

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/model/name_sample.h"
#include "batchrename/profiles.h"
#include "ui/controls.h"
#include "win32/window_text.h"

namespace BatchRename {
namespace {

constexpr ULONGLONG kPatience = 40;  // milliseconds for one look at the names: goes unnoticed while typing

struct Group {
    const wchar_t* text;
    const wchar_t* code;
};
constexpr Group kGroups[] = {
    {L"$&&\tthe whole match", L"$&"}, {L"$1\tfirst group", L"$1"},  {L"$2\tsecond group", L"$2"},
    {L"$3\tthird group", L"$3"},      {L"$4\tfourth group", L"$4"}, {L"$5\tfifth group", L"$5"},
    {L"$$\ta dollar sign", L"$$"},
};

}  // namespace

BatchRenameFindReplaceDlg::BatchRenameFindReplaceDlg(SearchAndReplaceItem item, uint32_t options, RowSnapshot rows)
    : Dialog(IDD_RENAME_ITEM), m_item(std::move(item)), m_options(options), m_rows(std::move(rows)) {}

std::optional<SearchAndReplaceItem> BatchRenameFindReplaceDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_item) : std::nullopt;
}

bool BatchRenameFindReplaceDlg::OnInit() {
    for (const int edit : {IDC_ITEM_FIND, IDC_ITEM_REPLACE})
        SendMessageW(Item(edit), EM_LIMITTEXT, kLongestProfileText, 0);
    Ui::SetTextOf(Item(IDC_ITEM_REPLACE), m_item.replaceWith);
    Ui::SetTextOf(Item(IDC_ITEM_FIND), m_item.find);
    Ui::SetTextOf(Item(IDC_ITEM_MODES), TextOfModes(m_options));
    EnableWindow(Item(IDC_ITEM_GROUPS), (m_options & RenameOption::RegularExpression) != 0);
    Refresh();
    return true;
}

bool BatchRenameFindReplaceDlg::OnCommand(int id, int notification) {
    if (id == IDOK) {
        if (Refresh()) End(IDOK);
        return true;
    }
    if (id == IDC_ITEM_GROUPS && notification == BN_CLICKED) PickGroup();
    if (id != IDCANCEL && notification == EN_CHANGE) Refresh();
    return id != IDCANCEL;
}

void BatchRenameFindReplaceDlg::PickGroup() {
    Ui::PopupMenu menu;
    for (const Group& group : kGroups) menu.Add(group.text);
    const int chosen = menu.Show(GetWindow(), Item(IDC_ITEM_GROUPS));
    if (chosen < 0) return;
    SendMessageW(Item(IDC_ITEM_REPLACE), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(kGroups[chosen].code));
    SetFocus(Item(IDC_ITEM_REPLACE));
}

bool BatchRenameFindReplaceDlg::Refresh() {
    m_item = {Win32::WindowText(Item(IDC_ITEM_FIND)), Win32::WindowText(Item(IDC_ITEM_REPLACE))};
    const ULONGLONG end = GetTickCount64() + kPatience;
    const ItemTrial trial = TryItem(m_item, m_options, *m_rows, [&] { return GetTickCount64() > end; });
    const std::wstring text = m_rows->empty() && trial.error.empty() ? L"" : TextOfTrial(trial, m_rows->size());
    Ui::SetTextOf(Item(IDC_ITEM_MATCHES), text);
    const bool isUsable = !m_item.find.empty() && trial.error.empty();
    EnableWindow(Item(IDOK), isUsable);
    return isUsable;
}

}  // namespace BatchRename
