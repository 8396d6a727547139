// ordinal_chunks.h - keys in ordinal order as chunks of eight bytes, for chunk_sort.h. Pure: which characters are equal
// comes in as a table.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "linesorter/chunk_sort.h"
#include "linesorter/sortable_lines.h"

namespace QVLineSorter {

/// `chunk` without what follows its first `characters` characters.
template <class CharT>
uint64_t CutChunk(uint64_t chunk, size_t characters) {
    constexpr size_t kBits = 8 * sizeof(CharT);
    return characters * kBits >= 64 ? chunk : chunk & ~(~uint64_t{0} >> (characters * kBits));
}

// Four ways to read the chunk at `from`, where the key has `characters` characters left. They take eight bytes whatever
// is left of the key: after the text there are spare ones.

/// 8-bit characters by their values.
struct PlainBytes {
    uint64_t operator()(const char* from, size_t characters) const {
        return CutChunk<char>(LoadBytes(from), characters);
    }
};

/// 8-bit characters by their places in LineCompare_OrdinalA's order.
struct RankedBytes {
    const std::array<uint8_t, 256>& ranks;
    uint64_t operator()(const char* from, size_t characters) const {
        uint64_t chunk = 0;
        for (size_t i = 0; i < 8; ++i) chunk = chunk << 8 | ranks[static_cast<uint8_t>(from[i])];
        return CutChunk<char>(chunk, characters);
    }
};

/// 16-bit characters by their values.
struct PlainUnits {
    uint64_t operator()(const wchar_t* from, size_t characters) const {
        const uint64_t swapped = LoadBytes(from);  // the units in order, but the bytes of each the wrong way round
        constexpr uint64_t kLowBytes = 0x00FF00FF00FF00FF;
        return CutChunk<wchar_t>((swapped & kLowBytes) << 8 | (swapped >> 8 & kLowBytes), characters);
    }
};

/// 16-bit characters by the values of what they stand for when case is ignored.
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

/// The chunk of a line's key at a depth, read by one of the functions above; 0 after the key's end. Depths count from
/// the end of what all keys begin with.
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

}  // namespace QVLineSorter
