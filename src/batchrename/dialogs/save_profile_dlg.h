// save_profile_dlg.h - asks for the name under which a rule is saved.
#pragma once

#include <optional>
#include <string>

#include "batchrename/profiles.h"
#include "ui/dialog.h"

namespace BatchRename {

class SaveProfileDlg final : private Ui::Dialog {
public:
    explicit SaveProfileDlg(const std::vector<RenameProfile>& profiles);

    /// A name that is not empty. A name in use was asked about; nothing when the user cancels.
    std::optional<std::wstring> Show(HWND owner);

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    bool MayTake(const std::wstring& name);

    const std::vector<RenameProfile>& m_profiles;
    std::wstring m_name;
};

}  // namespace BatchRename
