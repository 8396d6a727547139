#include "findreplace/text_blocks.h"

#include <algorithm>
#include <cstring>

#include "findreplace/request.h"
#include "textio/byte_search.h"
#include "textio/text_file.h"

namespace QVFindAndReplace {

template <class CharT>
TextBlocks<CharT>::TextBlocks(QVUtils::DataReader& reader, uint32_t markSize, size_t blockSize, uint64_t expectedSize,
                              Cut cut, uint32_t chunkSize)
    : m_reader(reader),
      m_chunkSize(chunkSize),
      m_expectedSize(static_cast<size_t>(expectedSize)),
      m_cut(cut),
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
    // Twice what was given back: it must not come back for ever.
    size_t wanted = std::max(m_blockSize, 2 * m_end);
    size_t searched = 0;  // no line ends before here
    const uint8_t* blockEnd = nullptr;
    while (!blockEnd) {
        while (m_end < wanted && Fill()) {
        }
        blockEnd = m_isAtEnd ? m_buffer.get() + m_end : EndOfLastLine(searched);
        m_endsLine = blockEnd != nullptr;
        if (!blockEnd && m_cut == Cut::AnywhereInLongLines) blockEnd = EndInLine();
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
    // That a line goes on is seen much faster looking forward, and where lines are short that is a short look.
    if (QVUtils::FindLineBreak(stop, at) == at) return nullptr;
    while (at != stop && at[-1] != CharT('\n') && at[-1] != CharT('\r')) --at;
    return at == stop ? nullptr : reinterpret_cast<const uint8_t*>(at);
}

/// Where a block can end that has no break: not inside of a unit, nor of a UTF-8 character, nor after a CR, which may
/// be half of a break. Null when nothing would be left.
template <class CharT>
const uint8_t* TextBlocks<CharT>::EndInLine() const {
    const size_t begin = std::min(m_markSize, m_end);
    size_t size = m_end - (m_end - begin) % sizeof(CharT);
    const auto last = [&] { return reinterpret_cast<const CharT*>(m_buffer.get() + size)[-1]; };
    if (size > begin && last() == CharT('\r')) size -= sizeof(CharT);
    if constexpr (sizeof(CharT) == 1) {
        const size_t least = size > begin + kMostUnits ? size - kMostUnits : begin;
        while (size > least && (last() & 0xC0) == 0x80) --size;
        if (size > least && (last() & 0x80) != 0) --size;
    }
    return size > begin ? m_buffer.get() + size : nullptr;
}

template class TextBlocks<char>;
template class TextBlocks<WideChar>;

}  // namespace QVFindAndReplace
