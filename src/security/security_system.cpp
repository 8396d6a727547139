#include "security/security_system.h"

#include "win32/module.h"
#include "win32/path.h"

namespace Security {
namespace {

constexpr LONG kNotImplemented = static_cast<LONG>(0xC0000002);  // STATUS_NOT_IMPLEMENTED

/// A function of a system library that stays loaded: it may be in use on any thread until the process ends.
template <class Function>
Function FindSystemFunction(const wchar_t* library, const char* name) {
    Win32::Module module = Win32::LoadSystemModule(library);
    const auto function = Win32::FindFunction<Function>(module, name);
    if (function) module.Release();
    return function;
}

DWORD WINAPI GetUniversalName(LPCWSTR path, DWORD level, LPVOID buffer, LPDWORD size) {
    static const auto function =
        FindSystemFunction<decltype(SecuritySystem::getUniversalName)>(L"mpr.dll", "WNetGetUniversalNameW");
    return function ? function(path, level, buffer, size) : DWORD{ERROR_CALL_NOT_IMPLEMENTED};
}

LONG WINAPI QueryInformationFile(HANDLE file, void* status, void* buffer, ULONG size, ULONG informationClass) {
    static const auto function =
        FindSystemFunction<decltype(SecuritySystem::queryInformationFile)>(L"ntdll.dll", "NtQueryInformationFile");
    return function ? function(file, status, buffer, size, informationClass) : kNotImplemented;
}

}  // namespace

const SecuritySystem& RealSystem() {
    static const SecuritySystem kSystem = {
        GetFileSecurityW,  GetNamedSecurityInfoW, SetNamedSecurityInfoW, GetEffectiveRightsFromAclW,
        LookupAccountSidW, LookupAccountNameW,    GetUniversalName,      QueryInformationFile,
    };
    return kSystem;
}

bool FileDescriptor::Read(const SecuritySystem& system, const std::wstring& path, SECURITY_INFORMATION parts) {
    const std::wstring file = Win32::ExtendedPath(path);
    m_larger.reset();
    DWORD needed = 0;
    if (system.getFileSecurity(file.c_str(), parts, m_buffer.data(), kUsualSize, &needed)) return true;
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || needed == 0) return false;
    m_larger = std::make_unique_for_overwrite<std::byte[]>(needed);
    return system.getFileSecurity(file.c_str(), parts, m_larger.get(), needed, &needed) != FALSE;
}

}  // namespace Security
