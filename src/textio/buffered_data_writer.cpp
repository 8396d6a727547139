#include <algorithm>
#include <new>
#include <utility>

#include "textio/data_writer.h"
#include "textio/short_copy.h"

namespace QVUtils {

uint32_t BufferedDataWriter::WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) {
    const auto* bytes = static_cast<const uint8_t*>(buffer);
    for (uint32_t left = size; left > 0;) {
        Block& block = m_blocks[m_filling];
        if (!HasMemory(block)) {
            WriteAll(m_target, bytes, left);
            break;
        }
        const uint32_t part = std::min(left, kBlockSize - m_collected);
        CopyBytes(block.bytes.get() + m_collected, bytes, part);
        bytes += part;
        left -= part;
        m_collected += part;
        if (m_collected == kBlockSize) HandOver();
    }
    if (bytesWritten) *bytesWritten = size;
    return 1;
}

void BufferedDataWriter::Flush() {
    if (m_collected > 0) HandOver();
    for (size_t block = 0; m_thread.joinable() && block < kBlocks; ++block) WaitUntilFree(block);
}

void BufferedDataWriter::HandOver() {
    // Out of the member first: what a failure left unwritten is not written a second time.
    const uint32_t size = std::exchange(m_collected, 0);
    Block& block = m_blocks[m_filling];
    if (!HasThread()) {
        m_writtenAtOnce += size;
        return WriteAll(m_target, block.bytes.get(), size);
    }
    {
        const std::scoped_lock lock(m_lock);
        block.size = size;
        m_isFilled.WakeOne();
    }
    m_filling = (m_filling + 1) % kBlocks;
    WaitUntilFree(m_filling);
}

bool BufferedDataWriter::HasMemory(Block& block) {
    try {
        if (!block.bytes) block.bytes = std::make_unique_for_overwrite<uint8_t[]>(kBlockSize);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

/// Starts it as soon as there is enough to write.
bool BufferedDataWriter::HasThread() {
    if (m_thread.joinable() || m_writtenAtOnce < kAtOnce) return m_thread.joinable();
    m_writtenAtOnce = 0;  // in case that it cannot be had: asked again after a while
    if (!std::ranges::all_of(m_blocks, HasMemory)) return false;
    try {
        m_thread = std::jthread([this, first = m_filling] { WriteBlocks(first); });
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

void BufferedDataWriter::WaitUntilFree(size_t block) {
    std::unique_lock lock(m_lock);
    while (m_blocks[block].size > 0 && !m_failure) m_isFree.Wait(lock);
    if (m_failure) std::rethrow_exception(m_failure);
}

void BufferedDataWriter::Stop() noexcept {
    if (!m_thread.joinable()) return;
    {
        const std::scoped_lock lock(m_lock);
        m_isOver = true;
        m_isFilled.WakeOne();
    }
    m_thread.join();
}

void BufferedDataWriter::WriteBlocks(size_t first) noexcept {
    static_cast<void>(std::uncaught_exceptions());  // makes the runtime's record of this thread's exceptions now
    std::unique_lock lock(m_lock);
    for (size_t next = first;; next = (next + 1) % kBlocks) {
        Block& block = m_blocks[next];
        while (block.size == 0 && !m_isOver) m_isFilled.Wait(lock);
        if (m_isOver) return;
        lock.unlock();
        std::exception_ptr failure;
        try {
            WriteAll(m_target, block.bytes.get(), block.size);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        block.size = 0;
        m_failure = failure;
        m_isFree.WakeOne();
        if (failure) return;
    }
}

}  // namespace QVUtils
