#include "batchrename/window/rule_panel.h"

#include <utility>

#include "batchrename/batchrename_texts.h"
#include "batchrename/dialogs/add_tag_dlg.h"
#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/dialogs/find_replace_dlg.h"
#include "batchrename/dialogs/rename_dialog_pages.h"
#include "batchrename/profiles.h"
#include "batchrename/window/cell_edit.h"
#include "ui/controls.h"
#include "win32/text.h"
#include "win32/window_text.h"

#include <commctrl.h>

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

// The entries' item data are the rule's case bits.
constexpr Ui::ListEntry kCases[] = {
    {Text::CaseUnchanged, 0},
    {Text::CaseLowerBoth, RenameOption::LowerBoth},
    {Text::CaseUpperBoth, RenameOption::UpperBoth},
    {Text::CaseLowerName, RenameOption::LowerName},
    {Text::CaseUpperName, RenameOption::UpperName},
    {Text::CaseLowerExtension, RenameOption::LowerExtension},
    {Text::CaseUpperExtension, RenameOption::UpperExtension},
    {Text::CaseWords, RenameOption::CapitaliseWords},
    {Text::CaseSentence, RenameOption::Sentence},
};
constexpr Ui::ListEntry kScopes[] = {{Text::ScopeBoth, RenameOption::ScopeBoth},
                                     {Text::ScopeName, RenameOption::ScopeName},
                                     {Text::ScopeExtension, RenameOption::ScopeExtension}};
constexpr Ui::OptionBox kBoxes[] = {
    {IDC_REGEX, RenameOption::RegularExpression},
    {IDC_REPLACE_ALL_MATCHES, RenameOption::ReplaceAll},
    {IDC_CASE_SENSITIVE, RenameOption::CaseSensitive},
};
constexpr int kEdits[] = {IDC_NAME_TEMPLATE, IDC_EXTENSION_TEMPLATE, IDC_COUNTER_START, IDC_COUNTER_STEP,
                          IDC_COUNTER_DIGITS};
// Everything that is the rule's, with the labels, in the order of tabs: disabled while the rule is not used.
constexpr int kRuleControls[] = {
    IDC_NAME_TEMPLATE_LABEL,
    IDC_NAME_TEMPLATE,
    IDC_NAME_TAGS,
    IDC_EXTENSION_TEMPLATE_LABEL,
    IDC_EXTENSION_TEMPLATE,
    IDC_EXTENSION_TAGS,
    IDC_CASE_LABEL,
    IDC_CASE,
    IDC_COUNTER_START_LABEL,
    IDC_COUNTER_START,
    IDC_COUNTER_STEP_LABEL,
    IDC_COUNTER_STEP,
    IDC_COUNTER_DIGITS_LABEL,
    IDC_COUNTER_DIGITS,
    IDC_ITEMS_LABEL,
    IDC_ITEMS,
    IDC_REGEX,
    IDC_CASE_SENSITIVE,
    IDC_SCOPE_LABEL,
    IDC_SCOPE,
    IDC_PROFILES,
    IDC_LIVE_PREVIEW,
};

constexpr UINT kArranged = WM_APP;

constexpr Ui::ListColumn kItemColumns[] = {{Text::Find, 336}, {Text::ReplaceWith, 336}};

constexpr Ui::Anchor kPanelAnchors[] = {
    {IDC_ITEMS, 0, 0, 100, 100},          {IDC_ITEM_NEW, 100, 0, 100, 0},
    {IDC_ITEM_EDIT, 100, 0, 100, 0},      {IDC_ITEM_REMOVE, 100, 0, 100, 0},
    {IDC_ITEM_UP, 100, 0, 100, 0},        {IDC_ITEM_DOWN, 100, 0, 100, 0},
    {IDC_REGEX, 0, 100, 0, 100},          {IDC_REPLACE_ALL_MATCHES, 0, 100, 0, 100},
    {IDC_CASE_SENSITIVE, 0, 100, 0, 100}, {IDC_SCOPE_LABEL, 0, 100, 0, 100},
    {IDC_SCOPE, 0, 100, 0, 100},          {IDC_START, 100, 0, 100, 0},
    {IDC_UNDO, 100, 0, 100, 0},           {IDC_PROFILES, 100, 0, 100, 0},
    {IDC_RESET_LIST, 100, 0, 100, 0},     {IDC_CLOSE, 100, 100, 100, 100},
};

// At the right, or in a row above the rest where the window is too narrow for that.
constexpr int kColumn[] = {IDC_START, IDC_UNDO, IDC_PROFILES, IDC_RESET_LIST, IDC_CLOSE};

/// The first entry that stands for the bits; case bits are honoured from the lowest on.
void SelectEntry(HWND combo, std::span<const Ui::ListEntry> entries, uint32_t options, int otherwise) {
    int selected = otherwise;
    for (size_t index = entries.size(); index-- > 0;)
        if (entries[index].bit & options) selected = static_cast<int>(index);
    SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

bool IsRowChecked(HWND list, int row) {
    constexpr LRESULT kChecked = 2;
    const LRESULT state = SendMessageW(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK);
    return state == INDEXTOSTATEIMAGEMASK(kChecked);
}

void CheckRow(HWND list, int row, bool isChecked) {
    LVITEMW item = {};
    item.stateMask = LVIS_STATEIMAGEMASK;
    item.state = static_cast<UINT>(INDEXTOSTATEIMAGEMASK(isChecked ? 2 : 1));
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

}  // namespace

RulePanel::RulePanel(Ui::HostTexts texts, IPaneListener& listener)
    : Dialog(IDD_RULE_PANEL), m_texts(std::move(texts)), m_listener(listener) {
    // Without a page: the window itself opens the guide.
    UseHost({m_texts, nullptr, nullptr});
}

void RulePanel::Create(HWND parent) {
    m_parent = parent;
    ShowModeless(parent);
}

bool RulePanel::OnInit() {
    MakeResizable(kPanelAnchors, kColumn);
    AddTips(PageOf(IDD_RULE_PANEL).tips, m_texts);
    for (const int edit : kEdits) SendMessageW(Item(edit), EM_LIMITTEXT, kLongestProfileText, 0);
    Ui::FillCombo(Item(IDC_CASE), m_texts, kCases, 0, 0);
    Ui::FillCombo(Item(IDC_SCOPE), m_texts, kScopes, 0, RenameOption::ScopeBoth);
    Ui::AddColumns(Item(IDC_ITEMS), kItemColumns, Say());
    SendMessageW(Item(IDC_ITEMS), LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    ShareItemColumns();
    Ui::SetChecked(Item(IDC_LIVE_PREVIEW), true);
    Ui::SetChecked(Item(IDC_SAVE_UNDO), true);
    SetRule({});
    return false;  // the window decides where the focus goes
}

uint32_t RulePanel::Options() const {
    return Ui::SelectedBit(Item(IDC_CASE)) | Ui::SelectedBit(Item(IDC_SCOPE)) | Ui::BitsOfBoxes(GetWindow(), kBoxes);
}

RuleDefinition RulePanel::Rule() const {
    RuleDefinition rule;
    rule.nameTemplate = Win32::WindowText(Item(IDC_NAME_TEMPLATE));
    rule.extensionTemplate = Win32::WindowText(Item(IDC_EXTENSION_TEMPLATE));
    rule.counter = {Win32::LeadingNumber<int32_t>(Win32::WindowText(Item(IDC_COUNTER_START))),
                    Win32::LeadingNumber<int32_t>(Win32::WindowText(Item(IDC_COUNTER_STEP))),
                    Win32::LeadingNumber<int32_t>(Win32::WindowText(Item(IDC_COUNTER_DIGITS)))};
    rule.items = std::make_shared<const SearchAndReplaceItems>(m_items);
    rule.options = Options();
    return rule;
}

void RulePanel::SetRule(const RuleDefinition& rule) {
    EndCell(false);
    m_isSetting = true;
    Ui::SetTextOf(Item(IDC_NAME_TEMPLATE), rule.nameTemplate);
    Ui::SetTextOf(Item(IDC_EXTENSION_TEMPLATE), rule.extensionTemplate);
    Ui::SetTextOf(Item(IDC_COUNTER_START), std::to_wstring(rule.counter.start));
    Ui::SetTextOf(Item(IDC_COUNTER_STEP), std::to_wstring(rule.counter.step));
    Ui::SetTextOf(Item(IDC_COUNTER_DIGITS), std::to_wstring(rule.counter.digits));
    SelectEntry(Item(IDC_CASE), kCases, rule.options, 0);
    SelectEntry(Item(IDC_SCOPE), kScopes, rule.options, 0);
    Ui::SetBoxes(GetWindow(), kBoxes, rule.options);
    m_items = rule.items ? *rule.items : SearchAndReplaceItems();
    ShowItems(m_items.empty() ? -1 : 0);
    m_isSetting = false;
    RefreshButtons();
}

PanelChoices RulePanel::Choices() const {
    return {Ui::IsChecked(Item(IDC_LIVE_PREVIEW)), Ui::IsChecked(Item(IDC_SAVE_UNDO)),
            Ui::IsChecked(Item(IDC_CHANGES_ONLY))};
}

void RulePanel::SetState(const PanelState& state) {
    const PanelState former = std::exchange(m_state, state);
    const bool isIdle = !state.isRunning;
    if (state.isRunning || state.isRestoring) EndCell(true);
    const HWND focus = GetFocus();
    for (const int id : kRuleControls) EnableWindow(Item(id), isIdle && !state.isRestoring);
    for (const int id : {IDC_UNDO, IDC_RESET_LIST}) EnableWindow(Item(id), isIdle);
    EnableWindow(Item(IDC_SAVE_UNDO), isIdle && !state.isRestoring);  // restores are not recorded
    EnableWindow(Item(IDC_START), state.isRunning || state.canStart);
    if (former.isRunning != state.isRunning || former.canGoOn != state.canGoOn)
        Ui::SetTextOf(Item(IDC_START), Say()(state.isRunning ? Text::Stop : state.canGoOn ? Text::GoOn : Text::Start));
    RefreshButtons();
    // A disabled control would keep the focus and no key would arrive anywhere.
    if (focus && IsChild(GetWindow(), focus) && !IsWindowEnabled(focus))
        SetFocus(GetDlgItem(GetParent(GetWindow()), IDC_ROWS));
}

bool RulePanel::OnCommand(int id, int notification) {
    // Enter and Escape that no control wants: neither starts a run nor closes the window.
    if (id == IDOK || id == IDCANCEL) return true;
    if (m_isSetting) return true;
    if (id == IDC_ITEM_CELL) {
        OnCell(notification);
        return true;
    }
    const bool isClick = notification == BN_CLICKED;
    if (isClick) EndCell(true);  // what the button does may change its row
    if (isClick && id == IDC_NAME_TAGS) InsertTag(id, IDC_NAME_TEMPLATE);
    if (isClick && id == IDC_EXTENSION_TAGS) InsertTag(id, IDC_EXTENSION_TEMPLATE);
    if (isClick && id >= IDC_ITEM_NEW && id <= IDC_ITEM_DOWN) OnItemButton(id);
    if (isClick && id >= IDC_START && id <= IDC_CHANGES_ONLY) m_listener.OnButton(id);
    const bool isBox = isClick && id >= IDC_REGEX && id <= IDC_CASE_SENSITIVE;
    if (isBox) RefreshButtons();
    if (isBox || notification == EN_CHANGE || notification == CBN_SELCHANGE) m_listener.OnRuleChanged();
    return true;
}

bool RulePanel::OnMessage(UINT message, WPARAM, LPARAM lParam) {
    if (message == WM_SIZE) {
        EndCell(true);
        PostMessageW(GetWindow(), kArranged, 0, 0);  // the list gets its own size after this
    }
    if (message == kArranged) ShareItemColumns();
    if (message != WM_NOTIFY) return false;
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    if (header.idFrom == IDC_ITEMS) OnItemsNotify(header, lParam);
    return false;
}

void RulePanel::ShareItemColumns() {
    const HWND list = Item(IDC_ITEMS);
    RECT client = {};
    GetClientRect(list, &client);
    for (const WPARAM column : {0, 1}) SendMessageW(list, LVM_SETCOLUMNWIDTH, column, client.right / 2);
}

void RulePanel::OnItemsNotify(const NMHDR& header, LPARAM lParam) {
    if (header.code == LVN_ITEMCHANGED && !m_isSetting) {
        const auto& change = *reinterpret_cast<const NMLISTVIEW*>(lParam);
        const bool isOn = IsRowChecked(Item(IDC_ITEMS), change.iItem);
        const auto row = static_cast<size_t>(change.iItem);
        if (row < m_items.size() && m_items[row].isOn != isOn) {
            m_items[row].isOn = isOn;
            m_listener.OnRuleChanged();
        }
        RefreshButtons();
    }
    if (header.code == NM_DBLCLK) {
        LVHITTESTINFO hit = {};
        hit.pt = reinterpret_cast<const NMITEMACTIVATE*>(lParam)->ptAction;
        SendMessageW(Item(IDC_ITEMS), LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit));
        if (hit.iItem < 0)
            OnItemButton(IDC_ITEM_NEW);
        else if (hit.flags != LVHT_ONITEMSTATEICON)
            EditCell(hit.iItem, hit.iSubItem);
    }
    if (header.code == LVN_BEGINSCROLL) EndCell(true);
    if (header.code == LVN_KEYDOWN) {
        const WORD key = reinterpret_cast<const NMLVKEYDOWN*>(lParam)->wVKey;
        if (key == VK_DELETE) OnItemButton(IDC_ITEM_REMOVE);
        if (key == VK_INSERT) OnItemButton(IDC_ITEM_NEW);
        if (key == VK_F2) EditCell(Ui::SelectedRow(Item(IDC_ITEMS)), 0);
    }
}

void RulePanel::InsertTag(int button, int edit) {
    std::optional<std::wstring> tag;
    m_listener.RunModal([&] {
        tag = PickTag(GetWindow(), Item(button), m_texts);
        if (!tag || !tag->empty()) return;
        BatchRenameAddTag dialog(m_listener.PropertyNames());
        dialog.UseHost(m_listener.DialogHostFor(IDD_ADD_TAG));
        tag = dialog.Show(GetAncestor(GetWindow(), GA_ROOT));
    });
    if (!tag) return;
    SetFocus(Item(edit));
    SendMessageW(Item(edit), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(tag->c_str()));
}

void RulePanel::OnItemButton(int id) {
    const int selected = Ui::SelectedRow(Item(IDC_ITEMS));
    if (id == IDC_ITEM_NEW) return EditItem(true);
    if (selected < 0 || static_cast<size_t>(selected) >= m_items.size()) return;
    if (id == IDC_ITEM_EDIT) return EditItem(false);
    const int last = static_cast<int>(m_items.size()) - 1;
    int next = id == IDC_ITEM_UP ? selected - 1 : selected + 1;
    if (id == IDC_ITEM_REMOVE) {
        m_items.erase(m_items.begin() + selected);
        next = std::min(selected, last - 1);
    } else {
        if (next < 0 || next > last) return;
        std::swap(m_items[static_cast<size_t>(selected)], m_items[static_cast<size_t>(next)]);
    }
    ShowItems(next);
    m_listener.OnRuleChanged();
}

void RulePanel::EditItem(bool isNew) {
    const int selected = Ui::SelectedRow(Item(IDC_ITEMS));
    const size_t place = isNew ? m_items.size() : static_cast<size_t>(selected);
    const SearchAndReplaceItems before = m_items;
    if (isNew) m_items.emplace_back();
    const SearchAndReplaceItem given = m_items[place];
    BatchRenameFindReplaceDlg dialog(Rule(), place, m_listener.Rows(),
                                     [&](const SearchAndReplaceItem& typed) { FollowItem(place, typed); });
    dialog.UseHost(m_listener.DialogHostFor(IDD_RENAME_ITEM));
    std::optional<SearchAndReplaceItem> item;
    m_listener.RunModal([&] { item = dialog.Show(GetAncestor(GetWindow(), GA_ROOT)); });
    if (item) m_items[place] = *item;
    const bool mustFollow = item || (m_items[place] != given && Ui::IsChecked(Item(IDC_LIVE_PREVIEW)));
    if (!item) m_items = before;
    ShowItems(item || !isNew ? static_cast<int>(place) : selected);
    if (mustFollow) m_listener.OnRuleChanged();
}

void RulePanel::FollowItem(size_t place, const SearchAndReplaceItem& item) {
    m_items[place] = item;
    if (Ui::IsChecked(Item(IDC_LIVE_PREVIEW))) m_listener.OnRuleChanged();
}

void RulePanel::EditCell(int row, int column) {
    EndCell(true);
    const bool isUsable = !m_state.isRunning && !m_state.isRestoring;
    if (!isUsable || row < 0 || static_cast<size_t>(row) >= m_items.size() || column < 0 || column > 1) return;
    m_cellRow = static_cast<size_t>(row);
    m_cellColumn = column;
    m_cellBefore = m_items[m_cellRow];
    const std::wstring& text = column == 0 ? m_cellBefore.find : m_cellBefore.replaceWith;
    Ui::SelectRow(Item(IDC_ITEMS), row);
    m_cell = OpenCell(Item(IDC_ITEMS), row, column, text, IDC_ITEM_CELL, kLongestProfileText);
}

void RulePanel::OnCell(int notification) {
    if (!m_cell) return;
    if (notification == EN_CHANGE) {
        SearchAndReplaceItem item = m_items[m_cellRow];
        (m_cellColumn == 0 ? item.find : item.replaceWith) = Win32::WindowText(m_cell);
        return FollowItem(m_cellRow, item);
    }
    const bool isStep = notification == CellEnd::Next || notification == CellEnd::Former;
    if (!isStep && notification != CellEnd::Taken && notification != CellEnd::Cancelled) return;
    const int cell = static_cast<int>(m_cellRow) * 2 + m_cellColumn + (notification == CellEnd::Next ? 1 : -1);
    EndCell(notification != CellEnd::Cancelled);
    if (isStep && cell >= 0) EditCell(cell / 2, cell % 2);
}

void RulePanel::EndCell(bool isTaken) {
    const HWND cell = std::exchange(m_cell, nullptr);
    if (!cell) return;
    // The focus goes back before the control that has it is gone: afterwards nobody would have it.
    if (GetFocus() == cell) SetFocus(Item(IDC_ITEMS));
    DestroyWindow(cell);
    SearchAndReplaceItem& item = m_items[m_cellRow];
    const bool hasChanged = item != m_cellBefore;
    if (!isTaken) item = std::exchange(m_cellBefore, {});
    ShowTexts(static_cast<int>(m_cellRow), item);
    if (hasChanged) m_listener.OnRuleChanged();
}

void RulePanel::ShowItems(int selected) {
    const HWND list = Item(IDC_ITEMS);
    const bool wasSetting = std::exchange(m_isSetting, true);
    SendMessageW(list, LVM_DELETEALLITEMS, 0, 0);
    int row = 0;
    for (const SearchAndReplaceItem& item : m_items) {
        Ui::SetListText(list, row, 0, item.find);
        Ui::SetListText(list, row, 1, item.replaceWith);
        CheckRow(list, row++, item.isOn);
    }
    if (selected >= 0) Ui::SelectRow(list, selected);
    m_isSetting = wasSetting;
    RefreshButtons();
}

void RulePanel::ShowTexts(int row, const SearchAndReplaceItem& item) {
    for (const int column : {0, 1}) {
        std::wstring text = column == 0 ? item.find : item.replaceWith;
        LVITEMW cell = {};
        cell.iSubItem = column;
        cell.pszText = text.data();
        SendMessageW(Item(IDC_ITEMS), LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&cell));
    }
}

void RulePanel::RefreshButtons() {
    const bool isUsable = !m_state.isRunning && !m_state.isRestoring;
    const int selected = Ui::SelectedRow(Item(IDC_ITEMS));
    const int last = static_cast<int>(m_items.size()) - 1;
    EnableWindow(Item(IDC_ITEM_NEW), isUsable);
    EnableWindow(Item(IDC_ITEM_EDIT), isUsable && selected >= 0);
    EnableWindow(Item(IDC_ITEM_REMOVE), isUsable && selected >= 0);
    EnableWindow(Item(IDC_ITEM_UP), isUsable && selected > 0);
    EnableWindow(Item(IDC_ITEM_DOWN), isUsable && selected >= 0 && selected < last);
    // An expression replaces every match. compatibility: 28
    EnableWindow(Item(IDC_REPLACE_ALL_MATCHES), isUsable && !Ui::IsChecked(Item(IDC_REGEX)));
}

}  // namespace BatchRename
