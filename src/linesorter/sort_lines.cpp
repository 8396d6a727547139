#include "linesorter/sort_lines.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>
#include <optional>
#include <span>

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

/// The plain way, which all others must agree with.
template <class CharT>
void SortByComparing(const SortableLinesData<CharT>& data, Range lines, LineCompare_TextBase<CharT>& compare) {
    std::stable_sort(lines.begin(), lines.end(), [&](const SortableLine& left, const SortableLine& right) {
        const auto leftKey = data.KeyText(left);
        const auto rightKey = data.KeyText(right);
        return compare.Less(leftKey.data(), static_cast<uint32_t>(leftKey.size()), rightKey.data(),
                            static_cast<uint32_t>(rightKey.size()));
    });
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

/// The chunk of a line's key at a depth, read by one of the functions above; 0 behind the key's end.
template <class CharT, class ReadChunk>
class KeyChunks {
public:
    KeyChunks(const SortableLinesData<CharT>& data, Range lines, ReadChunk read)
        : m_data(data), m_lines(lines), m_read(read) {}

    uint64_t operator()(uint32_t index, uint32_t depth) const {
        constexpr size_t kCharacters = 8 / sizeof(CharT);
        const auto key = m_data.KeyText(m_lines[index]);
        const size_t offset = size_t{depth} * kCharacters;
        return offset < key.size() ? m_read(key.data() + offset, key.size() - offset) : 0;
    }

private:
    const SortableLinesData<CharT>& m_data;
    Range m_lines;
    ReadChunk m_read;
};

template <class CharT>
constexpr uint64_t kLastCharacter = sizeof(CharT) == 1 ? 0xFF : 0xFFFF;

/// LineCompare_OrdinalA by first chunks. The same answers as from the class itself, and the text is looked at only
/// where the chunks do not tell.
class OrdinalLess {
public:
    OrdinalLess(const SortableLinesData<char>& data, Range lines, LineCompare_OrdinalA& compare)
        : m_data(data), m_lines(lines), m_compare(compare) {}

    bool operator()(const KeyedIndex& left, const KeyedIndex& right) const {
        const uint64_t difference = left.key ^ right.key;
        if (difference == 0) return (left.key & kLastCharacter<char>) != 0 && LessByText(left.index, right.index);
        const int shift = 56 - (std::countl_zero(difference) & ~7);
        const bool oneHasEnded = (left.key >> shift & 0xFF) == 0 || (right.key >> shift & 0xFF) == 0;
        return oneHasEnded ? left.key == 0 : left.key < right.key;  // the shorter one is equal, unless it is empty
    }

private:
    bool LessByText(uint32_t left, uint32_t right) const {
        const auto leftKey = m_data.KeyText(m_lines[left]);
        const auto rightKey = m_data.KeyText(m_lines[right]);
        return m_compare.Less(leftKey.data(), static_cast<uint32_t>(leftKey.size()), rightKey.data(),
                              static_cast<uint32_t>(rightKey.size()));
    }

    const SortableLinesData<char>& m_data;
    Range m_lines;
    LineCompare_OrdinalA& m_compare;
};

template <class ReadChunk>
void SortOrdinalBytes(const SortableLinesData<char>& data, Range lines, LineCompare_OrdinalA& compare, ReadChunk read) {
    const KeyChunks<char, ReadChunk> chunkAt(data, lines, read);
    const auto firstChunk = [&](uint32_t index) { return chunkAt(index, 0); };
    std::vector<KeyedIndex> entries = MakeEntries(lines.size(), firstChunk);
    // A key that another one begins with is equal to it, which is no order that a sort could use: what comes out
    // depends on the pairs that it looks at. Without such keys there is an order, and every way leads to it; with them
    // the stable sort decides, as it always has.
    if (!SortByChunks(entries, kLastCharacter<char>, Beginnings::Refused, chunkAt)) {
        for (uint32_t i = 0; i < entries.size(); ++i) entries[i] = {.key = firstChunk(i), .index = i};
        std::stable_sort(entries.begin(), entries.end(), OrdinalLess(data, lines, compare));
    }
    ApplyOrder(lines, entries);
}

void SortOrdinal(const SortableLinesData<char>& data, Range lines, bool ignoreCase) {
    LineCompare_OrdinalA compare(ignoreCase);
    if (data.HasZeroCharacter()) {
        SortByComparing(data, lines, compare);
    } else if (ignoreCase) {
        const std::array<uint8_t, 256> ranks = compare.ByteRanks();
        SortOrdinalBytes(data, lines, compare, RankedBytes{ranks});
    } else {
        SortOrdinalBytes(data, lines, compare, PlainBytes{});
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

/// The system's sort keys of all lines, each followed by enough zero bytes to be read in chunks.
class SortKeys {
public:
    explicit SortKeys(size_t limit) : m_limit(limit) {}

    /// Adds the next line's key. False when the system makes none, or the keys would take too much memory.
    template <class CharT, class Compare>
    bool Add(Compare& compare, std::basic_string_view<CharT> key) {
        const auto length = static_cast<uint32_t>(key.size());
        if (length == 0) {
            m_keys.push_back(kEmptyKey);
            return true;
        }
        uint32_t size = m_left > kPadding ? compare.MakeSortKey(key.data(), length, m_next, m_left - kPadding) : 0;
        if (size == 0) {
            const uint32_t needed = compare.MakeSortKey(key.data(), length, nullptr, 0);
            if (needed == 0 || !AddBlock(size_t{needed} + kPadding)) return false;
            size = compare.MakeSortKey(key.data(), length, m_next, m_left - kPadding);
            if (size == 0) return false;
        }
        std::memset(m_next + size, 0, kPadding);
        m_keys.push_back(m_next);
        m_next += size + kPadding;
        m_left -= size + kPadding;
        return true;
    }
    void Reserve(size_t count) { m_keys.reserve(count); }

    uint64_t operator()(uint32_t index, uint32_t depth) const { return LoadBytes(m_keys[index] + size_t{depth} * 8); }

private:
    static constexpr uint32_t kPadding =
        7;  // with the key's own zero byte, a chunk that begins inside the key ends here
    static constexpr uint8_t kEmptyKey[8] = {};
    static constexpr size_t kBlockSize = 1 << 20;

    bool AddBlock(size_t needed) {
        const size_t size = std::max(needed, kBlockSize);
        if (size > std::numeric_limits<uint32_t>::max() || size > m_limit - m_used) return false;
        m_blocks.push_back(std::make_unique_for_overwrite<uint8_t[]>(size));
        m_used += size;
        m_next = m_blocks.back().get();
        m_left = static_cast<uint32_t>(size);
        return true;
    }

    size_t m_limit;
    size_t m_used = 0;
    std::vector<std::unique_ptr<uint8_t[]>> m_blocks;
    std::vector<const uint8_t*> m_keys;
    uint8_t* m_next = nullptr;
    uint32_t m_left = 0;
};

/// Sorts by the sort keys when all lines can have one.
template <class CharT, class Compare>
bool SortBySortKeys(const SortableLinesData<CharT>& data, Range lines, Compare& compare, size_t limit) {
    SortKeys keys(limit);
    keys.Reserve(lines.size());
    for (const SortableLine& line : lines)
        if (!keys.Add(compare, data.KeyText(line))) return false;
    std::vector<KeyedIndex> entries = MakeEntries(lines.size(), [&](uint32_t index) { return keys(index, 0); });
    SortByChunks(entries, 0xFF, Beginnings::Allowed, keys);
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
