#include "ui/activation_context.h"

#include "ui/resource.h"
#include "win32/module.h"

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
}

ActivationContext::~ActivationContext() {
    if (m_isActive) DeactivateActCtx(0, m_cookie);
    if (m_context != INVALID_HANDLE_VALUE) ReleaseActCtx(m_context);
}

}  // namespace Ui
