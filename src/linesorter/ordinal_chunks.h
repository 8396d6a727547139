// ordinal_chunks.h - keys in ordinal order as chunks of eight bytes, for chunk_sort.h, and the beginning that all have
// in common. Pure: which characters are equal comes in as a table.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "linesorter/chunk_sort.h"
#include "linesorter/sortable_lines.h"

namespace QVLineSorter {

/// Keys compared byte by byte, by each byte's place among all (LineCompare_OrdinalA::ByteRanks).
class ByteOrder {
public:
    explicit ByteOrder(const std::array<uint8_t, 256>& ranks) : m_ranks(ranks) {}

    const std::array<uint8_t, 256>& Ranks() const noexcept { return m_ranks; }

    /// How many bytes the two begin with in common.
    size_t CommonLength(std::string_view left, std::string_view right) const {
        const auto isSame = [this](char one, char other) { return one == other || Rank(one) == Rank(other); };
        return static_cast<size_t>(std::mismatch(left.begin(), left.end(), right.begin(), right.end(), isSame).first -
                                   left.begin());
    }

    /// A key comes before those that it is the beginning of.
    bool IsLess(std::string_view left, std::string_view right) const {
        const size_t common = CommonLength(left, right);
        if (common == left.size() || common == right.size()) return left.size() < right.size();
        return Rank(left[common]) < Rank(right[common]);
    }

private:
    uint8_t Rank(char byte) const { return m_ranks[static_cast<uint8_t>(byte)]; }

    const std::array<uint8_t, 256> m_ranks;
};

/// Puts each key that others begin with to its place among them.
///
/// Such a key equals every one of them, while these differ from each other, so no comparison of two can say where it
/// stands. It goes in front of the first of them, in their order, that follows it in the file, and after all of them
/// when none does. That keeps "abcd", "abc" as they are, leaves every key that is less than another in front of it, and
/// gives the same order again when the result is sorted once more. An empty key is the beginning of no other.
///
/// `entries` come sorted, each key before those that it is the beginning of, equal ones by index. `keyOf(index)` gives
/// a key's text. A line is moved at most once for each different beginning of it that is a key too, so all takes time
/// in proportion to the text.
template <class KeyOf>
void PlaceBeginnings(std::span<KeyedIndex> entries, const ByteOrder& order, KeyOf&& keyOf) {
    /// A key, and those that it is the beginning of, which follow it up to the end that is yet to be found.
    struct Open {
        size_t begin;
        size_t length;  // bytes of the key
        size_t copies;  // entries with this key, all at the beginning
    };
    std::vector<Open> open;
    std::vector<KeyedIndex> copies;
    const auto close = [&](size_t end) {
        const Open key = open.back();
        open.pop_back();
        size_t from = key.begin + key.copies;
        if (from == end) return;
        copies.assign(entries.begin() + static_cast<ptrdiff_t>(key.begin),
                      entries.begin() + static_cast<ptrdiff_t>(from));
        size_t to = key.begin;
        for (const KeyedIndex& copy : copies) {
            while (from < end && entries[from].index < copy.index) entries[to++] = entries[from++];
            entries[to++] = copy;
        }
    };
    std::string_view last;
    for (size_t at = 0; at < entries.size(); ++at) {
        const std::string_view key = keyOf(entries[at].index);
        const size_t common = order.CommonLength(last, key);
        last = key;
        while (!open.empty() && open.back().length > common) close(at);
        if (!open.empty() && open.back().length == key.size())
            ++open.back().copies;
        else if (!key.empty())
            open.push_back({at, key.size(), 1});
    }
    while (!open.empty()) close(entries.size());
}

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
