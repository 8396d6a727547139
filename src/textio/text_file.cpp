#include "textio/text_file.h"

#include <limits>

#include "win32/files.h"

namespace QVUtils {

TextFile::TextFile(const std::wstring& path) {
    try {
        m_file = std::make_unique<FileDataReader>(path);
    } catch (const QVUtilsException&) {
        // Asked only now: a file that opens needs no look at its attributes first.
        if (!Win32::Exists(path)) throw QVUtilsException(ErrorCode::FileNotFound, "File not found");
        throw;
    }
    try {
        m_sampled = std::make_unique<SampledDataReader>(*m_file);
    } catch (const QVUtilsException& failure) {
        throw QVUtilsException(failure.GetErrorCode(), "Unable to read file content");
    }
    m_kind = DetectEncoding(m_sampled->GetSample(), m_sampled->GetSampleSize());
}

void RefuseOversizedText(uint64_t bytes) {
    if (bytes > std::numeric_limits<uint32_t>::max())
        throw QVUtilsException(ErrorCode::FileTooLarge, "Files of 4 GB or more are not supported");
}

}  // namespace QVUtils
