// data_reader.h - the one abstract source of bytes, backed by a file or by memory.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "textio/qvutils_exception.h"
#include "win32/files.h"

namespace QVUtils {

/// A source of bytes, read forwards by one thread at a time.
class DataReader {
public:
    virtual ~DataReader() = default;
    DataReader() = default;
    DataReader(const DataReader&) = delete;
    DataReader& operator=(const DataReader&) = delete;

    /// Fills up to `size` bytes into `buffer` and stores the number delivered. A short read is no error; 0 bytes means
    /// the end. @throws QVUtilsException "Failed to read file"
    virtual uint32_t Read(void* buffer, uint32_t size, uint32_t& bytesRead) = 0;

    /// Releases what is read from; more than once does no harm.
    virtual void Close() = 0;
};

/// Reads a file. Unbuffered: every Read is one call of the system.
class FileDataReader final : public DataReader {
public:
    /// @throws QVUtilsException "Unable to open file" or "Failed to get filesize", with the system's code
    explicit FileDataReader(const std::wstring& path, Win32::FileSharing sharing = Win32::FileSharing::ReadAndWrite);

    uint32_t Read(void* buffer, uint32_t size, uint32_t& bytesRead) override;
    void Close() override { m_file.reset(); }

    /// Bytes, as the file was when it was opened.
    uint64_t GetFileSize() const noexcept { return m_stamp.size; }
    /// As the file was when it was opened.
    const Win32::FileStamp& GetStamp() const noexcept { return m_stamp; }
    void* GetSystemHandle() const noexcept { return m_file.get(); }

private:
    Win32::HeldFile m_file;
    Win32::FileStamp m_stamp;
};

/// Reads a block of memory. Never fails.
class MemoryDataReader final : public DataReader {
public:
    /// Reads `size` bytes at `data`. With `ownsData` the block must come from new[] of bytes and is freed with the
    /// reader; without, it must outlive it.
    MemoryDataReader(const void* data, uint32_t size, bool ownsData)
        : m_size(size), m_data(static_cast<const uint8_t*>(data)) {
        if (ownsData) m_owned.reset(m_data);
    }

    uint32_t Read(void* buffer, uint32_t size, uint32_t& bytesRead) override;
    void Close() override {}

private:
    uint32_t m_size;
    uint32_t m_position = 0;
    const uint8_t* m_data;
    std::unique_ptr<const uint8_t[]> m_owned;
};

/// The first bytes of what another reader gives.
class LimitedDataReader final : public DataReader {
public:
    /// Ends after `limit` bytes. The other reader must outlive this one.
    LimitedDataReader(DataReader& reader, uint64_t limit) : m_reader(reader), m_left(limit) {}

    uint32_t Read(void* buffer, uint32_t size, uint32_t& bytesRead) override;
    void Close() override { m_reader.Close(); }

    /// Bytes that were not read yet; above 0 at the end when the other reader had fewer.
    uint64_t GetLeft() const noexcept { return m_left; }

private:
    DataReader& m_reader;
    uint64_t m_left;
};

/// Puts bytes that were already read in front of what another reader still has to give. So a file is opened once, both
/// to look at its first bytes and to load it.
class SampledDataReader final : public DataReader {
public:
    static constexpr uint32_t kSampleSize = 1024;

    /// Takes the sample at once, with a single read. The other reader must outlive this one.
    explicit SampledDataReader(DataReader& reader) : m_reader(reader) {
        m_reader.Read(m_sample, kSampleSize, m_sampleSize);
    }

    const uint8_t* GetSample() const noexcept { return m_sample; }
    uint32_t GetSampleSize() const noexcept { return m_sampleSize; }

    uint32_t Read(void* buffer, uint32_t size, uint32_t& bytesRead) override;
    void Close() override { m_reader.Close(); }

private:
    DataReader& m_reader;
    uint8_t m_sample[kSampleSize] = {};
    uint32_t m_sampleSize = 0;
    uint32_t m_position = 0;
};

}  // namespace QVUtils
