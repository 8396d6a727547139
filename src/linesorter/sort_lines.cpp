#include "linesorter/sort_lines.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <new>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "linesorter/date_key.h"
#include "linesorter/group_sort.h"
#include "linesorter/language_order.h"
#include "linesorter/line_compare.h"
#include "linesorter/ordinal_order.h"

namespace QVLineSorter {
namespace {

template <class CharT>
Range SortedRange(SortableLinesData<CharT>& data, const SortRequest& request) {
    const size_t count = data.Lines().size();
    const size_t top = std::min<size_t>(request.keepTop, count);
    const size_t bottom = std::min<size_t>(request.keepBottom, count - top);
    return data.Lines().subspan(top, count - top - bottom);
}

/// Sorts by entries, `sort` putting these in order, and moves the lines into it. The entries are all the memory that a
/// sort takes for each line.
template <class Sort>
void SortEntries(Range lines, Workers& workers, Sort&& sort) {
    const Records<KeyedIndex> memory = AllocateRecords<KeyedIndex>(lines.size());
    const std::span entries(memory.get(), lines.size());
    QVUtils::Progress& progress = workers.GetProgress();
    progress.BeginPart(SortPart::KeysCut);
    workers.ForEach(lines.size(), [&](uint32_t begin, uint32_t end, uint32_t) {
        for (uint32_t i = begin; i < end; ++i) entries[i] = {.index = i};
    });
    progress.BeginPart(SortPart::KeysRead);
    sort(entries);
    static_assert(sizeof(SortableLine) == sizeof(KeyedIndex));
    progress.BeginPart(SortPart::LinesMoved);
    workers.ForEach(lines.size(), [&](uint32_t begin, uint32_t end, uint32_t) {
        constexpr uint32_t kAhead = 16;
        for (uint32_t i = begin; i < end; ++i) {
            if (i + kAhead < end) __builtin_prefetch(&lines[entries[i + kAhead].index]);
            entries[i] = std::bit_cast<KeyedIndex>(lines[entries[i].index]);
        }
    });
    progress.BeginPart(SortPart::LinesMoved);
    workers.ForEach(lines.size(), [&](uint32_t begin, uint32_t end, uint32_t) {
        for (uint32_t i = begin; i < end; ++i) lines[i] = std::bit_cast<SortableLine>(entries[i]);
    });
}

/// Tells of the progress of comparisons, but not with each one, since that reads the clock.
class ComparisonWatch {
public:
    explicit ComparisonWatch(QVUtils::Progress& progress) : m_progress(progress) {}
    void Pass(const SortableLine& left, const SortableLine& right) {
        constexpr uint64_t kEnough = 65536;  // characters; a millisecond or so
        constexpr uint32_t kOverhead = 64;   // of a comparison, in characters
        m_passed += kOverhead + std::min(left.length, right.length);
        if (m_passed < kEnough) return;
        m_passed = 0;
        m_progress.Advance(0, 1);
    }

private:
    QVUtils::Progress& m_progress;
    uint64_t m_passed = 0;
};

/// A comparator on whole lines.
template <class CharT>
class KeyLess {
public:
    KeyLess(const SortableLinesData<CharT>& data, LineCompare_TextBase<CharT>& compare, ComparisonWatch& watch)
        : m_data(data), m_compare(compare), m_watch(watch) {}

    bool operator()(const SortableLine& left, const SortableLine& right) const {
        m_watch.Pass(left, right);
        const auto leftKey = m_data.KeyText(left);
        const auto rightKey = m_data.KeyText(right);
        return m_compare.Less(leftKey.data(), static_cast<uint32_t>(leftKey.size()), rightKey.data(),
                              static_cast<uint32_t>(rightKey.size()));
    }

private:
    const SortableLinesData<CharT>& m_data;
    LineCompare_TextBase<CharT>& m_compare;
    ComparisonWatch& m_watch;
};

/// The plain way, for few lines, and where there is no memory for entries; the others must agree with it.
template <class CharT>
void SortByComparing(const SortableLinesData<CharT>& data, Range lines, LineCompare_TextBase<CharT>&& compare,
                     Workers& workers) {
    ComparisonWatch watch(workers.GetProgress());
    std::stable_sort(lines.begin(), lines.end(), KeyLess<CharT>(data, compare, watch));
}

/// Sorts the lines themselves; `isLess` is an order, and lines that are equal in it stand as in the file.
template <class IsLess>
void SortInPlace(Range lines, Workers& workers, IsLess&& isLess) {
    ComparisonWatch watch(workers.GetProgress());
    std::ranges::sort(lines, [&](const SortableLine& left, const SortableLine& right) {
        watch.Pass(left, right);
        if (isLess(left, right)) return true;
        return left.start < right.start && !isLess(right, left);
    });
}

/// To the runtime's comparisons a key ends with its first zero.
std::string_view OrdinalKey(const SortableLinesData<char>& data, const SortableLine& line) {
    const std::string_view key = data.KeyText(line);
    const size_t zero = key.find('\0');
    return zero == std::string_view::npos ? key : key.substr(0, zero + 1);
}

void PlaceBeginnings(const SortableLinesData<char>& data, Range lines, const ByteOrder& order, Workers& workers) {
    const bool hasZeros = data.HasZeroCharacter();
    BeginningPlacer placer(
        lines, order, [&](const SortableLine& line) { return hasZeros ? OrdinalKey(data, line) : data.KeyText(line); },
        [](const SortableLine& line) { return line.start; });
    std::atomic<bool> hasBeginnings = false;
    workers.GetProgress().BeginPart(SortPart::BeginningsPlaced);
    workers.ForEach(lines.size(), [&](uint32_t begin, uint32_t end, uint32_t) {
        if (!hasBeginnings && placer.HasBeginnings(begin, end)) hasBeginnings = true;
    });
    if (hasBeginnings) placer.Place([&](size_t done) { workers.GetProgress().Advance(done, lines.size()); });
}

template <class CharT, class ValueOf>
void SortOrdinalEntries(std::span<KeyedIndex> entries, const SortableLinesData<CharT>& data, Range lines,
                        ValueOf valueOf, Workers& workers) {
    std::vector readers(workers.Count(), OrdinalReader<CharT, ValueOf>(data, lines, valueOf));
    GroupSort(entries, readers, workers).Sort();
}

void SortOrdinal(const SortableLinesData<char>& data, Range lines, bool ignoreCase, Workers& workers) {
    const ByteOrder order(LineCompare_OrdinalA(ignoreCase).ByteRanks());
    const auto inPlace = [&] {
        SortInPlace(lines, workers, [&](const SortableLine& left, const SortableLine& right) {
            return order.IsLess(OrdinalKey(data, left), OrdinalKey(data, right));
        });
    };
    // Chunks cannot tell a zero character from a key's end.
    if (data.HasZeroCharacter()) {
        inPlace();
    } else {
        try {
            SortEntries(lines, workers, [&](std::span<KeyedIndex> entries) {
                if (ignoreCase)
                    SortOrdinalEntries(entries, data, lines, RankedBytes{order.Ranks()}, workers);
                else
                    SortOrdinalEntries(entries, data, lines, PlainCharacters<char>(), workers);
            });
        } catch (const std::bad_alloc&) {
            inPlace();
        }
    }
    PlaceBeginnings(data, lines, order, workers);
}

void SortOrdinal(const SortableLinesData<wchar_t>& data, Range lines, bool ignoreCase, Workers& workers) {
    const auto plainly = [&] { SortByComparing(data, lines, LineCompare_OrdinalW(ignoreCase), workers); };
    if (!LineCompare_OrdinalW(ignoreCase).HasSystemComparison() || data.HasZeroCharacter()) return plainly();
    try {
        const std::vector<wchar_t> caseTable = ignoreCase ? Win32::OrdinalCaseTable() : std::vector<wchar_t>();
        if (ignoreCase && caseTable.empty()) return plainly();
        SortEntries(lines, workers, [&](std::span<KeyedIndex> entries) {
            if (ignoreCase)
                SortOrdinalEntries(entries, data, lines, FoldedUnits{caseTable}, workers);
            else
                SortOrdinalEntries(entries, data, lines, PlainCharacters<wchar_t>(), workers);
        });
    } catch (const std::bad_alloc&) {
        plainly();
    }
}

/// So many lines are compared sooner than the characters' weights are known.
constexpr size_t kFewLines = 256;

template <class CharT, class Compare>
void SortByLanguage(const SortableLinesData<CharT>& data, Range lines, Compare&& compare, bool digitsAsNumbers,
                    Workers& workers) {
    const auto plainly = [&] { SortByComparing<CharT>(data, lines, std::forward<Compare>(compare), workers); };
    if (lines.size() <= kFewLines) return plainly();
    try {
        SortKeyMaker<CharT> maker(digitsAsNumbers);
        const PlainWeights<CharT> weights(maker);
        SortEntries(lines, workers, [&](std::span<KeyedIndex> entries) {
            std::vector readers(workers.Count(), LanguageReader<CharT>(data, lines, weights, maker));
            GroupSort(entries, readers, workers).Sort();
        });
    } catch (const std::bad_alloc&) {
        plainly();
    } catch (const NoSortKey&) {
        plainly();
    }
}

void SortText(const SortableLinesData<char>& data, Range lines, const SortRequest& request, Workers& workers) {
    if (!request.Has(SortOption::LanguageOrder))
        SortOrdinal(data, lines, request.Has(SortOption::IgnoreCase), workers);
    else if (request.Has(SortOption::NaturalNumbers))
        SortByLanguage(data, lines, LineCompare_LanguageAware_WFallback(), true, workers);
    else
        SortByLanguage(data, lines, LineCompare_LanguageAware_StringCompareA(), false, workers);
}

void SortText(const SortableLinesData<wchar_t>& data, Range lines, const SortRequest& request, Workers& workers) {
    const bool isNatural = request.Has(SortOption::NaturalNumbers);
    if (request.Has(SortOption::LanguageOrder))
        SortByLanguage(
            data, lines,
            LineCompare_LanguageAware_StringCompareEx<wchar_t>(isNatural, !request.Has(SortOption::NoCompareStringEx)),
            isNatural, workers);
    else
        SortOrdinal(data, lines, request.Has(SortOption::IgnoreCase), workers);
}

/// Orders by signed 64-bit values, smaller first. `keyOf(line, worker)` gives a line's, or nothing. Returns how many
/// lines have none.
template <class KeyOf>
uint64_t SortByNumber(Range lines, Workers& workers, int64_t whenMissing, KeyOf&& keyOf) {
    constexpr uint64_t kSignBit = uint64_t{1} << 63;  // turned over, it puts negative numbers below the others
    constexpr uint32_t kOwnTail = 2;                  // of no chunk that means something else
    std::atomic<uint64_t> missing = 0;
    try {
        SortEntries(lines, workers, [&](std::span<KeyedIndex> entries) {
            workers.ForEach(lines.size(), [&](uint32_t begin, uint32_t end, uint32_t worker) {
                uint64_t missingHere = 0;
                for (uint32_t i = begin; i < end; ++i) {
                    const std::optional<int64_t> key = keyOf(lines[i], worker);
                    if (!key) ++missingHere;
                    entries[i] = {static_cast<uint64_t>(key.value_or(whenMissing)) ^ kSignBit, i, kOwnTail};
                }
                missing += missingHere;
            });
            std::vector<NumberReader> readers(workers.Count());
            GroupSort(entries, readers, workers).SortByKeys();
        });
    } catch (const std::bad_alloc&) {
        missing = static_cast<uint64_t>(
            std::ranges::count_if(lines, [&](const SortableLine& line) { return !keyOf(line, 0); }));
        SortInPlace(lines, workers, [&](const SortableLine& left, const SortableLine& right) {
            return keyOf(left, 0).value_or(whenMissing) < keyOf(right, 0).value_or(whenMissing);
        });
    }
    return missing;
}

template <class CharT>
uint64_t SortByValue(const SortableLinesData<CharT>& data, Range lines, const SortRequest& request,
                     std::basic_string_view<CharT> dateFormat, Workers& workers) {
    // An entire line has no number and no date: all keys are 0 and the order stays, as scripts know it. Dates without a
    // format are the same case.
    if (request.Has(SortOption::EntireLine)) return 0;
    if (request.Has(SortOption::AsNumber)) {
        return SortByNumber(lines, workers, 0, [&](const SortableLine& line, uint32_t) {
            return NumberKey(data.TextFromKey(line), request.substringLength);
        });
    }
    if (dateFormat.empty()) return 0;
    std::vector<DateKeyReader> readers(workers.Count());
    return SortByNumber(lines, workers, kNoDateKey, [&](const SortableLine& line, uint32_t worker) {
        const int64_t key = readers[worker].Read(data.TextFromKey(line), dateFormat);
        return key == kNoDateKey ? std::nullopt : std::optional(key);
    });
}

}  // namespace

template <class CharT>
uint64_t CutKeys(SortableLinesData<CharT>& data, const SortRequest& request, const KeyRule<CharT>& rule,
                 Workers& workers) {
    if (rule.kind == KeyRule<CharT>::Kind::FromOffset && rule.lineOffset == 0 && !rule.skipLeadingSpaces)
        return 0;  // each line is its own key already
    const Range lines = SortedRange(data, request);
    std::atomic<uint64_t> tooShort = 0;
    workers.ForEach(lines.size(), [&](uint32_t begin, uint32_t end, uint32_t) {
        uint64_t tooShortHere = 0;
        for (SortableLine& line : lines.subspan(begin, end - begin)) {
            const KeySpan key = FindKey(data.LineText(line), rule);
            line.keyOffset = key.offset;
            line.keyLength = key.length;
            if (key.isMissing) ++tooShortHere;
        }
        tooShort += tooShortHere;
    });
    return tooShort;
}

template <class CharT>
uint64_t SortLines(SortableLinesData<CharT>& data, const SortRequest& request,
                   const std::basic_string<CharT>& dateFormat, Workers& workers) {
    const Range lines = SortedRange(data, request);
    uint64_t missing = 0;
    if (request.Has(SortOption::AsNumber | SortOption::AsDate))
        missing = SortByValue<CharT>(data, lines, request, dateFormat, workers);
    else if (lines.size() > 1)
        SortText(data, lines, request, workers);
    if (request.Has(SortOption::Reverse)) std::reverse(lines.begin(), lines.end());
    return missing;
}

template <class CharT>
void RemoveBlankLines(SortableLinesData<CharT>& data, const SortRequest& request) {
    const Range lines = SortedRange(data, request);
    const auto isBlank = [](const SortableLine& line) { return line.length == 0; };
    const auto blank = static_cast<size_t>(lines.end() - std::remove_if(lines.begin(), lines.end(), isBlank));
    const auto end = static_cast<size_t>(lines.data() + lines.size() - data.Lines().data());
    data.Drop(end - blank, end);
}

template uint64_t CutKeys(SortableLinesData<char>&, const SortRequest&, const KeyRule<char>&, Workers&);
template uint64_t CutKeys(SortableLinesData<wchar_t>&, const SortRequest&, const KeyRule<wchar_t>&, Workers&);
template uint64_t SortLines(SortableLinesData<char>&, const SortRequest&, const std::string&, Workers&);
template uint64_t SortLines(SortableLinesData<wchar_t>&, const SortRequest&, const std::wstring&, Workers&);
template void RemoveBlankLines(SortableLinesData<char>&, const SortRequest&);
template void RemoveBlankLines(SortableLinesData<wchar_t>&, const SortRequest&);

}  // namespace QVLineSorter
