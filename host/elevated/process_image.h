// process_image.h - the program that a process runs.
#pragma once

#include <string>

#include "win32/windows.h"

namespace QVHost {

/// Full path of the program that runs as this process; "" when the system does not say.
std::wstring ImageOf(DWORD processId);

/// Of this process.
std::wstring OwnImage();

}  // namespace QVHost
