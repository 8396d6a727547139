#include "host/elevated/process_image.h"

#include "win32/handle.h"

namespace QVHost {
namespace {

constexpr DWORD kLongestPath = 32768;  // units

/// Lets an elevated process look at one of another user, where elevation meant another account. Best effort: without it
/// the look fails.
void AllowLookingAtOtherUsers() {
    HANDLE raw = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &raw)) return;
    const Win32::KernelHandle token(raw);
    TOKEN_PRIVILEGES privileges = {1, {{{}, SE_PRIVILEGE_ENABLED}}};
    if (LookupPrivilegeValueW(nullptr, SE_DEBUG_NAME, &privileges.Privileges[0].Luid))
        AdjustTokenPrivileges(token.Get(), FALSE, &privileges, 0, nullptr, nullptr);
}

}  // namespace

std::wstring ImageOf(DWORD processId) {
    Win32::KernelHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (!process && GetLastError() == ERROR_ACCESS_DENIED) {
        AllowLookingAtOtherUsers();
        process.Reset(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    }
    std::wstring path(kLongestPath, L'\0');
    DWORD length = kLongestPath;
    if (!process || !QueryFullProcessImageNameW(process.Get(), 0, path.data(), &length)) return {};
    path.resize(length);
    return path;
}

std::wstring OwnImage() {
    return ImageOf(GetCurrentProcessId());
}

}  // namespace QVHost
