// text_blocks.h - reads a text in blocks of whole lines, so that a long file passes through a small buffer that stays
// in the processor's cache. Where that serves, lines longer than a block are cut.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "textio/data_reader.h"

namespace QVFindAndReplace {

template <class CharT>
class TextBlocks {
public:
    using View = std::basic_string_view<CharT>;

    /// Where blocks may end. In the middle of a line a block has no break.
    enum class Cut { AfterLines, AnywhereInLongLines };

    static constexpr uint32_t kChunkSize = 32768;
    static constexpr size_t kBlockSize = size_t{128} * 1024;
    static constexpr size_t kWholeText = std::numeric_limits<size_t>::max();

    /// `markSize`: bytes of the byte-order mark, which belongs to no line. `blockSize`: bytes of a block, which grows
    /// for a line that is longer, or kWholeText. `expectedSize` (bytes) only saves growing. The reader must outlive the
    /// object; it is read in chunks of `chunkSize` bytes.
    /// @throws QVUtilsException code 223 for a whole text of 4 GB
    TextBlocks(QVUtils::DataReader& reader, uint32_t markSize, size_t blockSize, uint64_t expectedSize,
               Cut cut = Cut::AfterLines, uint32_t chunkSize = kChunkSize);

    /// Gives the next block; what was given before is gone. False at the end; a text without a line gives no block.
    /// @throws QVUtilsException what the reader throws, and code 223 for a block of 4 GB
    bool Next(View& block);

    /// True when the block given last ends with a line, or with the text.
    bool EndsLine() const noexcept { return m_endsLine; }
    /// True when no block follows the one given last, unless of what was given back.
    bool IsAtEnd() const noexcept { return m_isAtEnd; }

    /// Gives so many units at the end of the block given last once more, with the next one.
    void GiveBack(size_t units) noexcept { m_begin -= units * sizeof(CharT); }

    /// Bytes of the text before the block given last, the mark included.
    uint64_t GetOffset() const noexcept { return m_offset; }
    /// The mark, once Next was called.
    const std::string& GetMark() const noexcept { return m_mark; }
    /// What is left of a UTF-16 text that ends inside a unit, once Next was false.
    const std::string& GetHalfUnit() const noexcept { return m_halfUnit; }

private:
    bool Fill();
    const uint8_t* EndOfLastLine(size_t searched) const;
    const uint8_t* EndInLine() const;

    QVUtils::DataReader& m_reader;
    const uint32_t m_chunkSize;
    const size_t m_expectedSize;
    const Cut m_cut;
    size_t m_markSize;
    size_t m_blockSize;
    uint64_t m_offset = 0;
    std::unique_ptr<uint8_t[]> m_buffer;
    size_t m_capacity;
    size_t m_begin = 0;  // of the bytes not given yet
    size_t m_end = 0;
    bool m_isAtEnd = false;
    bool m_endsLine = true;
    std::string m_mark;
    std::string m_halfUnit;
};

}  // namespace QVFindAndReplace
