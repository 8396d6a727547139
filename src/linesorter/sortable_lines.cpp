#include "linesorter/sortable_lines.h"

#include <algorithm>
#include <cstring>

#include "textio/line_splitter.h"
#include "textio/text_file.h"

namespace QVLineSorter {
namespace {

constexpr uint32_t kReadSize = 1 << 20;
constexpr uint64_t kSizeLimit = uint64_t{1} << 32;  // of what RefuseOversizedText lets pass

template <class CharT>
constexpr CharT kLineFeed[] = {CharT('\n')};

/// The line break that begins at `at`, which is where a line's text ends.
template <class CharT>
size_t BreakLength(const CharT* at, const CharT* end) {
    return at == end ? 0 : QVUtils::FindLineEnd(at, end).breakLength;
}

}  // namespace

template <class CharT>
SortableLinesData<CharT>::SortableLinesData(QVUtils::DataReader& reader, uint64_t expectedSize,
                                            QVUtils::Progress& progress) {
    ReadText(reader, expectedSize, progress);
    const auto* const first = reinterpret_cast<const CharT*>(m_bytes.get());
    m_textEnd = first + m_size / sizeof(CharT);
    m_text = first;
    if constexpr (sizeof(CharT) == 2)
        if (m_text != m_textEnd && *m_text == CharT(0xFEFF)) ++m_text;
    CutIntoLines(progress);
}

template <class CharT>
void SortableLinesData<CharT>::ReadText(QVUtils::DataReader& reader, uint64_t expectedSize,
                                        QVUtils::Progress& progress) {
    // Space for one read beyond the expected end: it finds nothing there, unless the file grows while it is read.
    size_t capacity = std::min<uint64_t>(expectedSize, kSizeLimit) + 1;
    m_bytes = std::make_unique_for_overwrite<uint8_t[]>(capacity + kSpareBytes);
    for (;;) {
        uint32_t received = 0;
        reader.Read(m_bytes.get() + m_size, static_cast<uint32_t>(std::min<size_t>(kReadSize, capacity - m_size)),
                    received);
        if (received == 0) break;
        m_size += received;
        progress.Advance(m_size, 2 * expectedSize);
        QVUtils::RefuseOversizedText(m_size);
        if (m_size < capacity) continue;
        capacity += capacity / 2 + kReadSize;
        auto larger = std::make_unique_for_overwrite<uint8_t[]>(capacity + kSpareBytes);
        std::memcpy(larger.get(), m_bytes.get(), m_size);
        m_bytes = std::move(larger);
    }
    std::memset(m_bytes.get() + m_size, 0, kSpareBytes);
}

template <class CharT>
void SortableLinesData<CharT>::CutIntoLines(QVUtils::Progress& progress) {
    constexpr size_t kStep = 4096;  // lines between two looks at the progress
    // The lines are counted first: a second look at the text costs less than an array that grows.
    size_t count = 0;
    for (const CharT* next = m_text; next != m_textEnd; ++count) {
        next = QVUtils::FindLineEnd(next, m_textEnd).nextLine;
        if (count % kStep == 0) progress.Advance(1, 2);
    }
    m_lines.reserve(count);
    m_prevailingLineBreak = View(kLineFeed<CharT>, 1);
    bool hasBreak = false;
    for (const CharT* next = m_text; next != m_textEnd;) {
        if (m_lines.size() % kStep == 0) progress.Advance(count + m_lines.size(), 2 * count);
        const auto line = QVUtils::FindLineEnd(next, m_textEnd);
        m_lines.push_back(
            {.start = static_cast<uint32_t>(next - m_text), .length = static_cast<uint32_t>(line.textEnd - next)});
        if (!hasBreak && line.breakLength > 0) {
            m_prevailingLineBreak = View(line.textEnd, line.breakLength);
            hasBreak = true;
        }
        next = line.nextLine;
    }
}

template <class CharT>
typename SortableLinesData<CharT>::View SortableLinesData<CharT>::LineWithBreak(const SortableLine& line) const {
    const CharT* const start = m_text + line.start;
    return {start, line.length + BreakLength(start + line.length, m_textEnd)};
}

template <class CharT>
std::string_view SortableLinesData<CharT>::ByteOrderMark() const noexcept {
    const auto* const bytes = reinterpret_cast<const char*>(m_bytes.get());
    return {bytes, static_cast<size_t>(reinterpret_cast<const char*>(m_text) - bytes)};
}

template <class CharT>
std::string_view SortableLinesData<CharT>::OddByte() const noexcept {
    const auto* const bytes = reinterpret_cast<const char*>(m_bytes.get());
    const auto* const end = reinterpret_cast<const char*>(m_textEnd);
    return {end, static_cast<size_t>(bytes + m_size - end)};
}

template <class CharT>
bool SortableLinesData<CharT>::HasZeroCharacter() const {
    return QVUtils::FindUnit(m_text, m_textEnd, CharT(0)) != m_textEnd;
}

template <class CharT>
void WriteLines(const SortableLinesData<CharT>& data, QVUtils::DataWriter& writer, QVUtils::Progress& progress) {
    const auto write = [&](const auto& text) { QVUtils::WriteAll(writer, text.data(), text.size() * sizeof(text[0])); };
    // Sorted lines lie all over the text: asking for them some lines ahead hides the memory's answer time.
    constexpr size_t kAhead = 16;
    constexpr size_t kStep = 1024;
    write(data.ByteOrderMark());
    const auto& lines = data.Lines();
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i % kStep == 0) progress.Advance(i, lines.size());
        if (i + kAhead < lines.size()) __builtin_prefetch(data.LineText(lines[i + kAhead]).data());
        const auto text = data.LineWithBreak(lines[i]);
        write(text);
        if (text.size() == lines[i].length) write(data.PrevailingLineBreak());
    }
    write(data.OddByte());
}

template class SortableLinesData<char>;
template void WriteLines(const SortableLinesData<char>&, QVUtils::DataWriter&, QVUtils::Progress&);
#ifdef _WIN32
template class SortableLinesData<wchar_t>;
template void WriteLines(const SortableLinesData<wchar_t>&, QVUtils::DataWriter&, QVUtils::Progress&);
#else
template class SortableLinesData<char16_t>;
template void WriteLines(const SortableLinesData<char16_t>&, QVUtils::DataWriter&, QVUtils::Progress&);
#endif

}  // namespace QVLineSorter
