// create_links_dlg.h - the dialog "Create links": which kind of link, where, and by which name for each target. Making
// the links is the command's work.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "fileutils/links/link_check.h"
#include "ui/dialog.h"

#include <commctrl.h>

namespace FileUtils {

struct CreateLinksRequest {
    uint32_t type = 1;  // 1 hard link, 2 junction, 3 symbolic link, 4 shortcut
    bool asAdministrator = false;
    std::vector<std::wstring> links;  // full paths, one for each target in its order
};

/// Opens a picker over a window, beginning in a folder, and gives the folder chosen; "" when none was chosen.
using FolderPicker = std::function<std::wstring(HWND owner, const std::wstring& folder)>;

/// Answers each key at once, however many targets there are: the list holds no texts of its own, and the links are
/// looked at on another thread. Until that is done, OK waits for it.
class CreateLinksDlg final : private Ui::Dialog {
public:
    /// `targets` has at least one. Without `canElevate` administrator rights are not offered.
    CreateLinksDlg(std::vector<LinkTarget> targets, bool canElevate, LinkCheck whyNot, FolderPicker pick);

    /// Nothing when the user cancels.
    std::optional<CreateLinksRequest> Show(HWND owner);
    using Dialog::UseHost;

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnNotify(const NMHDR& header, LPARAM lParam);
    uint32_t Type() const;
    /// Row of the link whose name is in the field.
    size_t Selected() const;
    void ShowSelectedName();
    void FillCell(LVITEMW& cell) const;
    void Accept();
    /// The links have changed: has them looked at.
    void Refresh();
    void ShowFault(const std::wstring& fault);
    CreateLinksRequest FromControls() const;

    LinkNames m_names;
    bool m_canElevate;
    FolderPicker m_pick;
    bool m_isChecked = false;        // the fault shown is that of the links as they are
    bool m_endsWhenChecked = false;  // OK was pressed before that
    std::optional<CreateLinksRequest> m_request;
    LinkCheckThread m_thread;  // last: it posts to the window
};

}  // namespace FileUtils
