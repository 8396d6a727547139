// dialog_pages.h - what the dialogs of File Utils have besides their controls: pages of the guide, tooltips, kept
// sizes.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "sdk/host_services.h"
#include "sdk/words.h"
#include "ui/dialog_host.h"

namespace FileUtils {

std::span<const Ui::DialogPage> DialogPages();

/// A reason that an engine or a form gives, which know no host, in the host's language.
std::wstring Reason(std::wstring_view english, const Quorvane::SDK::Words& say);

/// For the dialog of this resource, as long as `host` lives.
Ui::DialogHost DialogHostFor(Quorvane::SDK::IHostServices& host, WORD dialog);

}  // namespace FileUtils
