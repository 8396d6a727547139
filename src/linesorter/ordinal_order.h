// ordinal_order.h - keys in ordinal order: what group_sort.h reads of them, and where 8-bit keys stand that others
// begin with. Pure: which characters are equal comes in as a table.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "linesorter/group_sort.h"
#include "linesorter/sortable_lines.h"

namespace QVLineSorter {

/// How many characters both texts have in common, at most `end`, which is beyond neither; `from` are known to be.
template <class CharT, class IsSame>
size_t CommonLengthOf(std::basic_string_view<CharT> left, std::basic_string_view<CharT> right, size_t from, size_t end,
                      IsSame&& isSame) {
    constexpr size_t kBlock = 8 / sizeof(CharT);
    size_t at = from;
    while (at + kBlock <= end && std::memcmp(left.data() + at, right.data() + at, 8) == 0) at += kBlock;
    while (at < end && (left[at] == right[at] || isSame(left[at], right[at]))) ++at;
    return std::min(at, end);
}

/// Keys compared byte by byte, by each byte's place among all (LineCompare_OrdinalA::ByteRanks).
class ByteOrder {
public:
    explicit ByteOrder(const std::array<uint8_t, 256>& ranks) : m_ranks(ranks) {}

    const std::array<uint8_t, 256>& Ranks() const noexcept { return m_ranks; }

    /// How many bytes the two begin with in common.
    size_t CommonLength(std::string_view left, std::string_view right) const {
        const auto isSame = [this](char one, char other) { return Rank(one) == Rank(other); };
        return CommonLengthOf(left, right, 0, std::min(left.size(), right.size()), isSame);
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
/// `entries` come sorted, each key before those that it is the beginning of, equal ones by their place in the file.
/// `keyOf(entry)` gives a key's text, `placeOf(entry)` its place. A line is moved at most once for each different
/// beginning of it that is a key too, so all takes time in proportion to the text.
template <class Entry, class KeyOf, class PlaceOf>
class BeginningPlacer {
public:
    BeginningPlacer(std::span<Entry> entries, const ByteOrder& order, KeyOf keyOf, PlaceOf placeOf)
        : m_entries(entries), m_order(order), m_keyOf(keyOf), m_placeOf(placeOf) {}

    /// In the sorted order a key and the first that it is the beginning of are neighbours, so looking at those from
    /// `begin` up to `end`, and the one after, finds whether there are any.
    bool HasBeginnings(size_t begin, size_t end) const {
        std::string_view last = KeyAt(begin);
        for (size_t at = begin + 1; at < std::min(end + 1, m_entries.size()); ++at) {
            Prefetch(at);
            const std::string_view key = KeyAt(at);
            if (!last.empty() && key.size() > last.size() && m_order.CommonLength(last, key) == last.size())
                return true;
            last = key;
        }
        return false;
    }

    /// `check` is called each few thousand entries.
    template <class Check>
    void Place(Check&& check) {
        std::string_view last;
        for (size_t at = 0; at < m_entries.size(); ++at) {
            if (at % 4096 == 0) check(at);
            Prefetch(at);
            const std::string_view key = KeyAt(at);
            const size_t common = m_order.CommonLength(last, key);
            last = key;
            while (!m_open.empty() && m_open.back().length > common) Close(at);
            if (!m_open.empty() && m_open.back().length == key.size())
                ++m_open.back().copies;
            else if (!key.empty())
                m_open.push_back({at, key.size(), 1});
        }
        while (!m_open.empty()) Close(m_entries.size());
    }

private:
    /// A key, and those that it is the beginning of, which follow it up to the end that is yet to be found.
    struct Open {
        size_t begin;
        size_t length;  // bytes of the key
        size_t copies;  // entries with this key, all at the beginning
    };

    std::string_view KeyAt(size_t at) const { return m_keyOf(m_entries[at]); }
    void Prefetch(size_t at) const {
        constexpr size_t kAhead = 8;
        if (at + kAhead < m_entries.size()) __builtin_prefetch(KeyAt(at + kAhead).data());
    }

    void Close(size_t end) {
        const Open key = m_open.back();
        m_open.pop_back();
        if (key.begin + key.copies == end) return;
        const auto at = [&](size_t index) { return m_entries.begin() + static_cast<ptrdiff_t>(index); };
        try {
            m_copies.assign(at(key.begin), at(key.begin + key.copies));
        } catch (const std::bad_alloc&) {
            RotateCopies(key, end);
            return;
        }
        size_t from = key.begin + key.copies;
        size_t to = key.begin;
        for (const Entry& copy : m_copies) {
            while (from < end && m_placeOf(m_entries[from]) < m_placeOf(copy)) m_entries[to++] = m_entries[from++];
            m_entries[to++] = copy;
        }
    }

    /// The same without memory for the copies, one after the other, the last one first.
    void RotateCopies(const Open& key, size_t end) {
        const auto at = [&](size_t index) { return m_entries.begin() + static_cast<ptrdiff_t>(index); };
        for (size_t copy = key.begin + key.copies; copy-- > key.begin;) {
            const auto place = m_placeOf(m_entries[copy]);
            const auto to =
                std::find_if(at(copy + 1), at(end), [&](const Entry& entry) { return m_placeOf(entry) > place; });
            std::rotate(at(copy), at(copy + 1), to);
        }
    }

    std::span<Entry> m_entries;
    const ByteOrder& m_order;
    KeyOf m_keyOf;
    PlaceOf m_placeOf;
    std::vector<Open> m_open;
    std::vector<Entry> m_copies;
};

// Which of two characters comes first: by their values, or by the places that a table gives them.

template <class CharT>
struct PlainCharacters {
    using Value = std::make_unsigned_t<CharT>;
    Value operator()(CharT unit) const { return static_cast<Value>(unit); }
};

struct RankedBytes {
    const std::array<uint8_t, 256>& ranks;
    uint8_t operator()(char byte) const { return ranks[static_cast<uint8_t>(byte)]; }
};

/// By the values of what they stand for when case is ignored.
struct FoldedUnits {
    const std::vector<wchar_t>& table;
    wchar_t operator()(wchar_t unit) const { return table[unit]; }
};

/// Keys without zero characters, a character being a unit; see GroupSort.
template <class CharT, class ValueOf>
class OrdinalReader {
public:
    static constexpr uint32_t kUnits = 12 / sizeof(CharT);
    static constexpr size_t kLongestCommon = ~uint32_t{0};
    static constexpr uint32_t kFew = 12;
    static constexpr bool kKeepsFew = false;

    OrdinalReader(const SortableLinesData<CharT>& data, Range lines, ValueOf valueOf)
        : m_data(&data), m_lines(lines), m_valueOf(valueOf) {}

    static void SetPhase(uint32_t) {}
    static bool HasPhase(uint32_t) { return false; }

    void SetPivot(uint32_t index, size_t from) {
        m_pivot = KeyOf(index);
        m_from = from;
    }
    size_t Common(uint32_t index, size_t limit) const {
        return CommonLength(m_pivot, KeyOf(index), m_from, std::min(limit, m_pivot.size()));
    }
    Chunk ChunkAt(uint32_t index, size_t depth) const {
        const View key = KeyOf(index);
        const size_t common = CommonLength(m_pivot, key, m_from, depth);
        if (common < depth)
            return common == key.size() || ValueAt(key, common) < ValueAt(m_pivot, common) ? kBeforePivot : kAfterPivot;
        if (depth == key.size()) return kEndsWithPivot;
        return Read(key.data() + depth, key.size() - depth);
    }
    static bool IsEnd(const Chunk& chunk) {
        return chunk == kEndsWithPivot || (chunk.tail & ((uint64_t{1} << 8 * sizeof(CharT)) - 1)) == 0;
    }
    int Compare(uint32_t leftIndex, uint32_t rightIndex, size_t from) const {
        const View left = KeyOf(leftIndex);
        const View right = KeyOf(rightIndex);
        const size_t common = CommonLength(left, right, from, left.size());
        if (common == left.size() || common == right.size())
            return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
        return ValueAt(left, common) < ValueAt(right, common) ? -1 : 1;
    }
    void PrefetchLine(uint32_t index) const { __builtin_prefetch(&m_lines[index]); }
    void PrefetchText(uint32_t index) const {
        const View text = KeyOf(index);
        __builtin_prefetch(text.data());
        __builtin_prefetch(text.data() + 64 / sizeof(CharT));
    }

private:
    using View = std::basic_string_view<CharT>;

    View KeyOf(uint32_t index) const { return m_data->KeyText(m_lines[index]); }
    auto ValueAt(View key, size_t at) const { return m_valueOf(key[at]); }

    /// Both begin with `from` characters in common.
    size_t CommonLength(View left, View right, size_t from, size_t limit) const {
        return CommonLengthOf(left, right, from, std::min({limit, left.size(), right.size()}),
                              [this](CharT one, CharT other) { return m_valueOf(one) == m_valueOf(other); });
    }

    /// Takes twelve bytes whatever is left of the key: after the text there are spare ones.
    Chunk Read(const CharT* from, size_t characters) const {
        constexpr uint32_t kBits = 8 * sizeof(CharT);
        constexpr uint32_t kInKey = 8 / sizeof(CharT);
        Chunk chunk;
        if constexpr (std::is_same_v<ValueOf, PlainCharacters<char>>) {
            chunk = {LoadBytes(from), static_cast<uint32_t>(LoadBytes(from + 4))};
        } else {
            for (uint32_t i = 0; i < kInKey; ++i) chunk.key = chunk.key << kBits | m_valueOf(from[i]);
            for (uint32_t i = kInKey; i < kUnits; ++i) chunk.tail = chunk.tail << kBits | m_valueOf(from[i]);
        }
        if (characters < kUnits) {
            const auto used = static_cast<uint32_t>(characters);
            chunk.tail = used <= kInKey ? 0 : chunk.tail & ~(~uint32_t{0} >> (used - kInKey) * kBits);
            if (used < kInKey) chunk.key &= ~(~uint64_t{0} >> used * kBits);
        }
        return chunk;
    }

    const SortableLinesData<CharT>* m_data;
    Range m_lines;
    ValueOf m_valueOf;
    View m_pivot;
    size_t m_from = 0;
};

}  // namespace QVLineSorter
