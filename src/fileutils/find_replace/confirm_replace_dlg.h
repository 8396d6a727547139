// confirm_replace_dlg.h - asks about one match in a window of our own.
#pragma once

#include <deque>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "fileutils/find_replace/confirm_replace.h"
#include "ui/dialog.h"
#include "win32/handle.h"

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

/// One for each run: a window that stays open from question to question, while the host's window is disabled.
///
/// Every press of a key or a button answers one question, also one that comes while the next match is looked for: those
/// answer the following questions, in order. "Skip File" means the file that was shown when it was pressed, and is used
/// up where that file is done already. What is typed never reaches another window instead, such as a message about a
/// file: it is kept for the next question, and forgotten at the end.
class ConfirmReplaceDlg final : public IConfirmReplace, private Ui::Dialog {
public:
    /// `mainWindow`: the owner while this thread has no active window; may be null.
    explicit ConfirmReplaceDlg(HWND mainWindow);
    ConfirmReplaceDlg(const ConfirmReplaceDlg&) = delete;
    ConfirmReplaceDlg& operator=(const ConfirmReplaceDlg&) = delete;
    ~ConfirmReplaceDlg() override;

    /// Closes the window with an answer after which there is nothing more to ask. Cancel also when the window is closed
    /// by others, or the thread is to end.
    /// @throws what went wrong in the window
    uint32_t Ask(const ConfirmQuestion& question) override;
    /// The next question opens the window anew, in its old place.
    void Close() override;
    bool IsCancelled() override;
    using Dialog::UseHost;

private:
    struct Pressed {
        uint32_t answer;
        uint32_t fileNumber;  // of the file shown
    };

    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnFailure(const std::exception_ptr& failure) noexcept override { m_failure = failure; }
    void Open();
    void DisableOthers(HWND owner);
    void EnableOthers() noexcept;
    void ShowQuestion();
    void ShowMatch();
    uint32_t WaitForAnswer();
    std::optional<uint32_t> NextAnswer();
    /// What was typed and clicked up to now becomes answers.
    void TakeInput();
    /// True when the message is a key for this window, and done with.
    bool HandleKey(MSG& message);
    /// Sees each message that leaves the thread's queue, also for others such as a progress window of the host, which
    /// would not know what a key means here.
    static LRESULT CALLBACK FilterMessages(int code, WPARAM wParam, LPARAM lParam) noexcept;

    HWND m_mainWindow;
    ConfirmQuestion m_question;
    bool m_showsUtf8 = false;
    bool m_pressesFocused = false;  // a key is being handled that presses the button with the focus
    uint32_t m_shownFile = 0;
    std::deque<Pressed> m_pressed;
    std::optional<RECT> m_place;
    std::vector<HWND> m_disabled;
    Ui::Hook m_hook;
    std::exception_ptr m_failure;
};

}  // namespace FileUtils
