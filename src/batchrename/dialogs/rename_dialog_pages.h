// rename_dialog_pages.h - what the batch renamer's window and dialogs have besides their controls: pages of the guide,
// tooltips, kept sizes.
#pragma once

#include <span>

#include "ui/dialog_host.h"

namespace BatchRename {

std::span<const Ui::DialogPage> DialogPages();

/// Of the dialog of this resource, which is one of ours.
const Ui::DialogPage& PageOf(WORD dialog);

}  // namespace BatchRename
