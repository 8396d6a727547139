// sort_lines.h - puts the lines of one file in order: chooses how keys are compared and does it by the fastest way that
// gives the order of the plain one. Reading, key rules and writing are other files' work.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>

#include "linesorter/sort_key.h"
#include "linesorter/sort_request.h"
#include "linesorter/sortable_lines.h"
#include "linesorter/workers.h"

namespace QVLineSorter {

/// How many lines stand between the kept ones.
template <class CharT>
uint64_t CountSorted(const SortableLinesData<CharT>& data, const SortRequest& request) {
    const uint64_t kept = uint64_t{request.keepTop} + request.keepBottom;
    return data.Lines().size() - std::min<uint64_t>(kept, data.Lines().size());
}

/// Cuts the keys of the lines between the kept ones. Returns how many of them end before the place where the key
/// begins.
/// @throws QVUtilsException when the user has cancelled
template <class CharT>
uint64_t CutKeys(SortableLinesData<CharT>& data, const SortRequest& request, const KeyRule<CharT>& rule,
                 Workers& workers);

/// Sorts the lines between the kept ones by the keys that were cut, then turns them round when the request says so:
/// lines with equal keys keep their order, or have it reversed too.
///
/// Number and date keys are ordered by value and heed no text option. `dateFormat` is the request's in the file's own
/// characters. The order does not depend on how many workers there are. Besides what the lines are it takes 16 bytes
/// for each of them; without, it takes longer. Returns how many lines have no number, or no date, where these are the
/// keys.
/// @throws QVUtilsException when the user has cancelled: the lines are in no order then
template <class CharT>
uint64_t SortLines(SortableLinesData<CharT>& data, const SortRequest& request,
                   const std::basic_string<CharT>& dateFormat, Workers& workers);

/// Drops the lines of length 0 between the kept ones. A line of one space is not blank.
template <class CharT>
void RemoveBlankLines(SortableLinesData<CharT>& data, const SortRequest& request);

}  // namespace QVLineSorter
