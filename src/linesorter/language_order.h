// language_order.h - keys in a language's order: what group_sort.h reads of them. The bytes are those of the system's
// sort keys. They are made for as much of a line as is needed, and without the system where characters stand for
// themselves.
#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "linesorter/group_sort.h"
#include "linesorter/sortable_lines.h"

namespace QVLineSorter {

/// The system makes no sort key: nothing but its comparison gives the order.
class NoSortKey : public std::exception {};

/// Makes the system's sort keys under the rules of the language-aware comparators. For one thread.
template <class CharT>
class SortKeyMaker {
public:
    explicit SortKeyMaker(bool digitsAsNumbers) : m_digitsAsNumbers(digitsAsNumbers) {}

    /// The key without the zero at its end, until the next call; "" for an empty text. @throws NoSortKey
    std::basic_string_view<uint8_t> Make(std::basic_string_view<CharT> text);

private:
    uint32_t MakeInto(std::basic_string_view<CharT> text, uint8_t* buffer, uint32_t capacity);

    bool m_digitsAsNumbers;
    std::vector<uint8_t> m_key;
    std::vector<wchar_t> m_converted;
};

/// The weights of the characters that weigh the same wherever they stand.
///
/// A sort key begins with its characters' weights, in their order; what tells accents, case and hyphens apart comes
/// after a byte of 1. Most characters have a weight of two bytes; hyphens and apostrophes have none. Others weigh
/// together with their neighbours, as "ch" in some languages and digits of a number: these are not plain. Which are, is
/// asked from the system, by a text in which each of them stands beside each other one.
template <class CharT>
class PlainWeights {
public:
    explicit PlainWeights(SortKeyMaker<CharT>& maker);

    static constexpr uint16_t kNone = 0;      // no weight
    static constexpr uint16_t kNotPlain = 1;  // no weight begins with a byte of 0

    uint16_t Of(CharT unit) const {
        const auto value = static_cast<std::make_unsigned_t<CharT>>(unit);
        return value < kCount ? m_weights[value] : kNotPlain;
    }
    bool IsPlain(CharT unit) const { return Of(unit) != kNotPlain; }

private:
    static constexpr uint32_t kCount = 256;

    bool AddUp(SortKeyMaker<CharT>& maker, std::basic_string_view<CharT> text) const;
    void DropLettersThatWeighTogether(SortKeyMaker<CharT>& maker);
    std::basic_string<CharT> EveryPair() const;

    std::array<uint16_t, kCount> m_weights = {};
};

/// Keys as the bytes of their sort keys, a byte being a unit; see GroupSort. The first phase has the weights of the
/// characters, the second one the whole keys of lines whose weights are all the same.
template <class CharT>
class LanguageReader {
public:
    static constexpr uint32_t kUnits = 12;
    static constexpr size_t kLongestCommon = 1 << 16;
    static constexpr uint32_t kFew = 256;
    static constexpr bool kKeepsFew = true;

    LanguageReader(const SortableLinesData<CharT>& data, Range lines, const PlainWeights<CharT>& weights,
                   const SortKeyMaker<CharT>& maker)
        : m_data(&data), m_lines(lines), m_weights(&weights), m_maker(maker) {}

    void SetPhase(uint32_t phase) {
        m_hasWholeKeys = phase > 0;
        m_isPivotWhole = false;
    }
    static bool HasPhase(uint32_t phase) { return phase < 2; }
    void SetPivot(uint32_t index, size_t);
    size_t Common(uint32_t index, size_t limit) {
        Read(index, limit, m_key);
        return CommonLength(m_key, m_pivot, limit);
    }
    Chunk ChunkAt(uint32_t index, size_t depth);
    static bool IsEnd(const Chunk& chunk) { return chunk == kEndsWithPivot || (chunk.tail & 0xFF) == 0; }
    int Compare(uint32_t left, uint32_t right, size_t from);
    void Keep(std::span<KeyedIndex> members, size_t from);
    int CompareKept(uint32_t left, uint32_t right) const;
    bool IsKeptWhole(uint32_t slot) const { return m_kept[slot].isWhole; }
    void PrefetchLine(uint32_t index) const { __builtin_prefetch(&m_lines[index]); }
    void PrefetchText(uint32_t index) const {
        const View text = TextOf(index);
        __builtin_prefetch(text.data());
        __builtin_prefetch(text.data() + 64 / sizeof(CharT));
    }

private:
    using View = std::basic_string_view<CharT>;

    /// The beginning of a key, with zeros after it; the whole of it when it is shorter than was asked for. No byte of
    /// it is zero.
    struct Bytes {
        std::vector<uint8_t> bytes;
        size_t size = 0;
        void Resize(size_t newSize) {
            if (bytes.size() < newSize + kUnits) bytes.resize(newSize + newSize / 2 + kUnits);
            size = newSize;
        }
    };

    View TextOf(uint32_t index) const { return m_data->KeyText(m_lines[index]); }
    /// At least `wanted` bytes, when there are so many.
    void Read(uint32_t index, size_t wanted, Bytes& key);
    bool ReadPlain(View text, size_t wanted, Bytes& key) const;
    void ReadWeights(View text, size_t wanted, Bytes& key);
    void ReadWhole(View text, Bytes& key);
    size_t SafeCut(View text, size_t from) const;
    static size_t CommonLength(const Bytes& left, const Bytes& right, size_t limit);

    const SortableLinesData<CharT>* m_data;
    Range m_lines;
    const PlainWeights<CharT>* m_weights;
    SortKeyMaker<CharT> m_maker;
    bool m_hasWholeKeys = false;
    bool m_isPivotWhole = false;
    View m_pivotText;
    /// Where a key's bytes are in m_keptBytes.
    struct Kept {
        size_t begin = 0;
        size_t size = 0;
        bool isWhole = false;
    };
    std::vector<uint8_t> m_keptBytes;
    std::vector<Kept> m_kept;
    Bytes m_key;
    Bytes m_other;
    Bytes m_pivot;
};

}  // namespace QVLineSorter
