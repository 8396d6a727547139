// panel_view.h - what the host's services need of a window that shows a folder, where there is one (`qvhost panel`).
// On a command line there is none, and the selection is what the command line names.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace QVHost {

class FileItem;

/// What a line is about, for those who show it in colour.
enum class Tone : uint8_t { Plain, Success, Failure, Note };

class IPanelView {
public:
    using Items = std::vector<std::shared_ptr<FileItem>>;

    virtual ~IPanelView() = default;

    // On the panel's own thread; nothing on any other.
    virtual Items SelectedItems() = 0;
    /// The focused item first, then the others that share its name without extension; nothing without a focused item.
    virtual Items FocusedGroup() = 0;

    // On any thread.
    virtual void ShowLine(std::wstring_view text, Tone tone) = 0;
    /// `kind` is a MarkKind.
    virtual void MarkFile(const std::wstring& path, uint32_t kind) = 0;
    /// What had the path `before` is called `now`.
    virtual void FileRenamed(const std::wstring& before, const std::wstring& now) = 0;
    /// What the folder holds is to be read anew.
    virtual void FolderChanged(const std::wstring& folder) = 0;
};

}  // namespace QVHost
