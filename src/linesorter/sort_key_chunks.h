// sort_key_chunks.h - keys in a language's order as chunks of the system's sort keys, for chunk_sort.h. The comparator
// makes the keys; this decides which are needed and holds them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "linesorter/chunk_sort.h"
#include "linesorter/sortable_lines.h"

namespace QVLineSorter {

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
    /// inside the key, and for the half chunk after the first one of the shortest key.
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
    static constexpr size_t kZerosBehind = 12;
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
/// Making a sort key takes longer than anything else here, and most lines differ in its first bytes already. These are
/// the first letters' weights, and of a line that begins with plain letters they come out the same from the first
/// characters alone. So the whole key is made when the first bytes leave many lines equal, and for lines with anything
/// at their beginning whose weight may depend on what follows.
template <class CharT, class Compare>
class SortKeyChunks {
public:
    SortKeyChunks(const SortableLinesData<CharT>& data, Range lines, Compare& compare, size_t limit)
        : m_data(data),
          m_lines(lines),
          m_compare(compare),
          m_memory(limit),
          m_longest(limit / 64),
          m_keys(lines.size()) {
        m_usesBeginnings = BeginningsTellLinesApart();
    }

    /// The line with its first chunk, and with the next half chunk where that is known without the whole key.
    KeyedIndex EntryOf(uint32_t index) {
        if (m_usesBeginnings)
            if (const std::optional<KeyedIndex> entry = EntryOfBeginning(index)) return *entry;
        const uint8_t* const key = WholeKey(index);
        if (!key) return {.index = index};
        return {.key = LoadBytes(key), .index = index, .tail = static_cast<uint32_t>(LoadBytes(key + 4))};
    }

    uint64_t operator()(uint32_t index, uint32_t depth) {
        const uint8_t* const key = WholeKey(index);
        return key ? LoadBytes(key + size_t{depth} * 8) : 0;
    }

    /// True when a key could not be made; the chunks mean nothing then.
    bool HasFailed() const noexcept { return m_hasFailed; }

private:
    // Characters. A letter weighs two bytes. Of letters that weigh together there are four at most (a Hungarian double
    // consonant): nothing after the seventh letter can change the fourth weight, and nothing after the ninth the
    // sixth.
    static constexpr size_t kLettersForChunk = 7;
    static constexpr size_t kLettersForTail = 9;
    static constexpr size_t kBeginning = 24;  // how far numbers are followed

    const uint8_t* WholeKey(uint32_t index) {
        static constexpr uint8_t kEmptyKey[12] = {};
        if (m_keys[index] || m_hasFailed) return m_keys[index];
        const auto text = m_data.KeyText(m_lines[index]);
        if (text.empty()) return kEmptyKey;
        // A comparison of a text that long ends at the first difference; its key is made from all of it.
        if (text.size() <= m_longest)
            m_keys[index] = m_memory.Add([&](uint8_t* buffer, uint32_t capacity) {
                return m_compare.MakeSortKey(text.data(), static_cast<uint32_t>(text.size()), buffer, capacity);
            });
        m_hasFailed = !m_keys[index];
        return m_keys[index];
    }

    std::optional<KeyedIndex> EntryOfBeginning(uint32_t index) {
        const auto text = BeginningOf(m_data.KeyText(m_lines[index]).substr(0, kBeginning));
        if (text.size() < kLettersForChunk) return std::nullopt;
        uint8_t key[256];
        const uint32_t size = m_compare.MakeSortKey(text.data(), static_cast<uint32_t>(text.size()), key, sizeof key);
        // A byte of 1 ends the letters: accents and what else is looked at later follow.
        const auto areWeights = [&](uint32_t begin, uint32_t end) {
            return size > end && std::all_of(key + begin, key + end, [](uint8_t byte) { return byte > 1; });
        };
        if (!areWeights(0, 8)) return std::nullopt;
        KeyedIndex entry = {.key = LoadBytes(key), .index = index};
        if (text.size() >= kLettersForTail && areWeights(8, 12)) entry.tail = static_cast<uint32_t>(LoadBytes(key + 4));
        return entry;
    }

    /// As much of the text as is needed and made of plain letters. A number weighs as a whole: it is there to its end,
    /// or not at all.
    static std::basic_string_view<CharT> BeginningOf(std::basic_string_view<CharT> text) {
        size_t length = 0;
        for (size_t at = 0; at < text.size() && length < kLettersForTail && IsPlain(text[at]); ++at)
            if (!IsDigit(text[at])) length = at + 1;
        return text.substr(0, length);
    }

    static bool IsDigit(CharT unit) { return unit >= CharT('0') && unit <= CharT('9'); }

    /// Printable ASCII, each character with a weight of its own, but for hyphens and apostrophes, which are weighed
    /// last. Other characters may stand for several letters or for none.
    static bool IsPlain(CharT unit) {
        return unit >= CharT(' ') && unit <= CharT('~') && unit != CharT('-') && unit != CharT('\'');
    }

    /// Looks at some lines from all over the file. Where many begin alike, the work would be done twice.
    bool BeginningsTellLinesApart() {
        constexpr size_t kSample = 256;
        if (m_lines.size() < 16 * kSample) return false;
        std::vector<uint64_t> chunks;
        for (size_t i = 0; i < kSample; ++i)
            if (const auto entry = EntryOfBeginning(static_cast<uint32_t>(m_lines.size() / kSample * i)))
                chunks.push_back(entry->key);
        std::sort(chunks.begin(), chunks.end());
        const auto different = std::unique(chunks.begin(), chunks.end()) - chunks.begin();
        return static_cast<size_t>(different) > kSample / 4 && static_cast<size_t>(different) > chunks.size() * 7 / 8;
    }

    const SortableLinesData<CharT>& m_data;
    Range m_lines;
    Compare& m_compare;
    SortKeyMemory m_memory;
    size_t m_longest;                    // text that a key is made of, in characters
    std::vector<const uint8_t*> m_keys;  // null: not made yet
    bool m_usesBeginnings = false;
    bool m_hasFailed = false;
};

}  // namespace QVLineSorter
