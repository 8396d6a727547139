// sortable_lines.h - one file's text in memory, cut into lines. Knows no keys' rules and no order.
#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "linesorter/workers.h"
#include "textio/data_reader.h"
#include "textio/data_writer.h"

namespace QVLineSorter {

/// One line, without its line break. Places and lengths count characters. Texts stay below 4 GB.
///
/// There are tens of millions of these, so the text's pointer is a 32-bit place, the line break is read from the text
/// after the line, and number and date keys are kept by the sort that needs them: 16 bytes a line.
struct SortableLine {
    uint32_t start = 0;
    uint32_t length = 0;
    uint32_t keyOffset = 0;  // from the line's start
    uint32_t keyLength = 0;  // 0: to the end of the line
};

struct FreeRecords {
    void operator()(void* records) const noexcept { ::operator delete(records); }
};
/// Memory for records that the workers write: nobody has written to it before them, which would cost as much.
template <class Record>
using Records = std::unique_ptr<Record[], FreeRecords>;
/// @throws std::bad_alloc
template <class Record>
Records<Record> AllocateRecords(size_t count) {
    static_assert(std::is_trivially_copyable_v<Record> && std::is_trivially_destructible_v<Record>);
    return Records<Record>(static_cast<Record*>(::operator new(count * sizeof(Record))));
}

/// The lines that are sorted. Indexes of the sort count from its first line.
using Range = std::span<SortableLine>;

/// The text and the lines of one file.
///
/// The text is held in one piece, so a line of any length is a line like any other. A byte-order mark belongs to no
/// line and neither does an odd last byte of 16-bit text: both stay where they are in the file.
template <class CharT>
class SortableLinesData {
public:
    using View = std::basic_string_view<CharT>;

    /// Reads everything that `reader` still has to give, on the calling thread, while the workers look at what there
    /// is. `expectedSize` in bytes is what the file had when it was opened; it may have changed since.
    /// @throws QVUtilsException code 223 when it grew to 4 GB or more, when the user has cancelled, and what the reader
    /// throws
    SortableLinesData(QVUtils::DataReader& reader, uint64_t expectedSize, Workers& workers);

    /// In file order at first. Sorting moves them.
    Range Lines() noexcept { return {m_lines.get(), m_count}; }
    std::span<const SortableLine> Lines() const noexcept { return {m_lines.get(), m_count}; }
    /// Drops the lines from `begin` up to `end`.
    void Drop(size_t begin, size_t end);

    View LineText(const SortableLine& line) const { return {m_text + line.start, line.length}; }
    View KeyText(const SortableLine& line) const {
        const uint32_t rest = line.length - line.keyOffset;
        return {m_text + line.start + line.keyOffset, line.keyLength != 0 ? line.keyLength : rest};
    }
    /// The line from its key's start on, whatever the key's length.
    View TextFromKey(const SortableLine& line) const { return LineText(line).substr(line.keyOffset); }
    /// The line with the break that it was read with. A lone CR ends a line without being a break of it.
    View LineWithBreak(const SortableLine& line) const;

    /// The first line break of the file; LF when it has none, as for a changed document.
    View PrevailingLineBreak() const noexcept { return m_prevailingLineBreak; }

    /// Bytes before the first line and after the last one.
    std::string_view ByteOrderMark() const noexcept;
    std::string_view OddByte() const noexcept;

    /// True when a character of the text is zero: the C runtime ends its comparisons there.
    bool HasZeroCharacter() const noexcept { return m_hasZero; }

    /// Bytes that are read, or looked at, in one go.
    static constexpr size_t kBlockSize = 1 << 20;

    /// At least this many bytes may be read after the text, all of them zero.
    static constexpr size_t kSpareBytes = 12;

private:
    /// What is found out about a block of the text while the next ones are read.
    struct Block {
        size_t bytes = 0;
        size_t lines = 0;  // that begin in it
        bool hasZero = false;
    };

    std::vector<Block> ReadText(QVUtils::DataReader& reader, uint64_t expectedSize, Workers& workers);
    void ReadRest(QVUtils::DataReader& reader, size_t capacity, uint64_t expectedSize, QVUtils::Progress& progress);
    void FindText();
    View TextOf(size_t block, size_t bytes) const;
    void LookAt(size_t block, Block& found) const;
    void CutIntoLines(std::vector<Block>& blocks, Workers& workers);
    void Cut(View block, SortableLine* line) const;

    std::unique_ptr<uint8_t[]> m_bytes;
    size_t m_size = 0;              // bytes read
    const CharT* m_text = nullptr;  // after the byte-order mark
    const CharT* m_textEnd = nullptr;
    View m_prevailingLineBreak;
    bool m_hasZero = false;
    Records<SortableLine> m_lines;
    size_t m_count = 0;
};

/// Writes the byte-order mark, every line with the line break that it was read with, and an odd last byte. Nothing is
/// converted. A line without a break, which is the file's last one or one that a lone CR ended, gets the prevailing
/// break: else it would run into the line that now follows it. The workers collect the lines, the calling thread
/// writes.
template <class CharT>
void WriteLines(const SortableLinesData<CharT>& data, QVUtils::DataWriter& writer, Workers& workers);

}  // namespace QVLineSorter
