// start.cpp - loads a library and ends: what nobody who starts a program with a library can do without.
#include <string>

#include <windows.h>

int main() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    path.replace(path.rfind(L'\\') + 1, std::wstring::npos, L"empty.dll");
    const HMODULE library = LoadLibraryW(path.c_str());
    return library && FreeLibrary(library) ? 0 : 1;
}
