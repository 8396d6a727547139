// late_libraries.cpp - how the library gets at the system's libraries that it loads with their first call.
#include "win32/windows.h"

#include <delayimp.h>

namespace {

/// In a host these libraries are there already. Asking for them by name takes no memory, where loading them once more
/// would: and a call that cannot be bound ends the process, which a host with little memory left must be spared.
FARPROC WINAPI TakeLoaded(unsigned step, DelayLoadInfo* call) {
    if (step != dliNotePreLoadLibrary) return nullptr;
    HMODULE loaded = nullptr;
    GetModuleHandleExA(0, call->szDll, &loaded);  // counted, as if loaded: the host may not take it away
    return reinterpret_cast<FARPROC>(loaded);
}

}  // namespace

// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier, misc-use-internal-linkage): the runtime looks for this name.
PfnDliHook __pfnDliNotifyHook2 = TakeLoaded;
