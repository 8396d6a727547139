// sort_lines_dlg.h - the dialog "Sort Lines": a request into controls and back. What the fields mean is sort_form.h's
// work; sorting, and keeping the request in the settings, is the command's.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fileutils/sort_lines/sort_form.h"
#include "ui/controls.h"
#include "ui/dialog.h"

namespace FileUtils {

class SortLinesDlg final : private Ui::Dialog {
public:
    /// `files`: full paths, for show.
    SortLinesDlg(Ui::HostTexts texts, std::vector<std::wstring> files, QVLineSorter::SortRequest request);

    /// The request as it stands when the user presses OK; nothing when the user cancels.
    std::optional<QVLineSorter::SortRequest> Show(HWND owner);
    using Dialog::UseHost;

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    void ToControls(const SortForm& form);
    SortForm FromControls() const;
    void ProposeFileName();
    void PickDateFormat();
    /// What follows from the state of the controls: what is enabled, and the reason line.
    void Refresh();

    Ui::HostTexts m_texts;
    std::vector<std::wstring> m_files;
    QVLineSorter::SortRequest m_request;
};

}  // namespace FileUtils
