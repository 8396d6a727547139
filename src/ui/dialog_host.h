// dialog_host.h - what a dialog has besides its controls and its work: texts in the host's language, a page of the
// guide, tooltips, a size that is kept. Data of the dialog's module, and the host's means to it.
#pragma once

#include <span>

#include "sdk/host_objects.h"
#include "ui/controls.h"

namespace Ui {

/// A text of the host for a control.
struct Tip {
    int control;
    Quorvane::SDK::TextId text;
};

struct DialogPage {
    WORD dialog;           // its resource
    const wchar_t* name;   // under which the settings keep its size
    const wchar_t* topic;  // of the guide: a heading, as links to it write it
    std::span<const Tip> tips;
    std::span<const Tip> texts =
        {};  // those of controls (and as 0 the caption) that have other numbers than the rule's
};

/// All of it stays valid while the dialog is shown.
struct DialogHost {
    HostTexts texts;
    Quorvane::SDK::ISettings* settings = nullptr;  // null: sizes are not kept
    const DialogPage* page = nullptr;
};

/// A dialog's resource is in English. The host's language files may have its texts in theirs, each under a number that
/// follows from the control's, unless its page has another one for it: a control of one dialog alone has its own
/// number, one that several dialogs have (below 1100: the system's buttons, the first of File Utils' numbers) a hundred
/// times the dialog's number and its last two digits. The caption stands as the control 0.
Quorvane::SDK::TextId TextOfControl(WORD dialog, int control);
/// Gives the window and its controls the host's texts. Those that the host has not stay as they are, and so do controls
/// that show nothing yet.
void ShowTexts(HWND window, WORD dialog, const HostTexts& texts, std::span<const Tip> others = {});

/// The section of the settings in which the dialogs' sizes stand: "width,height" in pixels at 96 to the inch, each
/// under its dialog's name.
inline constexpr wchar_t kSizesSection[] = L"DialogSizes";

}  // namespace Ui
