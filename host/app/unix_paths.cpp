#include "host/app/unix_paths.h"

#include "host/app/host_text.h"
#include "win32/file_name.h"
#include "win32/module.h"
#include "win32/path.h"

namespace QVHost {
namespace {

/// Wine's own export: the drive path, in memory of the process heap, of a path of the system below.
using GetDosFileName = wchar_t*(__cdecl*)(const char* unixPath);

GetDosFileName FindGetDosFileName() {
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    if (!kernel) return nullptr;
    return reinterpret_cast<GetDosFileName>(reinterpret_cast<void*>(GetProcAddress(kernel, "wine_get_dos_file_name")));
}

struct HeapTraits {
    using Raw = wchar_t*;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { HeapFree(GetProcessHeap(), 0, raw); }
};

}  // namespace

bool RunsUnderWine() {
    return FindGetDosFileName() != nullptr;
}

std::wstring FromUnixPath(const std::wstring& path) {
    if (!path.starts_with(L'/') || path.starts_with(L"//") || path.starts_with(LR"(/\)")) return path;
    const GetDosFileName getDosFileName = FindGetDosFileName();
    if (!getDosFileName) return path;
    const Win32::UniqueHandle<HeapTraits> dosPath(getDosFileName(ToUtf8(path).c_str()));
    return dosPath ? std::wstring(dosPath.Get()) : path;
}

std::wstring FullUserPath(const std::wstring& path) {
    return Win32::FullPath(FromUnixPath(path));
}

std::wstring& FullUserPaths::operator()(const std::wstring& path) {
    const std::wstring_view folder = Win32::FolderOf(path);
    const std::wstring_view name = std::wstring_view(path).substr(folder.size());
    if (folder.empty() || !Win32::IsFileName(name))
        return m_full = FullUserPath(path);  // "..", or a name that is not taken as it is
    if (folder != m_folder) {
        m_folder = folder;
        m_fullFolder = Win32::JoinPath(FullUserPath(m_folder), L"");
    }
    return (m_full = m_fullFolder) += name;
}

}  // namespace QVHost
