#include "host/whole_file.h"

#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace QVHost {
namespace {

constexpr LONGLONG kLargest = LONGLONG{256} * 1024 * 1024;  // bytes

}  // namespace

uint32_t ReadWholeFile(const std::wstring& path, std::string& bytes) {
    const Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(path).c_str(), GENERIC_READ,
                                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                             OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.Get(), &size)) return GetLastError();
    if (size.QuadPart > kLargest) return ERROR_FILE_TOO_LARGE;
    std::string content(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!ReadFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &read, nullptr))
        return GetLastError();
    content.resize(read);
    bytes = std::move(content);
    return ERROR_SUCCESS;
}

uint32_t WriteNewFile(const std::wstring& path, std::string_view bytes) {
    const Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                             CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return GetLastError();
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
            return GetLastError();
        if (written == 0) return ERROR_DISK_FULL;
        bytes.remove_prefix(written);
    }
    return FlushFileBuffers(file.Get()) ? ERROR_SUCCESS : GetLastError();
}

uint32_t ReplaceWholeFile(const std::wstring& path, std::string_view bytes) {
    // The process id keeps two hosts that save at the same time apart.
    const std::wstring beside = path + L"." + std::to_wstring(GetCurrentProcessId()) + L".new";
    uint32_t error = WriteNewFile(beside, bytes);
    if (error == ERROR_SUCCESS) error = Win32::MoveFileOver(beside, path);
    if (error != ERROR_SUCCESS) Win32::RemoveFile(beside);
    return error;
}

uint32_t MakeFolders(const std::wstring& folder) {
    if (Win32::Exists(folder)) return ERROR_SUCCESS;
    std::wstring_view above = Win32::FolderOf(folder);
    while (!above.empty() && (above.back() == L'\\' || above.back() == L'/')) above.remove_suffix(1);
    if (above.size() > 2 && above.size() < folder.size()) {
        const uint32_t error = MakeFolders(std::wstring(above));
        if (error != ERROR_SUCCESS) return error;
    }
    if (CreateDirectoryW(Win32::ExtendedPath(folder).c_str(), nullptr)) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    return error == ERROR_ALREADY_EXISTS ? ERROR_SUCCESS : error;
}

}  // namespace QVHost
