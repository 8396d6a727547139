// data_writer.h - the one abstract sink for bytes, backed by a file or by memory, and a buffer to put in front of it.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <thread>

#include "textio/qvutils_exception.h"
#include "win32/files.h"
#include "win32/system_lock.h"

namespace QVUtils {

/// A sink for bytes that also knows the line break of the text being written.
class DataWriter {
public:
    virtual ~DataWriter() = default;
    DataWriter() = default;
    DataWriter(const DataWriter&) = delete;
    DataWriter& operator=(const DataWriter&) = delete;

    /// Hooks around a whole text, without effect here.
    virtual void BeginText() {}
    virtual void EndText() {}

    /// Writes the line break set before. Returns the bytes written: 0, without a write, when none is set.
    virtual uint32_t WriteNewLine() {
        if (m_lineBreak.empty()) return 0;
        return Write(m_lineBreak.data(), m_lineBreak.size());
    }

    /// Writes `size` bytes and stores how many of them were taken (`bytesWritten` may be null). Fewer than asked is
    /// not reported as an error here: see WriteAll. @throws QVUtilsException "Failed to write data to file"
    virtual uint32_t WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) = 0;

    /// Writes and returns the count. The size is cut to 32 bits, and 0 of them write nothing, not even an empty block.
    virtual uint32_t Write(const void* buffer, uint64_t size) {
        const auto cut = static_cast<uint32_t>(size);
        if (cut == 0) return 0;
        uint32_t written = 0;
        WriteData(buffer, cut, &written);
        return written;
    }

    /// Sets the bytes of a line break in the target's encoding; empty for none.
    void SetLineBreak(std::string bytes) { m_lineBreak = std::move(bytes); }
    const std::string& GetLineBreak() const noexcept { return m_lineBreak; }

private:
    std::string m_lineBreak;
};

/// Writes every byte, in as many calls as the writer needs: a successful write may take only a part (a size limit, a
/// full disk), and the next one then says why. @throws QVUtilsException the writer's, or disk full when it takes
/// nothing
void WriteAll(DataWriter& writer, const void* data, uint64_t size);

/// Writes a file. Unbuffered: every write is one call of the system.
class FileDataWriter final : public DataWriter {
public:
    /// Closes what is open, then opens `path`: emptied when it exists and `overwrite` is set, refused with code 80 when
    /// it exists and `overwrite` is not. True when the file was not there before.
    /// @throws QVUtilsException "Unable to open file for writing"
    bool Open(const std::wstring& path, bool overwrite, Win32::FileSharing sharing = Win32::FileSharing::ReadAndWrite);

    uint32_t WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) override;

    /// Takes over a file that was opened for writing; null is a failure of the call before.
    /// @throws QVUtilsException "Unable to open file for writing"
    void Adopt(Win32::HeldFile file);
    void* GetSystemHandle() const noexcept { return m_file.get(); }

    /// Closes the file, so that a failure to do so is seen before anything relies on the new content.
    /// @throws QVUtilsException "Failed to write data to file"
    void Close();

    /// Closes the file without looking at the result: its content is given up.
    void Abandon() noexcept { m_file.reset(); }

private:
    Win32::HeldFile m_file;
};

/// Writes into a block of fixed size. What does not fit is dropped silently (compatibility: 37): the caller sizes the
/// block.
template <class CharT>
class MemoryDataWriter final : public DataWriter {
public:
    /// `size` in bytes; the block is zero-filled.
    explicit MemoryDataWriter(uint32_t size)
        : m_block(std::make_unique<CharT[]>((size + sizeof(CharT) - 1) / sizeof(CharT))),
          m_cursor(reinterpret_cast<uint8_t*>(m_block.get())),
          m_end(m_cursor + size) {}

    uint32_t WriteNewLine() override {
        const uint32_t written = DataWriter::WriteNewLine();
        ++m_lineBreaks;
        m_sinceLineBreak = 0;
        return written;
    }

    uint32_t WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) override {
        const auto free = static_cast<size_t>(m_end - m_cursor);
        const auto taken = static_cast<uint32_t>(size < free ? size : free);
        if (taken > 0) std::memcpy(m_cursor, buffer, taken);
        m_cursor += taken;
        if (bytesWritten) *bytesWritten = taken;
        return 1;
    }

    /// Hands the block to the caller. Nothing may be written afterwards but what fits into no bytes.
    std::unique_ptr<CharT[]> Release() {
        m_cursor = m_end = nullptr;
        return std::move(m_block);
    }

    uint32_t GetLineBreakCount() const noexcept { return m_lineBreaks; }

private:
    std::unique_ptr<CharT[]> m_block;
    uint8_t* m_cursor;
    uint8_t* m_end;
    uint32_t m_lineBreaks = 0;
    uint32_t m_sinceLineBreak = 0;
};

/// Collects what it is given into blocks, which are written in order, and from the second megabyte on while the next
/// one is collected. What fails then is thrown by a later call. Without memory or a thread for that, everything is
/// written at once. A writer that is destroyed without Flush (after a failure) drops what it holds.
class BufferedDataWriter final : public DataWriter {
public:
    static constexpr uint32_t kBlockSize = 256 * 1024;  // larger blocks are slower to write, not faster

    /// The other writer must outlive this one, and is not to be used meanwhile. Its line break is taken over.
    explicit BufferedDataWriter(DataWriter& target) : m_target(target) { SetLineBreak(target.GetLineBreak()); }
    ~BufferedDataWriter() override { Stop(); }

    uint32_t WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) override;

    /// Everything is written when this returns.
    void Flush();
    /// Waits for what is being written. No more is written after this.
    void Stop() noexcept;

private:
    static constexpr uint64_t kAtOnce = 1 << 20;
    static constexpr size_t kBlocks = 3;

    struct Block {
        std::unique_ptr<uint8_t[]> bytes;
        uint32_t size = 0;  // to be written; 0: free
    };

    static bool HasMemory(Block& block);
    void HandOver();
    bool HasThread();
    void WaitUntilFree(size_t block);
    void WriteBlocks(size_t first) noexcept;

    DataWriter& m_target;
    uint64_t m_writtenAtOnce = 0;
    size_t m_filling = 0;      // the block that is filled; a free one
    uint32_t m_collected = 0;  // bytes in it

    // Under the lock, once there is a thread.
    Win32::SystemLock m_lock;
    Win32::SystemCondition m_isFilled;
    Win32::SystemCondition m_isFree;
    std::array<Block, kBlocks> m_blocks;
    std::exception_ptr m_failure;
    bool m_isOver = false;
    std::jthread m_thread;
};

}  // namespace QVUtils
