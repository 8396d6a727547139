#include "batchrename/dialogs/popup_menus.h"

#include "batchrename/batchrename_texts.h"
#include "batchrename/dialogs/tags.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

/// A name as a menu shows it: "&" would mark a key, a tab would begin another column.
std::wstring Escaped(const std::wstring& name) {
    std::wstring text;
    for (const wchar_t unit : name) {
        if (unit == L'&') text += L'&';
        text += unit == L'\t' ? L' ' : unit;
    }
    return text;
}

}  // namespace

int PopupMenu::Add(const std::wstring& text, bool isEnabled) {
    const UINT flags = MF_STRING | (isEnabled ? MF_ENABLED : MF_GRAYED);
    AppendMenuW(m_menu.Get(), flags, static_cast<UINT_PTR>(m_count) + 1,
                text.c_str());  // 0 means that nothing was chosen
    return m_count++;
}

void PopupMenu::AddSeparator() {
    AppendMenuW(m_menu.Get(), MF_SEPARATOR, 0, nullptr);
}

int PopupMenu::AddList(const std::wstring& title, const std::vector<std::wstring>& texts) {
    const int first = m_count;
    const HMENU list = CreatePopupMenu();
    for (const std::wstring& text : texts)
        AppendMenuW(list, MF_STRING, static_cast<UINT_PTR>(m_count++) + 1, text.c_str());
    // From here on it belongs to the menu above.
    const UINT flags = MF_POPUP | (texts.empty() ? MF_GRAYED : MF_ENABLED);
    if (!AppendMenuW(m_menu.Get(), flags, reinterpret_cast<UINT_PTR>(list), title.c_str())) DestroyMenu(list);
    return first;
}

int PopupMenu::Show(HWND owner, HWND button) {
    RECT rect = {};
    GetWindowRect(button, &rect);
    TPMPARAMS keepClear = {sizeof(keepClear), rect};
    return TrackPopupMenuEx(m_menu.Get(), TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON | TPM_VERTICAL, rect.left,
                            rect.bottom, owner, &keepClear) -
           1;
}

std::optional<std::wstring> PickTag(HWND owner, HWND button, const Ui::HostTexts& texts) {
    PopupMenu menu;
    std::vector<const wchar_t*> tags;
    for (const TagEntry& entry : TagEntries()) {
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

std::optional<ProfileChoice> PickProfile(HWND owner, HWND button, const std::vector<RenameProfile>& profiles,
                                         const Ui::HostTexts& texts) {
    PopupMenu menu;
    std::vector<std::wstring> names;
    for (const RenameProfile& profile : profiles) {
        names.push_back(Escaped(profile.name));
        menu.Add(names.back());
    }
    const int count = static_cast<int>(profiles.size());
    if (profiles.empty()) menu.Add(texts(Text::NoProfiles), false);
    menu.AddSeparator();
    const int saveAs = menu.Add(texts(Text::SaveProfile));
    const int firstDelete = menu.AddList(texts(Text::DeleteProfile), names);
    const int chosen = menu.Show(owner, button);
    if (chosen < 0) return std::nullopt;
    if (chosen == saveAs) return ProfileChoice{ProfileAction::SaveAs, {}};
    if (chosen >= firstDelete && chosen - firstDelete < count)
        return ProfileChoice{ProfileAction::Delete, profiles[static_cast<size_t>(chosen - firstDelete)]};
    if (chosen < count) return ProfileChoice{ProfileAction::Load, profiles[static_cast<size_t>(chosen)]};
    return std::nullopt;
}

}  // namespace BatchRename
