// create_links_dlg.h - the dialog "Create links": which kind of link, where, and by which name for each target. Making
// the links is the command's work.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/dialog.h"

namespace FileUtils {

struct LinkTarget {
    std::wstring path;
    bool isFolder = false;
};

struct CreateLinksRequest {
    uint32_t type = 1;  // 1 hard link, 2 junction, 3 symbolic link, 4 shortcut
    bool asAdministrator = false;
    std::vector<std::wstring> links;  // full paths, one for each target in its order
};

/// Why the dialog cannot end with this link; "" when it can.
using LinkCheck = std::function<std::wstring(uint32_t type, const std::wstring& link, const LinkTarget& target)>;

/// The name for a link in `folder`: the target's own, or "a - link.txt" where that name is the target itself.
std::wstring ProposedLinkName(const LinkTarget& target, const std::wstring& folder);

/// The full path of a link. A shortcut gets ".lnk" unless its name ends so.
std::wstring LinkPath(uint32_t type, const std::wstring& folder, const std::wstring& name);

class CreateLinksDlg final : private Ui::Dialog {
public:
    /// `targets` has at least one. Without `canElevate` administrator rights are not offered.
    CreateLinksDlg(std::vector<LinkTarget> targets, bool canElevate, LinkCheck whyNot);

    /// Nothing when the user cancels.
    std::optional<CreateLinksRequest> Show(HWND owner);

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    uint32_t Type() const;
    /// Row of the link whose name is in the field.
    size_t Selected() const;
    void ProposeNames();
    void ShowSelectedName();
    void ShowLinks();
    void ShowLink(size_t row);
    std::wstring LineOf(size_t row) const;
    CreateLinksRequest FromControls() const;
    std::wstring FaultOf(const CreateLinksRequest& request);
    void Refresh();

    /// What was found out about a row. It asks the system, so it is not asked again while the link is the same.
    struct Checked {
        uint32_t type = 0;
        std::wstring link;
        std::wstring fault;
    };

    std::vector<LinkTarget> m_targets;
    std::vector<std::wstring> m_names;  // as typed, without ".lnk"
    std::vector<bool> m_isTyped;        // by the person; the others follow the folder
    std::vector<Checked> m_checked;
    bool m_canElevate;
    LinkCheck m_whyNot;
    CreateLinksRequest m_request;
};

}  // namespace FileUtils
