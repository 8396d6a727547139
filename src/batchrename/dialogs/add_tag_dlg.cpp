#include "batchrename/dialogs/add_tag_dlg.h"

#include <vector>

#include "batchrename/batchrename_texts.h"
#include "batchrename/dialogs/batchrename_resource.h"
#include "ui/controls.h"
#include "win32/text.h"
#include "win32/window_text.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

/// One line of the menu.
struct TagEntry {
    const wchar_t* tag;  // null: a separator
    TextId text;
};

constexpr TagEntry kTags[] = {
    {L"[N]", Text::NameTag}, {L"[E]", Text::ExtensionTag}, {L"[C]", Text::CounterTag}, {L"[F]", Text::FolderTag},
    {nullptr, kNoText},      {L"[Y]", Text::YearTag},      {L"[M]", Text::MonthTag},   {L"[D]", Text::DayTag},
    {nullptr, kNoText},      {L"[h]", Text::HourTag},      {L"[m]", Text::MinuteTag},  {L"[s]", Text::SecondTag},
    {nullptr, kNoText},
};

}  // namespace

std::optional<std::wstring> PickTag(HWND owner, HWND button, const Ui::HostTexts& texts) {
    Ui::PopupMenu menu;
    std::vector<const wchar_t*> tags;
    for (const TagEntry& entry : kTags) {
        if (!entry.tag) {
            menu.AddSeparator();
            continue;
        }
        menu.Add(texts(entry.text));
        tags.push_back(entry.tag);
    }
    const int property = menu.Add(texts(Text::PropertyTag));
    const int chosen = menu.Show(owner, button);
    if (chosen < 0) return std::nullopt;
    return chosen == property ? std::wstring() : tags[static_cast<size_t>(chosen)];
}

std::wstring PropertyTag(const std::wstring& property, const SubString* part) {
    std::wstring tag = L"[?" + property;
    if (part) tag += L"," + std::to_wstring(part->start) + L"," + std::to_wstring(part->length);
    return tag + L"]";
}

namespace {

constexpr WPARAM kLongestNumber = 9;  // digits
constexpr WPARAM kLongestProperty = 255;

}  // namespace

BatchRenameAddTag::BatchRenameAddTag(std::vector<std::wstring> properties)
    : Dialog(IDD_ADD_TAG), m_properties(std::move(properties)) {}

std::optional<std::wstring> BatchRenameAddTag::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_tag) : std::nullopt;
}

bool BatchRenameAddTag::OnInit() {
    for (const std::wstring& name : m_properties)
        SendMessageW(Item(IDC_PROPERTY), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    SendMessageW(Item(IDC_PROPERTY), CB_SETCURSEL, 0, 0);
    SendMessageW(Item(IDC_PROPERTY), CB_LIMITTEXT, kLongestProperty, 0);
    for (const int edit : {IDC_SUB_START, IDC_SUB_LENGTH}) SendMessageW(Item(edit), EM_LIMITTEXT, kLongestNumber, 0);
    Ui::SetChecked(Item(IDC_COMPLETE), true);
    Ui::SetTextOf(Item(IDC_SUB_START), L"1");
    Ui::SetTextOf(Item(IDC_SUB_LENGTH), L"1");
    Refresh(0);
    return true;
}

bool BatchRenameAddTag::OnCommand(int id, int notification) {
    if (id == IDCANCEL) return false;
    if (id == IDOK) {
        Refresh(0);
        if (!m_tag.empty()) End(IDOK);
        return true;
    }
    if (id == IDC_TAG_TEXT) return false;
    if (notification == BN_CLICKED || notification == EN_CHANGE || notification == CBN_EDITCHANGE ||
        notification == CBN_SELCHANGE)
        Refresh(notification);
    return true;
}

std::wstring BatchRenameAddTag::Property(int notification) const {
    const HWND combo = Item(IDC_PROPERTY);
    const LRESULT chosen = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    if (notification == CBN_SELCHANGE && chosen >= 0) return m_properties[static_cast<size_t>(chosen)];
    return Win32::WindowText(combo);
}

void BatchRenameAddTag::Refresh(int notification) {
    const bool isPart = Ui::IsChecked(Item(IDC_SUB_STRING));
    Ui::EnableWithLabel(Item(IDC_SUB_START), isPart);
    Ui::EnableWithLabel(Item(IDC_SUB_LENGTH), isPart);
    const std::wstring property = Property(notification);
    const SubString part = {Win32::LeadingNumber<int32_t>(Win32::WindowText(Item(IDC_SUB_START))),
                            Win32::LeadingNumber<int32_t>(Win32::WindowText(Item(IDC_SUB_LENGTH)))};
    // These would end the name, or the tag, too early.
    const bool isName = !property.empty() && property.find_first_of(L"[],{}") == std::wstring::npos;
    m_tag = isName ? PropertyTag(property, isPart ? &part : nullptr) : std::wstring();
    Ui::SetTextOf(Item(IDC_TAG_TEXT), m_tag);
    EnableWindow(Item(IDOK), isName);
}

}  // namespace BatchRename
