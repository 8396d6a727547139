// main_window.h - the window that stands in for the file manager's own, where the host may show windows at all.
#pragma once

#include "win32/handle.h"

namespace QVHost {

struct WindowTraits {
    using Raw = HWND;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { DestroyWindow(raw); }
};
using UniqueWindow = Win32::UniqueHandle<WindowTraits>;

/// A window that is never shown: it only owns the dialogs of extensions, which see by it that somebody is there to
/// answer them. To be destroyed on the same thread. Empty when the system gives none.
UniqueWindow MakeMainWindow();

}  // namespace QVHost
