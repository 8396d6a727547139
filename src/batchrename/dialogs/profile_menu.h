// profile_menu.h - the menu of the profiles, and the dialog that asks for the name under which a rule is saved.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "batchrename/profiles.h"
#include "ui/controls.h"
#include "ui/dialog.h"

namespace BatchRename {

enum class ProfileAction { Load, SaveAs, Delete };
struct ProfileChoice {
    ProfileAction action = ProfileAction::Load;
    RenameProfile profile;  // the one chosen, since others may have its name
};
/// The names in file order, then "Save as" and "Delete".
std::optional<ProfileChoice> PickProfile(HWND owner, HWND button, const std::vector<RenameProfile>& profiles,
                                         const Ui::HostTexts& texts);

class SaveProfileDlg final : private Ui::Dialog {
public:
    explicit SaveProfileDlg(const std::vector<RenameProfile>& profiles);

    /// A name that is not empty. A name in use was asked about; nothing when the user cancels.
    std::optional<std::wstring> Show(HWND owner);
    using Dialog::UseHost;

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    bool MayTake(const std::wstring& name);

    const std::vector<RenameProfile>& m_profiles;
    std::wstring m_name;
};

}  // namespace BatchRename
