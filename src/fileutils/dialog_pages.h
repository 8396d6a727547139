// dialog_pages.h - what the dialogs of File Utils have besides their controls: pages of the guide, tooltips, kept
// sizes.
#pragma once

#include <span>

#include "sdk/host_services.h"
#include "ui/dialog_host.h"

namespace FileUtils {

std::span<const Ui::DialogPage> DialogPages();

/// For the dialog of this resource, as long as `host` lives.
Ui::DialogHost DialogHostFor(Quorvane::SDK::IHostServices& host, WORD dialog);

}  // namespace FileUtils
