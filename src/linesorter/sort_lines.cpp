#include "linesorter/sort_lines.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "linesorter/chunk_sort.h"
#include "linesorter/date_key.h"
#include "linesorter/line_compare.h"
#include "linesorter/sort_key.h"

namespace QVLineSorter {
namespace {

/// The lines that are sorted. Indexes of the sort count from its first line.
using Range = std::span<SortableLine>;

template <class CharT>
Range SortedRange(SortableLinesData<CharT>& data, const SortRequest& request) {
    const size_t count = data.Lines().size();
    const size_t top = std::min<size_t>(request.keepTop, count);
    const size_t bottom = std::min<size_t>(request.keepBottom, count - top);
    return Range(data.Lines()).subspan(top, count - top - bottom);
}

template <class KeyAt>
std::vector<KeyedIndex> MakeEntries(size_t count, KeyAt&& keyAt) {
    std::vector<KeyedIndex> entries;
    entries.reserve(count);
    for (uint32_t i = 0; i < count; ++i) entries.push_back({.key = keyAt(i), .index = i});
    return entries;
}

/// Moves the lines into the order of the entries, whose memory serves as the scratch space.
void ApplyOrder(Range lines, std::span<KeyedIndex> entries) {
    static_assert(sizeof(SortableLine) == sizeof(KeyedIndex));
    for (KeyedIndex& entry : entries) entry = std::bit_cast<KeyedIndex>(lines[entry.index]);
    for (size_t i = 0; i < lines.size(); ++i) lines[i] = std::bit_cast<SortableLine>(entries[i]);
}

/// A comparator on whole lines.
template <class CharT, class Compare = LineCompare_TextBase<CharT>>
class KeyLess {
public:
    KeyLess(const SortableLinesData<CharT>& data, Compare& compare) : m_data(data), m_compare(compare) {}

    bool operator()(const SortableLine& left, const SortableLine& right) const {
        const auto leftKey = m_data.KeyText(left);
        const auto rightKey = m_data.KeyText(right);
        return m_compare.Less(leftKey.data(), static_cast<uint32_t>(leftKey.size()), rightKey.data(),
                              static_cast<uint32_t>(rightKey.size()));
    }

private:
    const SortableLinesData<CharT>& m_data;
    Compare& m_compare;
};

/// The plain way, which all others must agree with.
template <class CharT>
void SortByComparing(const SortableLinesData<CharT>& data, Range lines, LineCompare_TextBase<CharT>& compare) {
    std::stable_sort(lines.begin(), lines.end(), KeyLess<CharT>(data, compare));
}

// ---- keys as big-endian chunks of eight bytes; reading them whole relies on the spare bytes behind the text

uint64_t LoadBytes(const void* from) {
    uint64_t bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return __builtin_bswap64(bytes);
}

/// `chunk` without what lies behind its first `characters` characters.
template <class CharT>
uint64_t CutChunk(uint64_t chunk, size_t characters) {
    constexpr size_t kBits = 8 * sizeof(CharT);
    return characters * kBits >= 64 ? chunk : chunk & ~(~uint64_t{0} >> (characters * kBits));
}

struct PlainBytes {
    uint64_t operator()(const char* from, size_t characters) const {
        return CutChunk<char>(LoadBytes(from), characters);
    }
};

struct RankedBytes {
    const std::array<uint8_t, 256>& ranks;
    uint64_t operator()(const char* from, size_t characters) const {
        uint64_t chunk = 0;
        for (size_t i = 0; i < 8; ++i) chunk = chunk << 8 | ranks[static_cast<uint8_t>(from[i])];
        return CutChunk<char>(chunk, characters);
    }
};

struct PlainUnits {
    uint64_t operator()(const wchar_t* from, size_t characters) const {
        const uint64_t swapped = LoadBytes(from);  // the units in order, but the bytes of each the wrong way round
        constexpr uint64_t kLowBytes = 0x00FF00FF00FF00FF;
        return CutChunk<wchar_t>((swapped & kLowBytes) << 8 | (swapped >> 8 & kLowBytes), characters);
    }
};

struct FoldedUnits {
    const std::vector<wchar_t>& table;
    uint64_t operator()(const wchar_t* from, size_t characters) const {
        uint64_t chunk = 0;
        for (size_t i = 0; i < 4; ++i) chunk = chunk << 16 | table[from[i]];
        return CutChunk<wchar_t>(chunk, characters);
    }
};

/// How many characters all keys begin with in common, leaving at least one of each that is not counted; 0 when a key is
/// empty.
template <class CharT>
size_t CommonBeginning(const SortableLinesData<CharT>& data, Range lines) {
    if (lines.empty()) return 0;
    const auto first = data.KeyText(lines.front());
    size_t common = first.size();
    size_t shortest = first.size();
    for (const SortableLine& line : lines) {
        const auto key = data.KeyText(line);
        shortest = std::min(shortest, key.size());
        common = std::min(common, shortest);
        common = static_cast<size_t>(
            std::mismatch(key.begin(), key.begin() + static_cast<ptrdiff_t>(common), first.begin()).first -
            key.begin());
        if (common == 0) return 0;
    }
    return common < shortest ? common : shortest - 1;
}

/// The chunk of a line's key at a depth, read by one of the functions above; 0 behind the key's end. Depths count from
/// behind what all keys begin with.
template <class CharT, class ReadChunk>
class KeyChunks {
public:
    KeyChunks(const SortableLinesData<CharT>& data, Range lines, ReadChunk read)
        : m_data(data), m_lines(lines), m_read(read), m_beginning(CommonBeginning(data, lines)) {}

    uint64_t operator()(uint32_t index, uint32_t depth) const {
        constexpr size_t kCharacters = 8 / sizeof(CharT);
        const auto key = m_data.KeyText(m_lines[index]);
        const size_t offset = m_beginning + size_t{depth} * kCharacters;
        return offset < key.size() ? m_read(key.data() + offset, key.size() - offset) : 0;
    }

private:
    const SortableLinesData<CharT>& m_data;
    Range m_lines;
    ReadChunk m_read;
    size_t m_beginning;
};

template <class CharT>
constexpr uint64_t kLastCharacter = sizeof(CharT) == 1 ? 0xFF : 0xFFFF;

/// LineCompare_OrdinalA by chunks: the same answers as from the class itself, eight bytes at a time.
template <class ChunkAt>
class OrdinalLess {
public:
    explicit OrdinalLess(const ChunkAt& chunkAt) : m_chunkAt(chunkAt) {}

    bool operator()(const KeyedIndex& left, const KeyedIndex& right) const {
        uint64_t leftChunk = left.key;
        uint64_t rightChunk = right.key;
        for (uint32_t depth = 1; leftChunk == rightChunk; ++depth) {
            if ((leftChunk & kLastCharacter<char>) == 0) return false;
            leftChunk = m_chunkAt(left.index, depth);
            rightChunk = m_chunkAt(right.index, depth);
        }
        const int shift = 56 - (std::countl_zero(leftChunk ^ rightChunk) & ~7);
        const bool oneHasEnded = (leftChunk >> shift & 0xFF) == 0 || (rightChunk >> shift & 0xFF) == 0;
        return oneHasEnded ? left.key == 0 : leftChunk < rightChunk;  // the shorter is equal, unless it is empty
    }

private:
    const ChunkAt& m_chunkAt;
};

template <class ReadChunk>
void SortOrdinalBytes(const SortableLinesData<char>& data, Range lines, ReadChunk read) {
    const KeyChunks<char, ReadChunk> chunkAt(data, lines, read);
    const auto firstChunk = [&](uint32_t index) { return chunkAt(index, 0); };
    std::vector<KeyedIndex> entries = MakeEntries(lines.size(), firstChunk);
    // A key that another one begins with is equal to it, which is no order that a sort could use: what comes out
    // depends on the pairs that it looks at. Without such keys there is an order, and every way leads to it; with them
    // the stable sort decides, as it always has.
    if (!SortByChunks(entries, kLastCharacter<char>, Beginnings::Refused, chunkAt)) {
        for (uint32_t i = 0; i < entries.size(); ++i) entries[i] = {.key = firstChunk(i), .index = i};
        std::stable_sort(entries.begin(), entries.end(), OrdinalLess(chunkAt));
    }
    ApplyOrder(lines, entries);
}

void SortOrdinal(const SortableLinesData<char>& data, Range lines, bool ignoreCase) {
    LineCompare_OrdinalA compare(ignoreCase);
    if (data.HasZeroCharacter()) {
        SortByComparing(data, lines, compare);
    } else if (ignoreCase) {
        const std::array<uint8_t, 256> ranks = compare.ByteRanks();
        SortOrdinalBytes(data, lines, RankedBytes{ranks});
    } else {
        SortOrdinalBytes(data, lines, PlainBytes{});
    }
}

template <class ReadChunk>
void SortOrdinalUnits(const SortableLinesData<wchar_t>& data, Range lines, ReadChunk read) {
    const KeyChunks<wchar_t, ReadChunk> chunkAt(data, lines, read);
    std::vector<KeyedIndex> entries = MakeEntries(lines.size(), [&](uint32_t index) { return chunkAt(index, 0); });
    SortByChunks(entries, kLastCharacter<wchar_t>, Beginnings::Allowed, chunkAt);
    ApplyOrder(lines, entries);
}

void SortOrdinal(const SortableLinesData<wchar_t>& data, Range lines, bool ignoreCase) {
    LineCompare_OrdinalW compare(ignoreCase);
    const std::vector<wchar_t> caseTable = ignoreCase ? OrdinalCaseTable() : std::vector<wchar_t>();
    if (!compare.HasSystemComparison() || data.HasZeroCharacter() || (ignoreCase && caseTable.empty()))
        SortByComparing(data, lines, compare);
    else if (ignoreCase)
        SortOrdinalUnits(data, lines, FoldedUnits{caseTable});
    else
        SortOrdinalUnits(data, lines, PlainUnits{});
}

/// Memory for the system's sort keys, handed out in pieces and given back as a whole.
class SortKeyMemory {
public:
    explicit SortKeyMemory(size_t limit) : m_limit(limit) {}

    /// `make(buffer, capacity)` writes a key that ends with a zero byte and returns its size, 0 when it does not fit;
    /// with capacity 0 it returns the size needed, 0 for a failure. Gives the key in the form described below, or null
    /// when it cannot be made or the keys would take too much memory.
    ///
    /// Some bytes inside a key are zero too, while chunks take a zero for the end. So 0 is kept as 1 1 and 1 as 1 2,
    /// which changes the order of no two keys. Behind the end there are enough zero bytes for a chunk that begins
    /// inside the key.
    template <class Make>
    const uint8_t* Add(Make&& make) {
        uint32_t size = make(m_scratch.data(), static_cast<uint32_t>(m_scratch.size()));
        if (size == 0) {
            const uint32_t needed = make(nullptr, 0);
            if (needed == 0) return nullptr;
            m_scratch.resize(needed);
            size = make(m_scratch.data(), needed);
            if (size == 0) return nullptr;
        }
        const std::span<const uint8_t> key(m_scratch.data(), size - 1);
        const auto escaped = std::count_if(key.begin(), key.end(), [](uint8_t byte) { return byte <= 1; });
        uint8_t* next = Allocate(key.size() + static_cast<size_t>(escaped) + kZerosBehind);
        if (!next) return nullptr;
        const uint8_t* const result = next;
        for (const uint8_t byte : key) {
            if (byte <= 1) *next++ = 1;
            *next++ = byte <= 1 ? byte + 1 : byte;
        }
        std::memset(next, 0, kZerosBehind);
        return result;
    }

private:
    static constexpr size_t kZerosBehind = 8;
    static constexpr size_t kBlockSize = 1 << 20;

    uint8_t* Allocate(size_t size) {
        if (size > m_left) {
            const size_t blockSize = std::max(size, kBlockSize);
            if (blockSize > m_limit - m_used) return nullptr;
            m_blocks.push_back(std::make_unique_for_overwrite<uint8_t[]>(blockSize));
            m_used += blockSize;
            m_next = m_blocks.back().get();
            m_left = blockSize;
        }
        m_left -= size;
        return std::exchange(m_next, m_next + size);
    }

    size_t m_limit;
    size_t m_used = 0;
    std::vector<std::unique_ptr<uint8_t[]>> m_blocks;
    std::vector<uint8_t> m_scratch = std::vector<uint8_t>(4096);
    uint8_t* m_next = nullptr;
    size_t m_left = 0;
};

/// The chunks of the lines' sort keys.
///
/// Making a sort key takes longer than anything else here, and most lines differ in its first chunk already. That chunk
/// holds the first letters' weights, and of a line that begins with plain letters it comes out the same from the first
/// characters alone. So the whole key is made when the first chunk leaves lines equal, and for lines with anything at
/// their beginning whose weight may depend on what follows.
template <class CharT, class Compare>
class SortKeyChunks {
public:
    SortKeyChunks(const SortableLinesData<CharT>& data, Range lines, Compare& compare, size_t limit)
        : m_data(data), m_lines(lines), m_compare(compare), m_memory(limit), m_keys(lines.size()) {
        m_usesBeginnings = BeginningsTellLinesApart();
    }

    uint64_t operator()(uint32_t index, uint32_t depth) {
        if (depth == 0 && m_usesBeginnings)
            if (const std::optional<uint64_t> chunk = ChunkOfBeginning(index)) return *chunk;
        const uint8_t* const key = WholeKey(index);
        return key ? LoadBytes(key + size_t{depth} * 8) : 0;
    }

    /// True when a key could not be made; the chunks mean nothing then.
    bool HasFailed() const noexcept { return m_hasFailed; }

private:
    // Characters. A chunk holds the weights of about four letters; the rest is there for letters that weigh together.
    static constexpr size_t kBeginning = 16;
    static constexpr size_t kShortestBeginning = 12;

    const uint8_t* WholeKey(uint32_t index) {
        static constexpr uint8_t kEmptyKey[8] = {};
        if (m_keys[index] || m_hasFailed) return m_keys[index];
        const auto text = m_data.KeyText(m_lines[index]);
        if (text.empty()) return kEmptyKey;
        m_keys[index] = m_memory.Add([&](uint8_t* buffer, uint32_t capacity) {
            return m_compare.MakeSortKey(text.data(), static_cast<uint32_t>(text.size()), buffer, capacity);
        });
        m_hasFailed = !m_keys[index];
        return m_keys[index];
    }

    std::optional<uint64_t> ChunkOfBeginning(uint32_t index) {
        auto text = m_data.KeyText(m_lines[index]).substr(0, kBeginning);
        if (text.size() < kBeginning || !std::all_of(text.begin(), text.end(), IsPlain)) return std::nullopt;
        while (text.size() > kShortestBeginning && IsDigit(text.back())) text.remove_suffix(1);
        if (IsDigit(text.back())) return std::nullopt;  // a number that may go on weighs as a whole
        uint8_t key[256];
        if (m_compare.MakeSortKey(text.data(), static_cast<uint32_t>(text.size()), key, sizeof key) <= 8)
            return std::nullopt;
        // A 1 ends the letters: accents and what else is looked at later follow.
        if (std::any_of(key, key + 8, [](uint8_t byte) { return byte <= 1; })) return std::nullopt;
        return LoadBytes(key);
    }

    static bool IsDigit(CharT unit) { return unit >= CharT('0') && unit <= CharT('9'); }

    /// ASCII letters, digits and blanks. Hyphens and apostrophes are weighed last, and other characters may stand for
    /// several letters or for none.
    static bool IsPlain(CharT unit) {
        const auto letter = static_cast<CharT>(unit | CharT(0x20));
        return unit == CharT(' ') || IsDigit(unit) || (letter >= CharT('a') && letter <= CharT('z'));
    }

    /// Looks at some lines from all over the file. Where many begin alike, the work would be done twice.
    bool BeginningsTellLinesApart() {
        constexpr size_t kSample = 256;
        if (m_lines.size() < 16 * kSample) return false;
        std::vector<uint64_t> chunks;
        for (size_t i = 0; i < kSample; ++i)
            if (const auto chunk = ChunkOfBeginning(static_cast<uint32_t>(m_lines.size() / kSample * i)))
                chunks.push_back(*chunk);
        std::sort(chunks.begin(), chunks.end());
        const auto different = std::unique(chunks.begin(), chunks.end()) - chunks.begin();
        return static_cast<size_t>(different) > kSample / 4 && static_cast<size_t>(different) > chunks.size() * 7 / 8;
    }

    const SortableLinesData<CharT>& m_data;
    Range m_lines;
    Compare& m_compare;
    SortKeyMemory m_memory;
    std::vector<const uint8_t*> m_keys;  // null: not made yet
    bool m_usesBeginnings = false;
    bool m_hasFailed = false;
};

/// Sorts by the sort keys when all that are needed can be made.
template <class CharT, class Compare>
bool SortBySortKeys(const SortableLinesData<CharT>& data, Range lines, Compare& compare, size_t limit) {
    SortKeyChunks<CharT, Compare> chunkAt(data, lines, compare, limit);
    std::vector<KeyedIndex> entries = MakeEntries(lines.size(), [&](uint32_t index) { return chunkAt(index, 0); });
    if (chunkAt.HasFailed()) return false;
    SortByKeyThenIndex(entries);
    // A few lines are compared sooner than their sort keys are made.
    constexpr ptrdiff_t kFew = 12;
    const KeyLess<CharT, Compare> less(data, compare);
    for (auto begin = entries.begin(), end = begin; begin != entries.end(); begin = end) {
        end = std::find_if(begin, entries.end(), [&](const KeyedIndex& entry) { return entry.key != begin->key; });
        if (end - begin > kFew)
            SortByChunks({begin, end}, 0xFF, Beginnings::Allowed, chunkAt);
        else if (end - begin > 1)
            std::stable_sort(begin, end, [&](const KeyedIndex& left, const KeyedIndex& right) {
                return less(lines[left.index], lines[right.index]);
            });
        if (chunkAt.HasFailed()) return false;
    }
    ApplyOrder(lines, entries);
    return true;
}

template <class CharT, class Compare>
void SortByLanguage(const SortableLinesData<CharT>& data, Range lines, Compare&& compare, size_t limit) {
    if (!SortBySortKeys(data, lines, compare, limit)) SortByComparing(data, lines, compare);
}

void SortText(const SortableLinesData<char>& data, Range lines, const SortRequest& request, size_t sortKeyLimit) {
    if (!request.Has(SortOption::LanguageOrder))
        SortOrdinal(data, lines, request.Has(SortOption::IgnoreCase));
    else if (request.Has(SortOption::NaturalNumbers))
        SortByLanguage(data, lines, LineCompare_LanguageAware_WFallback(), sortKeyLimit);
    else
        SortByLanguage(data, lines, LineCompare_LanguageAware_StringCompareA(), sortKeyLimit);
}

void SortText(const SortableLinesData<wchar_t>& data, Range lines, const SortRequest& request, size_t sortKeyLimit) {
    if (request.Has(SortOption::LanguageOrder))
        SortByLanguage(data, lines,
                       LineCompare_LanguageAware_StringCompareEx<wchar_t>(request.Has(SortOption::NaturalNumbers),
                                                                          !request.Has(SortOption::NoCompareStringEx)),
                       sortKeyLimit);
    else
        SortOrdinal(data, lines, request.Has(SortOption::IgnoreCase));
}

/// Orders by signed 64-bit values, smaller first.
template <class KeyOf>
void SortByNumber(Range lines, KeyOf&& keyOf) {
    constexpr uint64_t kSignBit = uint64_t{1} << 63;  // turned over, it puts negative numbers below the others
    std::vector<KeyedIndex> entries = MakeEntries(
        lines.size(), [&](uint32_t index) { return static_cast<uint64_t>(keyOf(lines[index])) ^ kSignBit; });
    SortByKeyThenIndex(entries);
    ApplyOrder(lines, entries);
}

}  // namespace

template <class CharT>
void SortLines(SortableLinesData<CharT>& data, const SortRequest& request, const std::basic_string<CharT>& dateFormat,
               size_t sortKeyLimit) {
    const Range lines = SortedRange(data, request);
    if (request.Has(SortOption::AsNumber | SortOption::AsDate)) {
        // An entire line has no number and no date: all keys are 0 and the order stays, as scripts know it. Dates
        // without a format are the same case.
        DateKeyReader dates;
        const std::basic_string_view<CharT> format = dateFormat;
        if (!request.Has(SortOption::EntireLine)) {
            if (request.Has(SortOption::AsDate) && !format.empty())
                SortByNumber(lines,
                             [&](const SortableLine& line) { return dates.Read(data.TextFromKey(line), format); });
            else if (request.Has(SortOption::AsNumber))
                SortByNumber(lines, [&](const SortableLine& line) {
                    return NumberKey(data.TextFromKey(line), request.substringLength);
                });
        }
    } else {
        SortText(data, lines, request, sortKeyLimit);
    }
    if (request.Has(SortOption::Reverse)) std::reverse(lines.begin(), lines.end());
}

template <class CharT>
void RemoveBlankLines(SortableLinesData<CharT>& data, const SortRequest& request) {
    const Range lines = SortedRange(data, request);
    const auto first = data.Lines().begin() + (lines.data() - data.Lines().data());
    const auto last = first + static_cast<ptrdiff_t>(lines.size());
    data.Lines().erase(std::remove_if(first, last, [](const SortableLine& line) { return line.length == 0; }), last);
}

template void SortLines(SortableLinesData<char>&, const SortRequest&, const std::string&, size_t);
template void SortLines(SortableLinesData<wchar_t>&, const SortRequest&, const std::wstring&, size_t);
template void RemoveBlankLines(SortableLinesData<char>&, const SortRequest&);
template void RemoveBlankLines(SortableLinesData<wchar_t>&, const SortRequest&);

}  // namespace QVLineSorter
