#include "findreplace/text_blocks.h"

#include <algorithm>
#include <cstring>

#include "findreplace/request.h"
#include "textio/byte_search.h"
#include "textio/text_file.h"

namespace QVFindAndReplace {

template <class CharT>
TextBlocks<CharT>::TextBlocks(QVUtils::DataReader& reader, uint32_t markSize, size_t blockSize, uint64_t expectedSize,
                              uint32_t chunkSize)
    : m_reader(reader),
      m_chunkSize(chunkSize),
      m_expectedSize(static_cast<size_t>(expectedSize)),
      m_markSize(markSize),
      m_blockSize(blockSize) {
    if (blockSize == kWholeText) QVUtils::RefuseOversizedText(expectedSize);
    // One chunk more than is needed: the last read, which finds the end, needs one too.
    m_capacity = std::min<size_t>(static_cast<size_t>(expectedSize), blockSize) + chunkSize;
    m_buffer = std::make_unique_for_overwrite<uint8_t[]>(m_capacity);
}

template <class CharT>
bool TextBlocks<CharT>::Next(View& block) {
    if (m_begin > 0) {
        std::memmove(m_buffer.get(), m_buffer.get() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_offset += m_begin;
        m_begin = 0;
    }
    size_t wanted = m_blockSize;
    size_t searched = 0;  // no line ends before here
    const uint8_t* blockEnd = nullptr;
    while (!blockEnd) {
        while (m_end < wanted && Fill()) {
        }
        blockEnd = m_isAtEnd ? m_buffer.get() + m_end : EndOfLastLine(searched);
        searched = m_end;
        wanted = 2 * m_end;  // for a line longer than the block
    }
    m_markSize = std::min(m_markSize, m_end);
    const uint8_t* const bytes = m_buffer.get();
    const uint8_t* const text = bytes + m_markSize;
    if (m_markSize > 0) m_mark.assign(bytes, text);
    m_markSize = 0;
    const auto units = static_cast<size_t>(blockEnd - text) / sizeof(CharT);
    block = View(reinterpret_cast<const CharT*>(text), units);
    if (m_isAtEnd) m_halfUnit.append(text + units * sizeof(CharT), blockEnd);
    m_begin = static_cast<size_t>(blockEnd - m_buffer.get());
    return units > 0;
}

/// Reads one chunk. False at the end of the text.
template <class CharT>
bool TextBlocks<CharT>::Fill() {
    if (m_isAtEnd) return false;
    if (m_capacity - m_end < m_chunkSize) {
        // A line of this length is likely to be most of the text: copying it once is enough.
        constexpr size_t kLongLine = size_t{1} * 1024 * 1024;
        constexpr size_t kLongestText = std::numeric_limits<uint32_t>::max();
        const size_t doubled = 2 * m_capacity + m_chunkSize;
        const bool isMostOfIt = m_end >= kLongLine && m_expectedSize <= kLongestText;
        const size_t larger = isMostOfIt ? std::max<size_t>(doubled, m_expectedSize + m_chunkSize) : doubled;
        auto buffer = std::make_unique_for_overwrite<uint8_t[]>(larger);
        std::memcpy(buffer.get(), m_buffer.get(), m_end);
        m_buffer = std::move(buffer);
        m_capacity = larger;
    }
    uint32_t delivered = 0;
    m_reader.Read(m_buffer.get() + m_end, m_chunkSize, delivered);
    m_end += delivered;
    m_isAtEnd = delivered == 0;
    QVUtils::RefuseOversizedText(m_end);
    return !m_isAtEnd;
}

/// Where the last line that is sure to be complete ends; null when no line ends after the first `searched` bytes. A CR
/// at the very end may be half of a break.
template <class CharT>
const uint8_t* TextBlocks<CharT>::EndOfLastLine(size_t searched) const {
    if (m_end <= m_markSize) return nullptr;
    const auto* const begin = reinterpret_cast<const CharT*>(m_buffer.get() + m_markSize);
    const CharT* at = begin + (m_end - m_markSize) / sizeof(CharT);
    // One unit of what was searched before is looked at again: it may have been that CR.
    const size_t known = searched > m_markSize + 2 * sizeof(CharT) ? searched - m_markSize - 2 * sizeof(CharT) : 0;
    const CharT* const stop = begin + known / sizeof(CharT);
    if (at != begin && at[-1] == CharT('\r')) --at;
    // A line longer than a block mostly goes on, and that is seen much faster looking forward.
    if (searched > 0 && QVUtils::FindLineBreak(stop, at) == at) return nullptr;
    while (at != stop && at[-1] != CharT('\n') && at[-1] != CharT('\r')) --at;
    return at == stop ? nullptr : reinterpret_cast<const uint8_t*>(at);
}

template class TextBlocks<char>;
template class TextBlocks<WideChar>;

}  // namespace QVFindAndReplace
