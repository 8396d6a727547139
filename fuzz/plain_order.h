// plain_order.h - the order of sorted lines, made the obvious way: keys in an array of their own, a stable sort,
// reversal. The slow reference that the sorter is compared with, in the tests and by the fuzz target.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "linesorter/date_key.h"
#include "linesorter/line_compare.h"
#include "linesorter/sort_key.h"
#include "linesorter/sort_lines.h"

namespace QVFuzz {

using namespace QVLineSorter;
namespace Option = SortOption;

template <class CharT>
using Lines = std::vector<std::basic_string<CharT>>;

/// By so many threads; 0: on this one.
template <class CharT>
SortableLinesData<CharT> Load(const Lines<CharT>& lines, uint32_t threads = 0) {
    std::basic_string<CharT> text;
    for (const auto& line : lines) (text += line) += CharT('\n');
    QVUtils::MemoryDataReader reader(text.data(), static_cast<uint32_t>(text.size() * sizeof(CharT)), false);
    QVUtils::Progress progress;
    Workers workers(progress, threads);
    return SortableLinesData<CharT>(reader, 10, workers);  // the file has grown since it was opened
}

template <class CharT>
void Sort(SortableLinesData<CharT>& data, const SortRequest& request, const std::basic_string<CharT>& dateFormat,
          uint32_t threads = 0) {
    QVUtils::Progress progress;
    Workers workers(progress, threads);
    SortLines(data, request, dateFormat, workers);
}

template <class CharT>
Lines<CharT> Texts(const SortableLinesData<CharT>& data) {
    Lines<CharT> lines;
    for (const SortableLine& line : data.Lines()) lines.emplace_back(data.LineText(line));
    return lines;
}

template <class CharT>
void CutKeys(SortableLinesData<CharT>& data, const KeyRule<CharT>& rule) {
    for (SortableLine& line : data.Lines()) {
        const KeySpan key = FindKey<CharT>(data.LineText(line), rule);
        line.keyOffset = key.offset;
        line.keyLength = key.length;
    }
}

inline std::unique_ptr<LineCompare_TextBase<char>> Comparator(const SortRequest& request, char) {
    if (!request.Has(Option::LanguageOrder))
        return std::make_unique<LineCompare_OrdinalA>(request.Has(Option::IgnoreCase));
    if (request.Has(Option::NaturalNumbers)) return std::make_unique<LineCompare_LanguageAware_WFallback>();
    return std::make_unique<LineCompare_LanguageAware_StringCompareA>();
}

inline std::unique_ptr<LineCompare_TextBase<wchar_t>> Comparator(const SortRequest& request, wchar_t) {
    if (!request.Has(Option::LanguageOrder))
        return std::make_unique<LineCompare_OrdinalW>(request.Has(Option::IgnoreCase));
    return std::make_unique<LineCompare_LanguageAware_StringCompareEx<wchar_t>>(request.Has(Option::NaturalNumbers),
                                                                                true);
}

template <class CharT>
struct Row {
    std::basic_string<CharT> line;
    std::basic_string<CharT> key;
    int64_t number;
    size_t index;
};

/// The order of 8-bit text, a key at a time: each comes after all that are less, and of those that it is the
/// beginning of in front of the first that follows it in the file.
inline std::vector<Row<char>> InOrdinalOrder(std::vector<Row<char>> rows, bool ignoreCase) {
    LineCompare_OrdinalA compare(ignoreCase);
    const auto ranks = compare.ByteRanks();
    const auto ranked = [&](std::string key) {
        key.resize(std::min(key.size(), key.find('\0')) + (key.find('\0') != key.npos ? 1 : 0));
        for (char& byte : key) byte = static_cast<char>(ranks[static_cast<uint8_t>(byte)]);
        return key;
    };
    for (Row<char>& row : rows) row.key = ranked(row.key);
    std::ranges::stable_sort(rows, {}, &Row<char>::key);
    std::vector<Row<char>> placed;
    while (!rows.empty()) {
        const Row<char> row = rows.back();
        rows.pop_back();
        auto at = placed.begin();
        while (at != placed.end() && !row.key.empty() && at->key.starts_with(row.key) && at->index < row.index) ++at;
        placed.insert(at, row);
    }
    return placed;
}

/// The order by the obvious way: keys in an array of their own, a stable sort, reversal.
template <class CharT>
Lines<CharT> SortedPlainly(const Lines<CharT>& lines, const SortRequest& request, const KeyRule<CharT>& rule,
                           const std::basic_string<CharT>& dateFormat) {
    std::vector<Row<CharT>> rows;
    for (const auto& line : lines) {
        const KeySpan span = FindKey<CharT>(line, rule);
        const auto rest = line.substr(span.offset);
        int64_t number = 0;
        if (request.Has(Option::AsNumber)) number = NumberKey<CharT>(rest, request.substringLength).value_or(0);
        if (request.Has(Option::AsDate)) number = DateKeyReader().Read<CharT>(rest, dateFormat);
        rows.push_back({line, span.length ? rest.substr(0, span.length) : rest, number, rows.size()});
    }
    const auto compare = Comparator(request, CharT{});
    const bool byNumber = request.Has(Option::AsNumber | Option::AsDate);
    const bool isOrdinalBytes = sizeof(CharT) == 1 && !byNumber && !request.Has(Option::LanguageOrder);
    if constexpr (sizeof(CharT) == 1)
        if (isOrdinalBytes) rows = InOrdinalOrder(std::move(rows), request.Has(Option::IgnoreCase));
    if (!isOrdinalBytes)
        std::stable_sort(rows.begin(), rows.end(), [&](const Row<CharT>& left, const Row<CharT>& right) {
            if (byNumber) return left.number < right.number;
            return compare->Less(left.key.data(), static_cast<uint32_t>(left.key.size()), right.key.data(),
                                 static_cast<uint32_t>(right.key.size()));
        });
    if (request.Has(Option::Reverse)) std::reverse(rows.begin(), rows.end());
    Lines<CharT> sorted;
    for (const Row<CharT>& row : rows) sorted.push_back(row.line);
    return sorted;
}

inline constexpr uint32_t kLanguage = Option::AsText | Option::LanguageOrder;
inline constexpr uint32_t kOrders[] = {Option::AsText,   Option::AsText | Option::IgnoreCase, kLanguage,
                                       Option::AsNumber, kLanguage | Option::NaturalNumbers,  Option::AsDate};

template <class CharT>
std::vector<KeyRule<CharT>> KeyRules() {
    using Kind = typename KeyRule<CharT>::Kind;
    std::vector<KeyRule<CharT>> rules(5);
    rules[1].lineOffset = 3;
    rules[2].kind = Kind::Substring;
    rules[2].substringLength = 12;
    rules[3].kind = Kind::Substring;
    rules[3].endAtWhiteSpace = true;
    rules[3].skipLeadingSpaces = true;
    rules[4].kind = Kind::Item;
    rules[4].separator = CharT(',');
    rules[4].itemNumber = 2;
    return rules;
}

}  // namespace QVFuzz
