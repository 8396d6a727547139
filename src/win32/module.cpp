#include "win32/module.h"

#include <string>

namespace Win32 {

Module LoadSystemModule(const wchar_t* fileName) {
    const UINT needed = GetSystemDirectoryW(nullptr, 0);
    if (needed == 0) return {};
    std::wstring path(needed, L'\0');
    path.resize(GetSystemDirectoryW(path.data(), needed));
    path += L'\\';
    path += fileName;
    return Module(LoadLibraryW(path.c_str()));
}

HMODULE ModuleOfAddress(const void* address) noexcept {
    constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    return GetModuleHandleExW(kFlags, static_cast<const wchar_t*>(address), &module) ? module : nullptr;
}

}  // namespace Win32
