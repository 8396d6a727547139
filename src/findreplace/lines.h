// lines.h - a stretch of text as a table of lines, with the edits made to it.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "findreplace/passing_text.h"
#include "textio/data_writer.h"
#include "textio/line_splitter.h"

namespace QVFindAndReplace {

/// Memory for texts of the same life, handed out from large blocks.
template <class CharT>
class TextArena {
public:
    /// Room for `length` units, valid until Clear.
    CharT* Allocate(size_t length);
    /// Keeps a text that was built elsewhere.
    void Adopt(std::unique_ptr<CharT[]> text) { m_longTexts.push_back(std::move(text)); }
    /// Gives up all texts, and keeps one block for the next ones.
    void Clear();

private:
    static constexpr size_t kBlockUnits = (1 << 18) / sizeof(CharT);
    std::vector<std::unique_ptr<CharT[]>> m_blocks;
    std::vector<std::unique_ptr<CharT[]>> m_longTexts;
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

/// The lines of a text, in its order.
///
/// The text stays where it is, in one piece, so that a search can run over many lines at once. The table over it is
/// made when it is first asked for: a text in which nothing is found never needs one.
template <class CharT>
class Lines {
public:
    using View = std::basic_string_view<CharT>;
    static constexpr uint32_t kAllLines = 0xFFFFFFFF;

    /// Starts on a text, which must stay in place as long as its lines are used. What was held before is gone.
    void Reset(View text);

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
    /// The same, taking the text over instead of copying it.
    void SetLine(uint32_t line, PassingText<CharT>&& text);
    /// The line is searched and written no more.
    void RemoveLine(uint32_t line);
    /// Adds a line after `line` and after those added there before. Added lines are written, never searched: that
    /// they came from the replacement is reason enough not to replace in them again.
    void InsertLine(uint32_t line, View text);
    /// The lines added after `line`, in their order. Only where its record says that there are some.
    const std::vector<std::basic_string<CharT>>& GetInserted(uint32_t line) const { return m_inserted.at(line); }

    /// Writes the lines before `end`. Every line that had a break gets the break of the first line of the file that had
    /// one, so that a file with mixed breaks comes back with one style (compatibility: 5). Added lines get it too; a
    /// line without a break stays without. `style` holds that break, or None as long as no such line was seen.
    /// @throws QVUtilsException what the writer throws
    void Save(QVUtils::DataWriter& writer, QVUtils::LineBreak& style, uint32_t end = kAllLines) const;

    /// Appends the lines from `first` on to `text`, as they now stand, each with the break that it had. None of them
    /// may be removed or have lines added after it.
    void CopyFrom(uint32_t first, std::vector<CharT>& text) const;

    /// The line of an untouched stretch [first, last) of the table in which the text position `at` lies. Fast when it
    /// is near `first`.
    uint32_t FindLineOf(const CharT* at, uint32_t first, uint32_t last) const;

private:
    std::vector<LineRecord<CharT>>& Records() const {
        if (!m_hasRecords) MakeRecords();
        return m_records;
    }
    void MakeRecords() const;

    void Edit(uint32_t line, const CharT* text, size_t length);

    View m_text;
    bool m_isTouched = false;
    // The table follows from the text alone, so making it changes nothing that can be seen.
    mutable bool m_hasRecords = false;
    mutable std::vector<LineRecord<CharT>> m_records;
    TextArena<CharT> m_arena;
    std::map<uint32_t, std::vector<std::basic_string<CharT>>> m_inserted;
};

}  // namespace QVFindAndReplace
