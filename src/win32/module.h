// module.h - libraries loaded at run time, and functions looked up in them.
#pragma once

#include <string>

#include "win32/handle.h"

namespace Win32 {

struct ModuleTraits {
    using Raw = HMODULE;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { FreeLibrary(raw); }
};
using Module = UniqueHandle<ModuleTraits>;

/// Loads a library of the system by its plain file name, from the system folder only: a file of that name beside the
/// host or in the current folder is never run. Empty when it cannot be loaded (see GetLastError).
Module LoadSystemModule(const wchar_t* fileName);

/// The folder that the system's own programs and libraries lie in.
std::wstring SystemFolder();

/// The program or library that holds this address; null for an address in none. It stays loaded by itself: nothing is
/// to be closed.
HMODULE ModuleOfAddress(const void* address) noexcept;

/// The full path of a program or library; null for the program of this process.
std::wstring PathOfModule(HMODULE module);

/// The address of an exported function, or null. `Function` is a pointer-to-function type.
template <class Function>
Function FindFunction(const Module& module, const char* name) noexcept {
    if (!module) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module.Get(), name)));
}

}  // namespace Win32
