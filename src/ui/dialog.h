// dialog.h - the base of our dialogs: ties a window to its object, opens it modal or modeless, and carries exceptions
// around the system's code. What is in a dialog is its own work.
#pragma once

#include <exception>
#include <utility>

#include "sdk/words.h"
#include "ui/dialog_host.h"
#include "ui/resizing.h"
#include "win32/windows.h"

namespace Ui {

struct HookTraits {
    using Raw = HHOOK;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { UnhookWindowsHookEx(raw); }
};
using Hook = Win32::UniqueHandle<HookTraits>;

/// One dialog. The object outlives its window: it may be shown again once the window is gone.
///
/// An exception that a handler throws cannot pass through the system's code. It is kept, the dialog ends, and ShowModal
/// throws it again; for a modeless dialog OnFailure gets it (and OutlivesFailure may keep it open).
///
/// In a modal dialog a letter without Alt presses nothing. The message loop of a modeless one has to see to that.
///
/// The window lies on the screen whole: where that is too small, the dialog is made smaller, and scrolls where that
/// does not suffice; the control with the focus is always in sight. It follows the system's colours, and the scale of
/// the screen.
class Dialog {
public:
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    HWND GetWindow() const noexcept { return m_window; }

    /// From the next time on that it is shown: it speaks the host's language, F1 opens its page of the guide, its
    /// controls have tooltips, and a dialog whose size can be changed has the size that it had last.
    void UseHost(DialogHost host) { m_host = std::move(host); }

protected:
    /// From a dialog resource of our own module.
    explicit Dialog(WORD resourceId) noexcept : m_resourceId(resourceId) {}
    /// From a template in memory, which must outlive the object.
    explicit Dialog(const DLGTEMPLATE* layout) noexcept : m_layout(layout) {}
    virtual ~Dialog();

    /// The number given to End. `owner` may be null.
    /// @throws what a handler threw; std::system_error when the window cannot be made
    INT_PTR ShowModal(HWND owner);
    /// The window is made, and shown when its style says so. @throws like ShowModal
    void ShowModeless(HWND owner);
    /// Closes the window; ShowModal returns `result`.
    void End(INT_PTR result) noexcept;

    /// The window and its controls are there and not shown yet. False when the focus has been set.
    virtual bool OnInit() = 0;
    /// True when handled. Without a handler, Cancel and the close box end the dialog.
    virtual bool OnCommand(int id, int notification) = 0;
    /// Any other message, before the base looks at it; true when handled.
    virtual bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    /// Something was thrown in a handler of a modeless dialog, whose window is gone.
    virtual void OnFailure(const std::exception_ptr& failure) noexcept;
    /// True for a modeless dialog that is part of a window and cannot go alone: it stays after a failure (OnFailure
    /// hears of it), and what was asked for is not done.
    virtual bool OutlivesFailure() const noexcept { return false; }

    /// Our own texts in the host's language.
    Quorvane::SDK::Words Say() const { return Quorvane::SDK::Words(m_host.texts); }
    HWND Item(int id) const noexcept { return GetDlgItem(m_window, id); }
    /// From OnInit on the controls follow the window's size, which cannot get smaller than it is then.
    /// `column`: see Resizing::Start.
    void MakeResizable(std::span<const Anchor> anchors, std::span<const int> column = {}) {
        m_resizing.Start(m_window, anchors, column);
    }
    const Resizing& Sizes() const { return m_resizing; }
    /// For a dialog within a window, which hears nothing of another scale by itself.
    void RescaleControls(UINT dotsPerInch);
    void AddTips(std::span<const Tip> tips, const HostTexts& texts);

private:
    /// The system takes a letter for the key of a button, as if with Alt, where the control with the focus takes no
    /// letters itself. A word typed in the wrong place would press buttons: here such letters go to their control
    /// alone.
    static LRESULT CALLBACK FilterLetters(int code, WPARAM wParam, LPARAM lParam) noexcept;
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    static LRESULT CALLBACK FollowFocus(int code, WPARAM wParam, LPARAM lParam) noexcept;
    INT_PTR Handle(UINT message, WPARAM wParam, LPARAM lParam);
    bool Start();
    /// Where the screen is too small for the dialog at its scale, it takes a smaller one, within limits.
    void ShrinkToScreen(UINT dotsPerInch);
    void MoveTo(const RECT& rect);
    /// As large as it was last, and no larger than the screen.
    void Place();
    void KeepSize() const noexcept;
    void OnScaleChange(UINT dotsPerInch, const RECT& suggested);
    void ThrowFailure();

    WORD m_resourceId = 0;
    const DLGTEMPLATE* m_layout = nullptr;
    HWND m_window = nullptr;
    bool m_isModal = false;
    Resizing m_resizing;
    DialogHost m_host;
    Hook m_focusHook;
    SIZE m_placed = {};     // the size that the window had at first
    HWND m_tips = nullptr;  // a window of the system that goes with ours
    std::exception_ptr m_failure;
};

/// The template of one of our dialogs, as it lies in the resources. @throws std::system_error
const DLGTEMPLATE* DialogResource(WORD resourceId);

}  // namespace Ui
