// told_streams.h - a source and a sink of bytes that tell of the progress of what goes through them. Both end the work,
// by an exception, when it is to stop.
#pragma once

#include "textio/data_reader.h"
#include "textio/data_writer.h"
#include "textio/progress.h"

namespace QVUtils {

/// Tells how much of the file was read.
class ToldDataReader final : public DataReader {
public:
    /// `total` bytes are to be read. Reader and progress must outlive the object.
    ToldDataReader(DataReader& reader, uint64_t total, Progress& progress)
        : m_reader(reader), m_total(total), m_progress(progress) {}

    uint32_t Read(void* buffer, uint32_t size, uint32_t& bytesRead) override {
        m_progress.Advance(m_done, m_total);
        const uint32_t result = m_reader.Read(buffer, size, bytesRead);
        m_done += bytesRead;
        return result;
    }
    void Close() override { m_reader.Close(); }

private:
    DataReader& m_reader;
    const uint64_t m_total;
    uint64_t m_done = 0;
    Progress& m_progress;
};

/// Gives the wish to stop a hearing while much is written.
class ToldDataWriter final : public DataWriter {
public:
    /// Writer and progress must outlive the object.
    ToldDataWriter(DataWriter& writer, Progress& progress) : m_writer(writer), m_progress(progress) {}

    uint32_t WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) override {
        m_sinceTold += size;
        if (m_sinceTold >= BufferedDataWriter::kBlockSize) {
            m_sinceTold = 0;
            m_progress.KeepAlive();
        }
        return m_writer.WriteData(buffer, size, bytesWritten);
    }

private:
    DataWriter& m_writer;
    uint64_t m_sinceTold = 0;
    Progress& m_progress;
};

}  // namespace QVUtils
