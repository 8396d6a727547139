// chunk_sort.h - sorts keys that are ordered character by character, eight bytes at a time: the eight are compared as
// one number that lies beside the line's index, so that a comparison touches no text. Knows no lines and no system.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace QVLineSorter {

/// Eight bytes of memory as a big-endian number: the first byte counts most.
inline uint64_t LoadBytes(const void* from) {
    uint64_t bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return __builtin_bswap64(bytes);
}

/// Eight bytes of a line's key, or its number, and the line's index in the file.
struct KeyedIndex {
    uint64_t key = 0;
    uint32_t index = 0;
    uint32_t tail = 0;  // the four bytes after the key, where they are known; 0: not known
};
static_assert(sizeof(KeyedIndex) == 16);

/// By key, equal keys by index. That makes every two entries different, so any sort gives what a stable one would.
inline void SortByKeyThenIndex(std::span<KeyedIndex> entries) {
    std::sort(entries.begin(), entries.end(), [](const KeyedIndex& left, const KeyedIndex& right) {
        return left.key != right.key ? left.key < right.key : left.index < right.index;
    });
}

/// Whether of two keys that were equal up to a chunk, and whose chunks are `left` < `right`, the right one goes on
/// where the left one ends. 8-bit keys without zero bytes. An empty key counts as the beginning of no other.
constexpr bool IsBeginningOf(uint64_t left, uint64_t right, uint32_t depth) {
    if (left == 0) return depth > 0;
    const int unusedBits = std::countr_zero(left) & ~7;
    return unusedBits > 0 && left >> unusedBits == right >> unusedBits;
}

/// Sorts the entries by their keys, equal keys by index, and a key before those that it is the beginning of.
///
/// `chunkAt(index, depth)` gives the bytes from 8 * depth on of a line's key as a big-endian number, filled up with
/// zero bytes after the key's end; no character of a key is zero. The entries come with the chunk of depth 0.
/// `lastCharacter` masks the last character of a chunk: a chunk whose last character is zero is a key's last one.
///
/// Of 8-bit keys it tells whether one that is not empty is the beginning of another one. In the sorted order the two
/// are neighbours, so looking at neighbours finds them all.
template <class ChunkAt>
bool SortByChunks(std::span<KeyedIndex> entries, uint64_t lastCharacter, ChunkAt&& chunkAt) {
    struct Group {
        uint32_t begin;
        uint32_t end;
        uint32_t depth;
    };
    bool hasBeginnings = false;
    std::vector<Group> groups = {{0, static_cast<uint32_t>(entries.size()), 0}};
    while (!groups.empty()) {
        const Group group = groups.back();
        groups.pop_back();
        const auto members = entries.subspan(group.begin, group.end - group.begin);
        if (group.depth > 0)
            for (KeyedIndex& entry : members) entry.key = chunkAt(entry.index, group.depth);
        SortByKeyThenIndex(members);
        for (uint32_t begin = group.begin, end = begin; begin < group.end; begin = end) {
            const uint64_t key = entries[begin].key;
            while (end < group.end && entries[end].key == key) ++end;
            if (end - begin > 1 && (key & lastCharacter) != 0) groups.push_back({begin, end, group.depth + 1});
            if (!hasBeginnings && end < group.end) hasBeginnings = IsBeginningOf(key, entries[end].key, group.depth);
        }
    }
    return hasBeginnings;
}

}  // namespace QVLineSorter
