// confirm_replace_dlg.h - asks about one match in a window of our own.
#pragma once

#include <optional>
#include <string>

#include "fileutils/find_replace/confirm_replace.h"
#include "ui/dialog.h"

namespace FileUtils {

/// What is shown of one question.
struct MatchView {
    std::wstring context;    // lines that are too long are cut, with an ellipsis at the cut
    size_t matchOffset = 0;  // in UTF-16 units of `context`
    size_t matchLength = 0;
    std::wstring replacement;
};

/// `asUtf8` counts for 8-bit documents only: their bytes read as UTF-8, else in the thread's code page.
///
/// Of the line with the match, what stands right around the match is kept, and the match itself up to 400 units.
MatchView ViewOf(const ConfirmQuestion& question, bool asUtf8);

/// One for each run. Between questions it remembers the window's place and nothing else.
class ConfirmReplaceDlg final : public IConfirmReplace, private Ui::Dialog {
public:
    /// `mainWindow`: the owner while this thread has no active window; may be null.
    explicit ConfirmReplaceDlg(HWND mainWindow);

    /// Modal over the active window.
    uint32_t Ask(const ConfirmQuestion& question) override;

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void ShowMatch();

    HWND m_mainWindow;
    const ConfirmQuestion* m_question = nullptr;  // while it is asked
    bool m_showsUtf8 = false;
    std::optional<RECT> m_place;
};

}  // namespace FileUtils
