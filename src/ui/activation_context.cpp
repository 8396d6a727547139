#include "ui/activation_context.h"

#include "ui/ui_resource.h"
#include "win32/module.h"

#include <commctrl.h>

namespace Ui {

namespace {

/// Makes the classes of the common controls known, from the version that is active now; a host need not have loaded
/// any.
///
/// The library is loaded with the first dialog and not with us: it sets up the desktop when it is loaded, and a
/// script's call that shows no window should not wait for that. Once there it stays, as its window classes do.
void RegisterCommonControls() noexcept {
    // Loading makes windows, and under Wine the first window of a process sets up the desktop. Begun here and not
    // there, it is done without the loader's lock, for which another thread that looks for windows may be waiting.
    GetDesktopWindow();
    // By its plain name, because only that leads to the version of the context.
    const Win32::Module controls(LoadLibraryExW(L"comctl32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    if (!controls) return;
    HMODULE kept = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(controls.Get()), &kept);
    const INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
    if (auto* init = Win32::FindFunction<decltype(&InitCommonControlsEx)>(controls, "InitCommonControlsEx"))
        init(&classes);
}

}  // namespace

HMODULE OwnModule() noexcept {
    return Win32::ModuleOfAddress(reinterpret_cast<const void*>(&OwnModule));
}

ActivationContext::ActivationContext() {
    ACTCTXW request = {};
    request.cbSize = sizeof(request);
    request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
    request.lpResourceName = MAKEINTRESOURCEW(QV_CONTROLS_MANIFEST);
    request.hModule = OwnModule();
    m_context = CreateActCtxW(&request);
    if (m_context != INVALID_HANDLE_VALUE) m_isActive = ActivateActCtx(m_context, &m_cookie) != FALSE;
    RegisterCommonControls();
}

ActivationContext::~ActivationContext() {
    // Where a failure has left a context of the system's above ours, that one goes too: the system would end the
    // process for it otherwise.
    if (m_isActive) DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, m_cookie);
    if (m_context != INVALID_HANDLE_VALUE) ReleaseActCtx(m_context);
}

}  // namespace Ui
