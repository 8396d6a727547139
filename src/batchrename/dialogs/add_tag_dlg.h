// add_tag_dlg.h - the menu of the tags of a template, and the dialog "Add BatchRename Tag", which builds the tag of a
// file property.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ui/controls.h"
#include "ui/dialog.h"

namespace BatchRename {

/// What was chosen in the tag menu: a tag, or, with an empty text, the dialog for property tags.
std::optional<std::wstring> PickTag(HWND owner, HWND button, const Ui::HostTexts& texts);

/// A part of a property's value.
struct SubString {
    int32_t start = 1;  // counted from 1
    int32_t length = 0;
};

/// "[?size]", or with a part "[?size,2,3]".
std::wstring PropertyTag(const std::wstring& property, const SubString* part);

class BatchRenameAddTag final : private Ui::Dialog {
public:
    /// `properties`: the names to choose from; others may be typed, since hosts know more than they list.
    explicit BatchRenameAddTag(std::vector<std::wstring> properties);

    /// The tag; nothing when the user cancels.
    std::optional<std::wstring> Show(HWND owner);
    using Dialog::UseHost;

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
