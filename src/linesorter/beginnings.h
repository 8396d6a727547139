// beginnings.h - where 8-bit keys stand that other keys begin with. Pure: which bytes are equal comes in as a table.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "linesorter/chunk_sort.h"

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

}  // namespace QVLineSorter
