// text_file.h - a file opened once, both to see what kind of text it is and to load it.
#pragma once

#include <memory>
#include <string>

#include "textio/data_reader.h"
#include "textio/encoding.h"

namespace QVUtils {

class TextFile {
public:
    /// Opens the file for shared reading and detects its kind from its first 1024 bytes.
    /// @throws QVUtilsException "File not found" (code 2), "Unable to open file", "Unable to read file content"
    explicit TextFile(const std::wstring& path);

    EncodingKind GetKind() const noexcept { return m_kind; }

    /// Bytes of the byte-order mark at the beginning, 0 when there is none.
    size_t GetMarkSize() const noexcept {
        return ByteOrderMarkSize(m_kind, m_sampled->GetSample(), m_sampled->GetSampleSize());
    }

    /// Bytes, as the file was when it was opened.
    uint64_t GetSize() const noexcept { return m_file->GetFileSize(); }

    const FileDataReader& GetFile() const noexcept { return *m_file; }

    /// Reads the file from its first byte, once.
    DataReader& GetReader() noexcept { return *m_sampled; }

    /// Lets go of the file, so that it can be replaced.
    void Close() { m_sampled->Close(); }

private:
    std::unique_ptr<FileDataReader> m_file;
    std::unique_ptr<SampledDataReader> m_sampled;
    EncodingKind m_kind = EncodingKind::NotText;
};

/// Records count in 32 bits. @throws QVUtilsException (code 223) for texts of 4 GB or more
void RefuseOversizedText(uint64_t bytes);

}  // namespace QVUtils
