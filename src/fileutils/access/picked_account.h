// picked_account.h - the text of an account that was chosen in the system's picker. Pure texts.
#pragma once

#include <string>
#include <string_view>

namespace FileUtils {

/// `directoryPath` is where the account was found: `WinNT://DOMAIN/name`, with `WinNT://GROUP/MACHINE/name` for an
/// account of a machine, and perhaps its class behind a comma. The result is `DOMAIN\name`, or the name alone when
/// nothing stands before it. Any other path says nothing about the domain; then it is `name`.
std::wstring AccountOfSelection(std::wstring_view directoryPath, std::wstring_view name);

}  // namespace FileUtils
