#include "host/app/main_window.h"

namespace QVHost {

UniqueWindow MakeMainWindow() {
    // In the middle of the screen, since dialogs may place themselves by their owner.
    const int x = GetSystemMetrics(SM_CXSCREEN) / 2;
    const int y = GetSystemMetrics(SM_CYSCREEN) / 2;
    return UniqueWindow(CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"Quorvane", WS_POPUP, x, y, 0, 0, nullptr,
                                        nullptr, GetModuleHandleW(nullptr), nullptr));
}

}  // namespace QVHost
