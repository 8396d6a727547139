// find_and_replace_dlg.h - the dialog "Find and Replace in file(s)": a request into controls and back. Running it, and
// keeping it in the settings, is the command's work.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "findreplace/request.h"
#include "ui/controls.h"
#include "ui/dialog.h"

namespace FileUtils {

struct FindAndReplaceRequest {
    std::wstring find;
    std::wstring replacement;
    uint32_t options = 0;        // QVFindAndReplace::Option
    std::wstring targetPattern;  // of "Save as"
};

/// The longest find or replacement text in UTF-16 units: the settings give back no longer one.
inline constexpr uint32_t kLongestFindText = 4095;

/// Why this request cannot be started, for people to read; "" when it can.
std::wstring WhyNotStart(const FindAndReplaceRequest& request);

/// "Save as" alone writes to a file of another name.
constexpr bool TakesFileName(uint32_t options) {
    return (options & QVFindAndReplace::Option::SaveAs) != 0;
}

class FindAndReplaceDlg final : private Ui::Dialog {
public:
    /// `files`: full paths, for show. The first shown state is `request`; where its options name no target or no mode,
    /// that is a backup that is kept, and the mode One.
    FindAndReplaceDlg(Ui::HostTexts texts, std::vector<std::wstring> files, FindAndReplaceRequest request);

    /// The request as it stands when the user presses Start; nothing when the user cancels.
    std::optional<FindAndReplaceRequest> Show(HWND owner);

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    FindAndReplaceRequest FromControls() const;
    void ProposeFileName();
    /// What follows from the state of the controls: what is enabled, and the reason line.
    void Refresh();

    Ui::HostTexts m_texts;
    std::vector<std::wstring> m_files;
    FindAndReplaceRequest m_request;
};

}  // namespace FileUtils
