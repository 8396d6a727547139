// add_tag_dlg.h - the dialog "Add BatchRename Tag": builds the tag of a file property.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ui/dialog.h"

namespace BatchRename {

class BatchRenameAddTag final : private Ui::Dialog {
public:
    /// `properties`: the names to choose from; others may be typed, since hosts know more than they list.
    explicit BatchRenameAddTag(std::vector<std::wstring> properties);

    /// The tag; nothing when the user cancels.
    std::optional<std::wstring> Show(HWND owner);

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    /// The chosen property: also while the list tells of a choice that its field does not show yet.
    std::wstring Property(int notification) const;
    void Refresh(int notification);

    std::vector<std::wstring> m_properties;
    std::wstring m_tag;
};

}  // namespace BatchRename
