#include "host/contract/whole_file.h"

#include "win32/handle.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

constexpr LONGLONG kLargest = LONGLONG{256} * 1024 * 1024;  // bytes

Win32::HeldFile OpenToRead(const std::wstring& path) {
    return Win32::HeldFileOf(CreateFileW(Win32::ExtendedPath(path).c_str(), GENERIC_READ, Win32::kShareAll, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

uint32_t ReadAll(void* file, std::string& bytes) {
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file, &size)) return GetLastError();
    if (size.QuadPart > kLargest) return ERROR_FILE_TOO_LARGE;
    std::string content(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr)) return GetLastError();
    content.resize(read);
    bytes = std::move(content);
    return ERROR_SUCCESS;
}

}  // namespace

uint32_t ReadWholeFile(const std::wstring& path, std::string& bytes) {
    return ReadAll(OpenToRead(path).get(), bytes);
}

uint32_t ReadWholeFile(const std::wstring& path, std::string& bytes, std::optional<Win32::FileState>& original) {
    const Win32::HeldFile file = OpenToRead(path);
    Win32::FileState state;
    uint32_t error = file ? Win32::GetStamp(file.get(), state.stamp) : GetLastError();
    if (error == ERROR_SUCCESS) error = Win32::GetState(file.get(), path, state);
    if (error == ERROR_SUCCESS) error = ReadAll(file.get(), bytes);
    if (error == ERROR_SUCCESS) original = std::move(state);
    return error;
}

}  // namespace QVHost
