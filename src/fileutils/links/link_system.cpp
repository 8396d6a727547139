#include "fileutils/links/link_creation.h"
#include "win32/windows.h"

#include "win32/handle.h"
#include "win32/module.h"
#include "win32/path.h"
#include "win32/shortcut.h"

namespace FileUtils {
namespace {

constexpr DWORD kSetReparsePoint = 0x900A4;  // FSCTL_SET_REPARSE_POINT

uint32_t LastErrorUnless(bool succeeded) {
    return succeeded ? ERROR_SUCCESS : GetLastError();
}

uint32_t MakeHardLink(const std::wstring& link, const std::wstring& target) {
    return LastErrorUnless(
        CreateHardLinkW(Win32::ExtendedPath(link).c_str(), Win32::ExtendedPath(target).c_str(), nullptr) != FALSE);
}

uint32_t MakeSymbolicLink(const std::wstring& link, const std::wstring& target, uint32_t flags) {
    using Function = BOOLEAN(WINAPI*)(LPCWSTR, LPCWSTR, DWORD);
    const Win32::Module kernel = Win32::LoadSystemModule(L"kernel32.dll");
    const auto create = Win32::FindFunction<Function>(kernel, "CreateSymbolicLinkW");
    if (!create) return GetLastError();
    // The target is stored as it stands: a relative one is meant to be seen from the link's folder.
    return LastErrorUnless(create(Win32::ExtendedPath(link).c_str(), target.c_str(), flags) != FALSE);
}

uint32_t SetReparsePoint(const std::wstring& folder, const ReparseBuffer& buffer) {
    // Shared: programs that show the folder above may have this one open. Should a file come into it meanwhile, the
    // system itself refuses to make it a junction.
    const Win32::FileHandle handle(CreateFileW(Win32::ExtendedPath(folder).c_str(), GENERIC_READ | GENERIC_WRITE,
                                               Win32::kShareAll, nullptr, OPEN_EXISTING,
                                               FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!handle) return GetLastError();
    std::vector<uint8_t> bytes = buffer.bytes;
    DWORD returned = 0;
    return LastErrorUnless(DeviceIoControl(handle.Get(), kSetReparsePoint, bytes.data(), buffer.usedSize, nullptr, 0,
                                           &returned, nullptr) != FALSE);
}

uint32_t SaveShortcut(const std::wstring& link, const std::wstring& target, const std::wstring& workingFolder,
                      const wchar_t* description) {
    return Win32::SaveShortcut(
        link, {.target = target, .arguments = {}, .workingFolder = workingFolder, .description = description});
}

}  // namespace

const LinkSystem& ThisSystem() {
    static constexpr LinkSystem kSystem = {MakeHardLink, MakeSymbolicLink, SetReparsePoint, SaveShortcut};
    return kSystem;
}

}  // namespace FileUtils
