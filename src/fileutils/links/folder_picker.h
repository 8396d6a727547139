// folder_picker.h - lets the user choose a folder in the system's own dialog.
#pragma once

#include <string>

#include "win32/windows.h"

namespace FileUtils {

/// The folder's full path. The dialog begins in `folder` where there is one of that path. "" when none was chosen, or
/// the system has no such dialog.
std::wstring PickFolder(HWND owner, const std::wstring& folder);

}  // namespace FileUtils
