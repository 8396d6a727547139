// dialog_host.h - what a dialog has besides its controls and its work: a page of the guide, tooltips, a size that is
// kept. Data of the dialog's module, and the host's means to it.
#pragma once

#include <span>

#include "sdk/host_objects.h"
#include "ui/controls.h"

namespace Ui {

/// What is said of a control under the mouse.
struct Tip {
    int control;
    Quorvane::SDK::TextId text;
};

struct DialogPage {
    WORD dialog;           // its resource
    const wchar_t* name;   // under which the settings keep its size
    const wchar_t* topic;  // of the guide: a heading, as links to it write it
    std::span<const Tip> tips;
};

/// All of it stays valid while the dialog is shown.
struct DialogHost {
    HostTexts texts;
    Quorvane::SDK::ISettings* settings = nullptr;  // null: sizes are not kept
    const DialogPage* page = nullptr;
};

/// The section of the settings in which the dialogs' sizes stand: "width,height" in pixels at 96 to the inch, each
/// under its dialog's name.
inline constexpr wchar_t kSizesSection[] = L"DialogSizes";

}  // namespace Ui
