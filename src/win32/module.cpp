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

}  // namespace Win32
