#include "ui/activation_context.h"

#include "ui/resource.h"
#include "win32/module.h"

#include <commctrl.h>

namespace Ui {

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
    // Registers the classes of the version that is active now; a host need not have loaded any. Loaded here and not
    // with our own module: a run without a dialog starts in half the time. The system's folder is searched alone, after
    // what the context redirects to.
    m_controls.Reset(LoadLibraryExW(L"comctl32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    using Register = BOOL(WINAPI*)(const INITCOMMONCONTROLSEX*);
    if (const auto registerClasses = Win32::FindFunction<Register>(m_controls, "InitCommonControlsEx")) {
        const INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
        registerClasses(&classes);
    }
}

ActivationContext::~ActivationContext() {
    if (m_isActive) DeactivateActCtx(0, m_cookie);
    if (m_context != INVALID_HANDLE_VALUE) ReleaseActCtx(m_context);
}

}  // namespace Ui
