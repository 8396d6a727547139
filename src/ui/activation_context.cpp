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
    // Registers the classes of the version that is active now; a host need not have loaded any.
    const INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
    InitCommonControlsEx(&classes);
}

ActivationContext::~ActivationContext() {
    if (m_isActive) DeactivateActCtx(0, m_cookie);
    if (m_context != INVALID_HANDLE_VALUE) ReleaseActCtx(m_context);
}

}  // namespace Ui
