// find_and_replace_dlg.h - the dialog "Find and Replace in file(s)": a request into controls and back. Running it, and
// keeping it in the settings, is the command's work.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fileutils/find_replace/find_replace_form.h"
#include "fileutils/find_replace/live_count.h"
#include "ui/controls.h"
#include "ui/dialog.h"

namespace FileUtils {

/// The longest find or replacement text in UTF-16 units: the settings give back no longer one.
inline constexpr uint32_t kLongestFindText = 4095;

class FindAndReplaceDlg final : private Ui::Dialog {
public:
    /// `files`: full paths, to be shown, and looked into for the count. The first shown state is `request`; where its
    /// options name no target or no mode, that is a backup that is kept, and the mode One.
    FindAndReplaceDlg(Ui::HostTexts texts, std::vector<std::wstring> files, FindAndReplaceRequest request);

    /// The request as it stands when the user presses Start; nothing when the user cancels.
    std::optional<FindAndReplaceRequest> Show(HWND owner);
    using Dialog::UseHost;

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    FindAndReplaceRequest FromControls() const;
    void ProposeFileName();
    /// What follows from the state of the controls: what is enabled, and the reason line. Where the request can be
    /// started, what it would do is counted once nothing was changed for a moment.
    void Refresh();
    void ShowCount(const CountSummary& count);

    Ui::HostTexts m_texts;
    std::vector<std::wstring> m_files;
    FindAndReplaceRequest m_request;
    std::optional<LiveCount> m_count;  // while the window is there
};

}  // namespace FileUtils
