#include "batchrename/dialogs/profile_menu.h"

#include <algorithm>

#include "batchrename/batchrename_texts.h"
#include "batchrename/dialogs/batchrename_resource.h"
#include "ui/controls.h"
#include "win32/window_text.h"

namespace BatchRename {

using namespace Quorvane::SDK;

std::optional<ProfileChoice> PickProfile(HWND owner, HWND button, const std::vector<RenameProfile>& profiles,
                                         const Ui::HostTexts& texts) {
    Ui::PopupMenu menu;
    std::vector<std::wstring> names;
    for (const RenameProfile& profile : profiles) {
        names.push_back(Ui::MenuText(profile.name));
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

SaveProfileDlg::SaveProfileDlg(const std::vector<RenameProfile>& profiles)
    : Dialog(IDD_SAVE_PROFILE), m_profiles(profiles) {}

std::optional<std::wstring> SaveProfileDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_name) : std::nullopt;
}

bool SaveProfileDlg::OnInit() {
    const HWND combo = Item(IDC_PROFILE_NAME);
    SendMessageW(combo, CB_LIMITTEXT, kLongestProfileText, 0);
    for (const RenameProfile& profile : m_profiles)
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(profile.name.c_str()));
    EnableWindow(Item(IDOK), FALSE);
    return true;
}

bool SaveProfileDlg::OnCommand(int id, int notification) {
    if (id == IDCANCEL) return false;
    if (id == IDOK) {
        m_name = Win32::WindowText(Item(IDC_PROFILE_NAME));
        if (!m_name.empty() && MayTake(m_name)) End(IDOK);
        return true;
    }
    // A choice from the list is in the field only after this notification.
    const bool hasName = notification == CBN_SELCHANGE || !Win32::WindowText(Item(IDC_PROFILE_NAME)).empty();
    EnableWindow(Item(IDOK), hasName);
    return true;
}

bool SaveProfileDlg::MayTake(const std::wstring& name) {
    if (std::ranges::find(m_profiles, name, &RenameProfile::name) == m_profiles.end()) return true;
    const std::wstring question = Say()(Text::ReplaceProfile, {name});
    const std::wstring title = Win32::WindowText(GetWindow());
    return MessageBoxW(GetWindow(), question.c_str(), title.c_str(), MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) ==
           IDYES;
}

}  // namespace BatchRename
