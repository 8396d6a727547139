#include "host/contract/whole_file.h"

#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace QVHost {
namespace {

constexpr LONGLONG kLargest = LONGLONG{256} * 1024 * 1024;  // bytes

/// The bytes are on disk when this succeeds. Windows error code, 0 for success.
uint32_t WriteToDisk(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) return GetLastError();
        if (written == 0) return ERROR_DISK_FULL;
        bytes.remove_prefix(written);
    }
    return FlushFileBuffers(file) ? ERROR_SUCCESS : GetLastError();
}

/// A file that is to take another one's place, or a free one. Removed with the object until it has.
class FileBeside {
public:
    explicit FileBeside(const Win32::FileState& original)
        : m_original(original),
          m_path(Win32::TemporaryNameBeside(original.path)),
          m_file(Win32::CreateSuccessor(m_path, original)),
          m_error(m_file ? ERROR_SUCCESS : GetLastError()),
          m_isOurs(m_file) {}
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;
    ~FileBeside() {
        if (!m_isOurs) return;
        if (m_file) Win32::RemoveWhenClosed(m_file.Get());
        m_file.Reset();
        Win32::RemoveFileAt(m_path.c_str());
    }

    /// Windows error code, 0 for success; also that of making the file.
    uint32_t Write(std::string_view bytes) { return m_error ? m_error : WriteToDisk(m_file.Get(), bytes); }

    /// Windows error code, 0 for success.
    uint32_t TakePlace(bool hasOriginal) {
        if (hasOriginal) Win32::CarryOverAttributes(m_original, m_file.Get());
        m_file.Reset();
        const uint32_t error = Win32::MoveFileOver(m_path, m_original.path);
        m_isOurs = error != ERROR_SUCCESS;
        return error;
    }

private:
    const Win32::FileState& m_original;
    const std::wstring m_path;
    Win32::FileHandle m_file;
    uint32_t m_error;
    bool m_isOurs;
};

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

uint32_t ReplaceWholeFile(const std::wstring& path, std::string_view bytes) {
    Win32::FileState original;
    original.path = path;
    const bool exists = Win32::Exists(path);
    if (exists)
        if (const uint32_t error = Win32::GetState(path, original)) return error;
    FileBeside beside(original);
    uint32_t error = beside.Write(bytes);
    if (error == ERROR_SUCCESS) error = beside.TakePlace(exists);
    return error;
}

}  // namespace QVHost
