#include "host/contract/whole_file.h"

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

}  // namespace QVHost
