#include "textio/data_reader.h"

#include <algorithm>
#include <cstring>

#include "win32/path.h"
#include "win32/windows.h"

namespace QVUtils {

FileDataReader::FileDataReader(const std::wstring& path, Win32::FileSharing sharing)
    : m_file(Win32::HeldFileOf(CreateFileW(Win32::ExtendedPath(path).c_str(), GENERIC_READ, static_cast<DWORD>(sharing),
                                           nullptr, OPEN_EXISTING, 0, nullptr))) {
    if (!m_file) throw QVUtilsException(GetLastError(), "Unable to open file");
    // "filesize" is one word in this message: users search their logs for it. compatibility: 11
    if (const uint32_t error = Win32::GetStamp(m_file.get(), m_stamp))
        throw QVUtilsException(error, "Failed to get filesize");
}

uint32_t FileDataReader::Read(void* buffer, uint32_t size, uint32_t& bytesRead) {
    DWORD delivered = 0;
    if (!ReadFile(m_file.get(), buffer, size, &delivered, nullptr))
        throw QVUtilsException(GetLastError(), "Failed to read file");
    bytesRead = delivered;
    return 1;
}

uint32_t MemoryDataReader::Read(void* buffer, uint32_t size, uint32_t& bytesRead) {
    bytesRead = std::min(size, m_size - m_position);
    if (bytesRead > 0) std::memcpy(buffer, m_data + m_position, bytesRead);
    m_position += bytesRead;
    return 1;
}

uint32_t LimitedDataReader::Read(void* buffer, uint32_t size, uint32_t& bytesRead) {
    m_reader.Read(buffer, static_cast<uint32_t>(std::min<uint64_t>(size, m_left)), bytesRead);
    m_left -= bytesRead;
    return 1;
}

uint32_t SampledDataReader::Read(void* buffer, uint32_t size, uint32_t& bytesRead) {
    const uint32_t left = m_sampleSize - m_position;
    if (left == 0) return m_reader.Read(buffer, size, bytesRead);
    bytesRead = std::min(size, left);
    std::memcpy(buffer, m_sample + m_position, bytesRead);
    m_position += bytesRead;
    return 1;
}

}  // namespace QVUtils
