// common_controls.h - the library of the common controls, loaded when the panel opens and not with the program: loading
// it sets up the desktop, and a command line that shows no window should not wait for that.
#pragma once

namespace QVHost {

/// Makes the window classes of list views and status lines known. The version is the one that the program's manifest
/// names. Once loaded it stays.
void LoadCommonControls();

}  // namespace QVHost
