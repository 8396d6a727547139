// sort_lines.h - puts the lines of one file in order: chooses how keys are compared and does it by the fastest way that
// gives the order of the plain one. Reading, key rules and writing are other files' work.
#pragma once

#include <cstddef>
#include <string>

#include "linesorter/sort_request.h"
#include "linesorter/sortable_lines.h"

namespace QVLineSorter {

/// What the system's sort keys of a language-aware sort may take at a time, in bytes. Lines whose keys take more are
/// sorted in portions, which are merged.
inline constexpr size_t kSortKeyLimit = size_t{512} << 20;

/// Sorts the lines between the kept ones by the keys that were cut, then turns them round when the request says so:
/// lines with equal keys keep their order, or have it reversed too.
///
/// Number and date keys are ordered by value and heed no text option. `dateFormat` is the request's in the file's own
/// characters.
template <class CharT>
void SortLines(SortableLinesData<CharT>& data, const SortRequest& request, const std::basic_string<CharT>& dateFormat,
               size_t sortKeyLimit = kSortKeyLimit);

/// Drops the lines of length 0 between the kept ones. A line of one space is not blank.
template <class CharT>
void RemoveBlankLines(SortableLinesData<CharT>& data, const SortRequest& request);

}  // namespace QVLineSorter
