#include "linesorter/sortable_lines.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "textio/line_splitter.h"
#include "textio/text_file.h"

namespace QVLineSorter {
namespace {

constexpr uint64_t kSizeLimit = uint64_t{1} << 32;  // of what RefuseOversizedText lets pass

template <class CharT>
constexpr CharT kLineFeed[] = {CharT('\n')};

/// The units of the line break at `at`, where a line's text ends. A lone CR is none.
template <class CharT>
size_t BreakLength(const CharT* at, const CharT* end) {
    if (at == end) return 0;
    if (*at == CharT('\n')) return 1;
    return at + 1 != end && at[1] == CharT('\n') ? 2 : 0;
}

}  // namespace

template <class CharT>
SortableLinesData<CharT>::SortableLinesData(QVUtils::DataReader& reader, uint64_t expectedSize, Workers& workers) {
    workers.GetProgress().BeginPart(SortPart::TextRead);
    std::vector<Block> blocks = ReadText(reader, expectedSize, workers);
    m_textEnd = reinterpret_cast<const CharT*>(m_bytes.get()) + m_size / sizeof(CharT);
    workers.GetProgress().BeginPart(SortPart::LinesCut);
    CutIntoLines(blocks, workers);
}

/// While one block is read, workers look at those before it, and make the memory of those after it present: the first
/// touch of a page costs more than what is copied there.
template <class CharT>
auto SortableLinesData<CharT>::ReadText(QVUtils::DataReader& reader, uint64_t expectedSize, Workers& workers)
    -> std::vector<Block> {
    constexpr uint32_t kAhead = 4;
    constexpr size_t kPage = 4096;
    // Space for one read beyond the expected end: it finds nothing there, unless the file grows while it is read.
    const size_t capacity = std::min<uint64_t>(expectedSize, kSizeLimit) + 1;
    m_bytes = std::make_unique_for_overwrite<uint8_t[]>(capacity + kSpareBytes);
    std::vector<Block> blocks((capacity + kBlockSize - 1) / kBlockSize);
    std::array<uint32_t, kAhead> blockOfSlot = {};
    uint32_t begun = 0;
    bool isOver = false;
    const auto endOf = [&](size_t block) { return std::min((block + 1) * kBlockSize, capacity); };

    Relay relay;
    relay.slots = kAhead;
    relay.begin = [&](uint32_t slot) {
        blockOfSlot[slot] = begun;
        return !isOver && begun++ < blocks.size();
    };
    relay.work = [&](const Task& task, uint32_t) {
        if (task.kind != Workers::kRelayed) return LookAt(task.begin, blocks[task.begin]);
        const size_t block = blockOfSlot[task.begin];
        for (size_t at = block * kBlockSize; at < endOf(block); at += kPage) m_bytes[at] = 0;
    };
    relay.finish = [&](uint32_t slot) {
        const uint32_t block = blockOfSlot[slot];
        const size_t begin = m_size;
        while (!isOver && m_size < endOf(block)) {
            uint32_t received = 0;
            reader.Read(m_bytes.get() + m_size, static_cast<uint32_t>(endOf(block) - m_size), received);
            isOver = received == 0;
            m_size += received;
            workers.GetProgress().Advance(m_size, expectedSize);
            QVUtils::RefuseOversizedText(m_size);
        }
        if (block == 0) FindText();
        blocks[block].bytes = m_size - begin;
        if (m_size > begin) workers.Add({.begin = block}, 0);
    };
    workers.Run(relay);
    if (m_size == capacity) {
        ReadRest(reader, capacity, expectedSize, workers.GetProgress());
        FindText();
        blocks.assign((m_size + kBlockSize - 1) / kBlockSize, Block());
        for (size_t block = 0; block < blocks.size(); ++block)
            blocks[block].bytes = std::min(kBlockSize, m_size - block * kBlockSize);
        workers.ForEach(
            blocks.size(), [&](uint32_t block, uint32_t, uint32_t) { LookAt(block, blocks[block]); }, 1);
    }
    std::memset(m_bytes.get() + m_size, 0, kSpareBytes);
    return blocks;
}

/// Of a file that has grown.
template <class CharT>
void SortableLinesData<CharT>::ReadRest(QVUtils::DataReader& reader, size_t capacity, uint64_t expectedSize,
                                        QVUtils::Progress& progress) {
    for (uint32_t received = 1; received > 0;) {
        if (m_size == capacity) {
            capacity += capacity / 2 + kBlockSize;
            auto larger = std::make_unique_for_overwrite<uint8_t[]>(capacity + kSpareBytes);
            std::memcpy(larger.get(), m_bytes.get(), m_size);
            m_bytes = std::move(larger);
        }
        reader.Read(m_bytes.get() + m_size, static_cast<uint32_t>(std::min(kBlockSize, capacity - m_size)), received);
        m_size += received;
        progress.Advance(m_size, expectedSize);
        QVUtils::RefuseOversizedText(m_size);
    }
}

template <class CharT>
void SortableLinesData<CharT>::FindText() {
    m_text = reinterpret_cast<const CharT*>(m_bytes.get());
    if constexpr (sizeof(CharT) == 2)
        if (m_size >= sizeof(CharT) && *m_text == CharT(0xFEFF)) ++m_text;
}

template <class CharT>
auto SortableLinesData<CharT>::TextOf(size_t block, size_t bytes) const -> View {
    const auto* const begin = reinterpret_cast<const CharT*>(m_bytes.get() + block * kBlockSize);
    const CharT* const end = begin + bytes / sizeof(CharT);
    return {std::max(begin, m_text), std::max(end, m_text)};
}

template <class CharT>
void SortableLinesData<CharT>::LookAt(size_t block, Block& found) const {
    const View text = TextOf(block, found.bytes);
    const CharT* begin = text.data();
    const CharT* const end = begin + text.size();
    if (begin == m_text && begin != end) {
        ++found.lines;
        found.hasZero = *begin++ == CharT(0);
    }
    const auto rest = QVUtils::CountLineBegins(begin, end);
    found.lines += rest.lines;
    found.hasZero = found.hasZero || rest.hasZero;
}

template <class CharT>
void SortableLinesData<CharT>::CutIntoLines(std::vector<Block>& blocks, Workers& workers) {
    std::vector<size_t> firstLines;
    firstLines.reserve(blocks.size());
    for (const Block& block : blocks) {
        firstLines.push_back(m_count);
        m_count += block.lines;
        m_hasZero = m_hasZero || block.hasZero;
    }
    m_lines = AllocateRecords<SortableLine>(m_count);
    workers.ForEach(
        blocks.size(),
        [&](uint32_t block, uint32_t, uint32_t) {
            if (blocks[block].lines > 0) Cut(TextOf(block, blocks[block].bytes), m_lines.get() + firstLines[block]);
        },
        1);
    // The first break that belongs to a line ends in the first LF.
    const CharT* const lineFeed = QVUtils::FindUnit(m_text, m_textEnd, CharT('\n'));
    const bool isAfterCr = lineFeed != m_textEnd && lineFeed != m_text && lineFeed[-1] == CharT('\r');
    m_prevailingLineBreak =
        lineFeed == m_textEnd ? View(kLineFeed<CharT>, 1) : View(lineFeed - (isAfterCr ? 1 : 0), isAfterCr ? 2 : 1);
}

/// The lines that begin in the block; there is one at least.
template <class CharT>
void SortableLinesData<CharT>::Cut(View block, SortableLine* line) const {
    const CharT* const end = block.data() + block.size();
    const CharT* next = block.data();
    if (next != m_text) next = QVUtils::FindLineEnd(next - 1, m_textEnd).nextLine;
    while (next < end) {
        const auto found = QVUtils::FindLineEnd(next, m_textEnd);
        *line++ = {.start = static_cast<uint32_t>(next - m_text),
                   .length = static_cast<uint32_t>(found.textEnd - next)};
        next = found.nextLine;
    }
}

template <class CharT>
void SortableLinesData<CharT>::Drop(size_t begin, size_t end) {
    const Range lines = Lines();
    std::copy(lines.begin() + static_cast<ptrdiff_t>(end), lines.end(), lines.begin() + static_cast<ptrdiff_t>(begin));
    m_count -= end - begin;
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

namespace {

/// Lines on their way to the file: collected by workers in blocks, which are written in order.
template <class CharT>
class LineWriting {
public:
    static constexpr uint32_t kSlots = 4;

    LineWriting(const SortableLinesData<CharT>& data, QVUtils::DataWriter& writer, QVUtils::Progress& progress)
        : m_data(data), m_lines(data.Lines()), m_writer(writer), m_progress(progress) {
        try {
            for (Slot& slot : m_slots) slot.text = std::make_unique_for_overwrite<CharT[]>(kUnits);
        } catch (const std::bad_alloc&) {
            // What has no place of its own is written as it lies in the text.
        }
    }

    /// As many lines as have a place in a block for certain; or one that has none.
    bool Begin(uint32_t index) {
        Slot& slot = m_slots[index];
        slot.begin = slot.end = m_next;
        size_t most = 0;
        while (slot.end < m_lines.size() && slot.end - slot.begin < kMostLines) {
            most += m_lines[slot.end].length + kLongestBreak;
            if (most > kUnits) break;
            ++slot.end;
        }
        slot.isLong = slot.end == slot.begin;
        if (slot.isLong && slot.end < m_lines.size()) ++slot.end;
        m_next = slot.end;
        return slot.end > slot.begin;
    }

    void Collect(uint32_t index) {
        Slot& slot = m_slots[index];
        slot.size = 0;
        if (slot.isLong || !slot.text) return;
        Put(slot, [&](View text) {
            std::copy(text.begin(), text.end(), slot.text.get() + slot.size);
            slot.size += text.size();
        });
    }

    void Finish(uint32_t index) {
        const Slot& slot = m_slots[index];
        m_progress.Advance(slot.begin, m_lines.size());
        const auto write = [&](View text) { QVUtils::WriteAll(m_writer, text.data(), text.size() * sizeof(CharT)); };
        if (slot.isLong || !slot.text)
            Put(slot, write);
        else
            write({slot.text.get(), slot.size});
    }

private:
    using View = std::basic_string_view<CharT>;
    static constexpr size_t kLongestBreak = 2;
    static constexpr size_t kUnits = size_t{2} * QVUtils::BufferedDataWriter::kBlockSize / sizeof(CharT);
    static constexpr size_t kMostLines = 65536;

    struct Slot {
        size_t begin = 0;
        size_t end = 0;
        bool isLong = false;
        std::unique_ptr<CharT[]> text;
        size_t size = 0;
    };

    template <class PutText>
    void Put(const Slot& slot, PutText&& put) const {
        // Sorted lines lie all over the text: asking for them some lines ahead hides the memory's answer time.
        constexpr size_t kAhead = 16;
        constexpr size_t kCacheLine = 64 / sizeof(CharT);
        for (size_t i = slot.begin; i < slot.end; ++i) {
            if (i + kAhead < slot.end) {
                const View ahead = m_data.LineText(m_lines[i + kAhead]);
                __builtin_prefetch(ahead.data());
                if (ahead.size() > kCacheLine) __builtin_prefetch(ahead.data() + kCacheLine);
            }
            const View text = m_data.LineWithBreak(m_lines[i]);
            put(text);
            if (text.size() == m_lines[i].length) put(m_data.PrevailingLineBreak());
        }
    }

    const SortableLinesData<CharT>& m_data;
    const std::span<const SortableLine> m_lines;
    QVUtils::DataWriter& m_writer;
    QVUtils::Progress& m_progress;
    std::array<Slot, kSlots> m_slots;
    size_t m_next = 0;
};

}  // namespace

template <class CharT>
void WriteLines(const SortableLinesData<CharT>& data, QVUtils::DataWriter& writer, Workers& workers) {
    const auto write = [&](std::string_view bytes) { QVUtils::WriteAll(writer, bytes.data(), bytes.size()); };
    write(data.ByteOrderMark());
    LineWriting<CharT> lines(data, writer, workers.GetProgress());
    workers.Run(Relay{.slots = LineWriting<CharT>::kSlots,
                      .begin = [&](uint32_t slot) { return lines.Begin(slot); },
                      .work = [&](const Task& task, uint32_t) { lines.Collect(task.begin); },
                      .finish = [&](uint32_t slot) { lines.Finish(slot); }});
    write(data.OddByte());
}

template class SortableLinesData<char>;
template void WriteLines(const SortableLinesData<char>&, QVUtils::DataWriter&, Workers&);
#ifdef _WIN32
template class SortableLinesData<wchar_t>;
template void WriteLines(const SortableLinesData<wchar_t>&, QVUtils::DataWriter&, Workers&);
#else
template class SortableLinesData<char16_t>;
template void WriteLines(const SortableLinesData<char16_t>&, QVUtils::DataWriter&, Workers&);
#endif

}  // namespace QVLineSorter
