#include "win32/module.h"

namespace Win32 {

std::wstring SystemFolder() {
    std::wstring path(GetSystemDirectoryW(nullptr, 0), L'\0');
    path.resize(GetSystemDirectoryW(path.data(), static_cast<UINT>(path.size())));
    return path;
}

Module LoadSystemModule(const wchar_t* fileName) {
    const std::wstring folder = SystemFolder();
    return folder.empty() ? Module() : Module(LoadLibraryW((folder + L'\\' + fileName).c_str()));
}

HMODULE ModuleOfAddress(const void* address) noexcept {
    constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    return GetModuleHandleExW(kFlags, static_cast<const wchar_t*>(address), &module) ? module : nullptr;
}

std::wstring PathOfModule(HMODULE module) {
    constexpr size_t kLongestPath = 32768;  // units, the system's own limit
    for (size_t size = MAX_PATH;; size = kLongestPath) {
        std::wstring path(size, L'\0');
        path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(size)));
        if (path.size() < size || size == kLongestPath) return path;
    }
}

}  // namespace Win32
