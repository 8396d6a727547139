// lines.h - a text as a table of lines over one block of memory, with the edits made to it.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "textio/data_reader.h"
#include "textio/data_writer.h"
#include "textio/line_splitter.h"

namespace QVFindAndReplace {

/// Memory for texts that live as long as the document, handed out from large blocks.
template <class CharT>
class TextArena {
public:
    /// Room for `length` units.
    CharT* Allocate(size_t length);

private:
    static constexpr size_t kBlockUnits = (1 << 20) / sizeof(CharT);
    std::vector<std::unique_ptr<CharT[]>> m_blocks;
    CharT* m_next = nullptr;
    size_t m_left = 0;
};

/// One line. Lengths count characters (bytes or UTF-16 units), without the line break.
template <class CharT>
struct LineRecord {
    const CharT* text;    // in the document's storage, whatever edits there are: the records stay in its order
    const CharT* edited;  // the text that replaced it, null when none did
    uint32_t length;
    uint32_t currentLength;
    uint8_t breakLength;
    QVUtils::LineBreak lineBreak;
    bool isRemoved;
    bool hasInsertedLines;
};

/// The lines of a document, in file order.
///
/// The whole text lies in one block as it was read, so that a search can run over many lines at once. The table over it
/// is made when it is first asked for: a text in which nothing is found never needs one.
template <class CharT>
class Lines {
public:
    using View = std::basic_string_view<CharT>;

    static constexpr uint32_t kChunkSize = 32768;

    /// Reads everything that `reader` gives, in chunks of `chunkSize` bytes. `expectedSize` (bytes) only saves growing.
    /// The first `markSize` bytes (a byte-order mark) belong to no line and come back first when the text is written;
    /// so does, at the end, half of a UTF-16 unit. @throws QVUtilsException for 4 GB or more, and what the reader
    /// throws
    void Load(QVUtils::DataReader& reader, uint64_t expectedSize, uint32_t markSize, uint32_t chunkSize = kChunkSize);

    /// The text as it was read, without the mark.
    View GetText() const noexcept { return m_text; }

    uint32_t GetCount() const { return static_cast<uint32_t>(Records().size()); }
    const LineRecord<CharT>& GetRecord(uint32_t line) const { return Records()[line]; }

    /// The line as it stands now.
    View GetLine(uint32_t line) const {
        const LineRecord<CharT>& record = Records()[line];
        return {record.edited ? record.edited : record.text, record.currentLength};
    }
    bool IsUntouched(uint32_t line) const {
        const LineRecord<CharT>& record = Records()[line];
        return !record.edited && !record.isRemoved;
    }
    /// True until the first edit.
    bool AreAllUntouched() const noexcept { return !m_isTouched; }

    /// Gives a line the text `head` + `tail`. Both may lie in the line's present text.
    void SetLine(uint32_t line, View head, View tail);
    /// The line is searched and written no more.
    void RemoveLine(uint32_t line);
    /// Adds a line behind `line` and behind those added there before. Added lines are written, never searched: that
    /// they came from the replacement is reason enough not to replace in them again.
    void InsertLine(uint32_t line, View text);

    /// Writes all lines. Every line that had a break gets the break of the first line that had one, so that a file with
    /// mixed breaks comes back with one style; this is intended. Added lines get it too; a line without a break stays
    /// without. @throws QVUtilsException what the writer throws
    void Save(QVUtils::DataWriter& writer) const;

    /// The line of an untouched stretch [first, last) of the table in which the text position `at` lies. Fast when it
    /// is near `first`.
    uint32_t FindLineOf(const CharT* at, uint32_t first, uint32_t last) const;

private:
    std::vector<LineRecord<CharT>>& Records() const {
        if (!m_hasRecords) MakeRecords();
        return m_records;
    }
    void MakeRecords() const;

    std::unique_ptr<uint8_t[]> m_storage;
    std::string m_mark;
    std::string m_halfUnit;
    View m_text;
    bool m_isTouched = false;
    // The table follows from the text alone, so making it changes nothing that can be seen.
    mutable bool m_hasRecords = false;
    mutable std::vector<LineRecord<CharT>> m_records;
    TextArena<CharT> m_arena;
    std::map<uint32_t, std::vector<std::basic_string<CharT>>> m_inserted;
};

}  // namespace QVFindAndReplace
