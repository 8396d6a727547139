// file_descriptor.h - a file's security descriptor in memory.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "security/security_system.h"

namespace Security {

/// Most descriptors are small: they are read by one call into a buffer of the object's own. Only larger ones are asked
/// for their size and read again.
class FileDescriptor {
public:
    /// False when the file has none or may not be read. `parts`: OWNER_SECURITY_INFORMATION and its like.
    bool Read(const SecuritySystem& system, const std::wstring& path, SECURITY_INFORMATION parts);
    PSECURITY_DESCRIPTOR Get() { return m_larger ? m_larger.get() : m_buffer.data(); }

private:
    static constexpr size_t kUsualSize = 1024;  // bytes
    alignas(void*) std::array<std::byte, kUsualSize> m_buffer;
    std::unique_ptr<std::byte[]> m_larger;
};

}  // namespace Security
