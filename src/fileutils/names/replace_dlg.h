// replace_dlg.h - the dialog "Replace text in names": a request into controls and back, with a preview of what it makes
// of the names. Computing and renaming are the command's.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/dialog.h"

namespace FileUtils {

/// The part of a name in which text is replaced. The extension is what follows a file's last "."; a folder has none.
enum class NamePart { Name, Extension, Both };

struct NameReplacement {
    std::wstring find;
    std::wstring replacement;
    bool ignoreCase = false;
    NamePart part = NamePart::Name;
};

struct NameChange {
    std::wstring from;
    std::wstring to;
    std::wstring fault;  // why it stays as it is, in English; "" when it can change
};

class CReplaceDlg final : private Ui::Dialog {
public:
    /// The names that a request changes, in the order of the selection. Called at every change in the dialog.
    using Changes = std::function<std::vector<NameChange>(const NameReplacement&)>;
    explicit CReplaceDlg(Changes changes);

    /// A request that can change at least one name; nothing when the user cancels.
    std::optional<NameReplacement> Show(HWND owner);
    using Dialog::UseHost;

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    NameReplacement FromControls() const;
    /// The preview, and whether the dialog can end. True when it can.
    bool Refresh();

    Changes m_changes;
    NameReplacement m_request;
};

/// `name` with every place where the text to find stands replaced, from left to right; what was put in is not looked
/// at again. An empty text to find changes nothing. Ignoring case follows the system's table of letters.
std::wstring WithTextReplaced(const NameReplacement& replacement, std::wstring_view name, bool isFolder);

}  // namespace FileUtils
