#include "security/file_descriptor.h"

#include "win32/path.h"

namespace Security {

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
