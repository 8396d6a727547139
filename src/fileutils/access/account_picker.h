// account_picker.h - lets the user choose a user or a group in the system's own dialog.
#pragma once

#include <string>
#include <string_view>

#include "win32/windows.h"

namespace FileUtils {

/// The account as `DOMAIN\name`; "" when none was chosen, or the system has no such dialog.
std::wstring PickAccount(HWND owner);

/// The text of an account that was chosen there. `directoryPath` is where the account was found: `WinNT://DOMAIN/name`,
/// with `WinNT://GROUP/MACHINE/name` for an account of a machine, and perhaps its class after a comma. The result is
/// `DOMAIN\name`, or the name alone when nothing is before it. Any other path says nothing about the domain; then it is
/// `name`.
std::wstring AccountOfSelection(std::wstring_view directoryPath, std::wstring_view name);

}  // namespace FileUtils
