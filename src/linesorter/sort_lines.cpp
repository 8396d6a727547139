#include "linesorter/sort_lines.h"

#include <algorithm>
#include <bit>
#include <new>
#include <span>
#include <type_traits>
#include <vector>

#include "linesorter/chunk_sort.h"
#include "linesorter/date_key.h"
#include "linesorter/line_compare.h"
#include "linesorter/ordinal_chunks.h"
#include "linesorter/sort_key.h"
#include "linesorter/sort_key_chunks.h"

namespace QVLineSorter {
namespace {

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

/// The plain way, for what has no chunks or too few lines to make them; the others must agree with it.
template <class CharT>
void SortByComparing(const SortableLinesData<CharT>& data, Range lines, LineCompare_TextBase<CharT>& compare) {
    std::stable_sort(lines.begin(), lines.end(), KeyLess<CharT>(data, compare));
}

template <class ReadChunk>
void SortOrdinalBytes(const SortableLinesData<char>& data, Range lines, const ByteOrder& order, ReadChunk read) {
    const KeyChunks<char, ReadChunk> chunkAt(data, lines, read);
    std::vector<KeyedIndex> entries = MakeEntries(lines.size(), [&](uint32_t index) { return chunkAt(index, 0); });
    const bool hasBeginnings = SortByChunks(entries, kLastCharacter<char>, chunkAt);
    if (hasBeginnings) PlaceBeginnings(entries, order, [&](uint32_t index) { return data.KeyText(lines[index]); });
    ApplyOrder(lines, entries);
}

/// Chunks cannot tell a zero character from a key's end. To the runtime's comparisons a key ends with its first zero.
void SortOrdinalBytesWithZeros(const SortableLinesData<char>& data, Range lines, const ByteOrder& order) {
    const auto keyOf = [&](uint32_t index) {
        const std::string_view key = data.KeyText(lines[index]);
        const size_t zero = key.find('\0');
        return zero == std::string_view::npos ? key : key.substr(0, zero + 1);
    };
    std::vector<KeyedIndex> entries = MakeEntries(lines.size(), [](uint32_t) { return uint64_t{0}; });
    std::stable_sort(entries.begin(), entries.end(), [&](const KeyedIndex& left, const KeyedIndex& right) {
        return order.IsLess(keyOf(left.index), keyOf(right.index));
    });
    PlaceBeginnings(entries, order, keyOf);
    ApplyOrder(lines, entries);
}

void SortOrdinal(const SortableLinesData<char>& data, Range lines, bool ignoreCase) {
    const ByteOrder order(LineCompare_OrdinalA(ignoreCase).ByteRanks());
    if (data.HasZeroCharacter())
        SortOrdinalBytesWithZeros(data, lines, order);
    else if (ignoreCase)
        SortOrdinalBytes(data, lines, order, RankedBytes{order.Ranks()});
    else
        SortOrdinalBytes(data, lines, order, PlainBytes{});
}

template <class ReadChunk>
void SortOrdinalUnits(const SortableLinesData<wchar_t>& data, Range lines, ReadChunk read) {
    const KeyChunks<wchar_t, ReadChunk> chunkAt(data, lines, read);
    std::vector<KeyedIndex> entries = MakeEntries(lines.size(), [&](uint32_t index) { return chunkAt(index, 0); });
    SortByChunks(entries, kLastCharacter<wchar_t>, chunkAt);
    ApplyOrder(lines, entries);
}

void SortOrdinal(const SortableLinesData<wchar_t>& data, Range lines, bool ignoreCase) {
    LineCompare_OrdinalW compare(ignoreCase);
    const std::vector<wchar_t> caseTable = ignoreCase ? Win32::OrdinalCaseTable() : std::vector<wchar_t>();
    if (!compare.HasSystemComparison() || data.HasZeroCharacter() || (ignoreCase && caseTable.empty()))
        SortByComparing(data, lines, compare);
    else if (ignoreCase)
        SortOrdinalUnits(data, lines, FoldedUnits{caseTable});
    else
        SortOrdinalUnits(data, lines, PlainUnits{});
}

/// So many lines are compared sooner than their sort keys are made.
constexpr ptrdiff_t kFewLines = 12;

/// Sorts by the sort keys when all that are needed can be made. Else it leaves the lines in their order.
template <class CharT, class Compare>
bool SortBySortKeys(const SortableLinesData<CharT>& data, Range lines, Compare& compare, size_t limit) try {
    SortKeyChunks<CharT, Compare> chunkAt(data, lines, compare, limit);
    std::vector<KeyedIndex> entries;
    entries.reserve(lines.size());
    for (uint32_t i = 0; i < lines.size(); ++i) entries.push_back(chunkAt.EntryOf(i));
    if (chunkAt.HasFailed()) return false;
    SortByKeyThenIndex(entries);
    const KeyLess<CharT, Compare> less(data, compare);
    for (auto begin = entries.begin(), end = begin; begin != entries.end(); begin = end) {
        end = std::find_if(begin, entries.end(), [&](const KeyedIndex& entry) { return entry.key != begin->key; });
        if (end - begin > kFewLines)
            SortByChunks({begin, end}, 0xFF, chunkAt);
        else if (end - begin > 1)
            std::stable_sort(begin, end, [&](const KeyedIndex& left, const KeyedIndex& right) {
                if (left.tail != 0 && right.tail != 0 && left.tail != right.tail) return left.tail < right.tail;
                return less(lines[left.index], lines[right.index]);
            });
        if (chunkAt.HasFailed()) return false;
    }
    ApplyOrder(lines, entries);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

/// Half of the lines need half of the memory. Merging two halves compares each line about once, so where the sort keys
/// of all lines take too much, the time still grows little faster than their number.
template <class CharT, class Compare>
void SortByLanguage(const SortableLinesData<CharT>& data, Range lines, Compare&& compare, size_t limit) {
    if (lines.size() <= kFewLines) {
        SortByComparing(data, lines, compare);
    } else if (!SortBySortKeys(data, lines, compare, limit)) {
        const size_t half = lines.size() / 2;
        SortByLanguage(data, lines.first(half), compare, limit);
        SortByLanguage(data, lines.subspan(half), compare, limit);
        std::inplace_merge(lines.begin(), lines.begin() + static_cast<ptrdiff_t>(half), lines.end(),
                           KeyLess<CharT, std::remove_reference_t<Compare>>(data, compare));
    }
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
