#include "textio/data_writer.h"

#include <algorithm>

#include "win32/path.h"
#include "win32/windows.h"

namespace QVUtils {

void WriteAll(DataWriter& writer, const void* data, uint64_t size) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    while (size > 0) {
        const uint32_t written = writer.Write(bytes, std::min<uint64_t>(size, BufferedDataWriter::kBlockSize));
        if (written == 0) throw QVUtilsException(ErrorCode::DiskFull, "Failed to write data to file");
        bytes += written;
        size -= written;
    }
}

bool FileDataWriter::Open(const std::wstring& path, bool overwrite, Win32::FileSharing sharing) {
    m_file.reset();
    Adopt(Win32::HeldFileOf(CreateFileW(Win32::ExtendedPath(path).c_str(), GENERIC_WRITE, static_cast<DWORD>(sharing),
                                        nullptr, overwrite ? CREATE_ALWAYS : CREATE_NEW, 0, nullptr)));
    return GetLastError() != ERROR_ALREADY_EXISTS;  // set by CREATE_ALWAYS, and cleared by a creation
}

uint32_t FileDataWriter::WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) {
    DWORD written = 0;
    if (!WriteFile(m_file.get(), buffer, size, &written, nullptr))
        throw QVUtilsException(GetLastError(), "Failed to write data to file");
    if (bytesWritten) *bytesWritten = written;
    return 1;
}

void FileDataWriter::Adopt(Win32::HeldFile file) {
    m_file = std::move(file);
    if (!m_file) throw QVUtilsException(GetLastError(), "Unable to open file for writing");
}

void FileDataWriter::Close() {
    if (m_file && !CloseHandle(m_file.release()))
        throw QVUtilsException(GetLastError(), "Failed to write data to file");
}

}  // namespace QVUtils
