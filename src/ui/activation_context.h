// activation_context.h - common controls version 6 for our windows, whatever version the host chose for its own.
#pragma once

#include "win32/handle.h"

namespace Ui {

/// The program or library that this code was linked into: it holds the dialogs and the manifest.
HMODULE OwnModule() noexcept;

/// While it lives, windows that this thread makes get the controls that our manifest names. Lives on the stack:
/// contexts end in the reverse order of their start. Where the system has no such context the controls are the host's.
class ActivationContext {
public:
    ActivationContext();
    ~ActivationContext();
    ActivationContext(const ActivationContext&) = delete;
    ActivationContext& operator=(const ActivationContext&) = delete;

private:
    HANDLE m_context;
    ULONG_PTR m_cookie = 0;
    bool m_isActive = false;
};

}  // namespace Ui
