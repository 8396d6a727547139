#include "findreplace/lines.h"

#include <algorithm>
#include <utility>

#include "findreplace/request.h"
#include "textio/short_copy.h"
#include "textio/text_file.h"

namespace QVFindAndReplace {

using QVUtils::LineBreak;

namespace {

template <class CharT>
bool HasBreak(const LineRecord<CharT>& record) {
    return record.lineBreak != LineBreak::None;
}

/// Collects what is written line by line.
class Collector {
public:
    explicit Collector(QVUtils::DataWriter& writer) : m_writer(writer) {}

    void Write(const void* data, size_t size) {
        const bool isLong = size > sizeof(m_bytes) / 2;
        if (isLong || size > sizeof(m_bytes) - m_collected) Flush();
        if (isLong) return QVUtils::WriteAll(m_writer, data, size);
        QVUtils::CopyBytes(m_bytes + m_collected, data, size);
        m_collected += size;
    }
    void Flush() { QVUtils::WriteAll(m_writer, m_bytes, std::exchange(m_collected, 0)); }

private:
    QVUtils::DataWriter& m_writer;
    size_t m_collected = 0;
    char m_bytes[8192] = {};
};

}  // namespace

template <class CharT>
CharT* TextArena<CharT>::Allocate(size_t length) {
    if (length > m_left) {
        // A long text gets memory of its own, and the rest of the block in use is kept for short ones.
        if (length > kBlockUnits / 4) {
            m_longTexts.push_back(std::make_unique_for_overwrite<CharT[]>(length));
            return m_longTexts.back().get();
        }
        m_blocks.push_back(std::make_unique_for_overwrite<CharT[]>(kBlockUnits));
        m_next = m_blocks.back().get();
        m_left = kBlockUnits;
    }
    CharT* const place = m_next;
    m_next += length;
    m_left -= length;
    return place;
}

template <class CharT>
void TextArena<CharT>::Clear() {
    m_longTexts.clear();
    if (m_blocks.empty()) return;
    m_blocks.resize(1);
    m_next = m_blocks.front().get();
    m_left = kBlockUnits;
}

template <class CharT>
void Lines<CharT>::Reset(View text) {
    m_text = text;
    m_isTouched = m_hasRecords = false;
    m_records.clear();
    m_inserted.clear();
    m_arena.Clear();
}

template <class CharT>
void Lines<CharT>::MakeRecords() const {
    constexpr size_t kExpectedLineBytes = 60;
    m_records.reserve(m_text.size() * sizeof(CharT) / kExpectedLineBytes);
    const CharT* position = m_text.data();
    const CharT* const end = position + m_text.size();
    while (position != end) {
        const auto line = QVUtils::FindLineEnd(position, end);
        const auto length = static_cast<uint32_t>(line.textEnd - position);
        m_records.push_back({position, nullptr, length, length, line.breakLength, line.lineBreak, false, false});
        position = line.nextLine;
    }
    m_hasRecords = true;
}

template <class CharT>
void Lines<CharT>::SetLine(uint32_t line, View head, View tail) {
    const size_t length = head.size() + tail.size();
    // Room for one unit at least: an edit to no text at all is an edit too, and shows by its address.
    CharT* const text = m_arena.Allocate(std::max<size_t>(length, 1));
    QVUtils::CopyBytes(text, head.data(), head.size() * sizeof(CharT));
    QVUtils::CopyBytes(text + head.size(), tail.data(), tail.size() * sizeof(CharT));
    Edit(line, text, length);
}

template <class CharT>
void Lines<CharT>::SetLine(uint32_t line, PassingText<CharT>&& text) {
    Edit(line, text.Get().data(), text.Size());
    m_arena.Adopt(text.Release());
}

template <class CharT>
void Lines<CharT>::Edit(uint32_t line, const CharT* text, size_t length) {
    QVUtils::RefuseOversizedText(length * sizeof(CharT));
    LineRecord<CharT>& record = Records()[line];
    record.edited = text;
    record.currentLength = static_cast<uint32_t>(length);
    m_isTouched = true;
}

template <class CharT>
void Lines<CharT>::RemoveLine(uint32_t line) {
    Records()[line].isRemoved = true;
    m_isTouched = true;
}

template <class CharT>
void Lines<CharT>::InsertLine(uint32_t line, View text) {
    Records()[line].hasInsertedLines = true;
    m_inserted[line].emplace_back(text);
    m_isTouched = true;
}

template <class CharT>
void Lines<CharT>::CopyFrom(uint32_t first, std::vector<CharT>& text) const {
    const auto& records = Records();
    for (size_t line = first; line < records.size(); ++line) {
        const LineRecord<CharT>& record = records[line];
        // A lone CR counts as no break, but without it two lines would become one.
        const CharT* const next = line + 1 < records.size() ? records[line + 1].text : m_text.data() + m_text.size();
        const View now = GetLine(static_cast<uint32_t>(line));
        text.insert(text.end(), now.begin(), now.end());
        text.insert(text.end(), record.text + record.length, next);
    }
}

template <class CharT>
void Lines<CharT>::Save(QVUtils::DataWriter& writer, LineBreak& style, uint32_t end) const {
    const auto& records = Records();
    end = std::min(end, GetCount());
    if (style == LineBreak::None) {
        const auto first = std::ranges::find_if(records, HasBreak<CharT>);
        if (first != records.end()) style = first->lineBreak;
        writer.SetLineBreak(QVUtils::LineBreakBytes<CharT>(style == LineBreak::None ? LineBreak::Lf : style));
    }

    Collector collector(writer);
    const auto write = [&](const CharT* text, size_t length) { collector.Write(text, length * sizeof(CharT)); };
    const auto writeBreak = [&] { collector.Write(writer.GetLineBreak().data(), writer.GetLineBreak().size()); };
    // Neighbouring lines that are written just as they stand in the text go out in one piece.
    const CharT* pieceBegin = nullptr;
    const CharT* pieceEnd = nullptr;
    const auto writePiece = [&] {
        write(pieceBegin, static_cast<size_t>(pieceEnd - pieceBegin));
        pieceBegin = pieceEnd = nullptr;
    };

    for (uint32_t line = 0; line < end; ++line) {
        const LineRecord<CharT>& record = records[line];
        const bool isVerbatim = !record.edited && !record.isRemoved && !record.hasInsertedLines &&
                                (record.lineBreak == style || record.lineBreak == LineBreak::None);
        if (isVerbatim) {
            if (record.text != pieceEnd) {
                writePiece();
                pieceBegin = record.text;
            }
            pieceEnd = record.text + record.length + record.breakLength;
            continue;
        }
        writePiece();
        if (!record.isRemoved) {
            write(record.edited ? record.edited : record.text, record.currentLength);
            if (HasBreak(record)) writeBreak();
        }
        if (!record.hasInsertedLines) continue;
        // An added line ends in a break. Only after the file's last line, when that has none, the break stands between
        // them. A lone CR ends a line too, and is lost as everywhere: what follows it joins on, an added line as well.
        const bool isEnd = !HasBreak(record) && record.text + record.length == m_text.data() + m_text.size();
        for (const auto& text : m_inserted.at(line)) {
            if (isEnd) writeBreak();
            write(text.data(), text.size());
            if (!isEnd) writeBreak();
        }
    }
    writePiece();
    collector.Flush();
}

template <class CharT>
uint32_t Lines<CharT>::FindLineOf(const CharT* at, uint32_t first, uint32_t last) const {
    const auto& records = Records();
    // Steps that double until they pass the place, then a search in the last step.
    uint32_t step = 1;
    while (last - first > step && records[first + step].text <= at) {
        first += step;
        step *= 2;
    }
    const auto begin = records.begin() + first;
    const auto end = records.begin() + std::min(last, first + step);
    const auto after = std::upper_bound(
        begin, end, at, [](const CharT* place, const LineRecord<CharT>& record) { return place < record.text; });
    return static_cast<uint32_t>(after - records.begin()) - 1;
}

template class TextArena<char>;
template class TextArena<WideChar>;
template class Lines<char>;
template class Lines<WideChar>;

}  // namespace QVFindAndReplace
