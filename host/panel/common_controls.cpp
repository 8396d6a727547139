#include "host/panel/common_controls.h"

#include "win32/module.h"

#include <commctrl.h>

namespace QVHost {

void LoadCommonControls() {
    // Under Wine the first window of a process sets up the desktop. Begun here and not inside the library's start, it
    // is done without the loader's lock, for which another thread that looks for windows may be waiting.
    GetDesktopWindow();
    // By its plain name, because only that leads to the version of the manifest.
    Win32::Module controls(LoadLibraryExW(L"comctl32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    const INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
    if (auto* init = Win32::FindFunction<decltype(&InitCommonControlsEx)>(controls, "InitCommonControlsEx"))
        init(&classes);
    controls.Release();  // its window classes live as long as the program
}

}  // namespace QVHost
