// account_picker.h - lets a person choose a user or a group in the system's own dialog.
#pragma once

#include <string>

#include "win32/windows.h"

namespace FileUtils {

/// The account as `DOMAIN\name`; "" when none was chosen, or the system has no such dialog.
std::wstring PickAccount(HWND owner);

}  // namespace FileUtils
