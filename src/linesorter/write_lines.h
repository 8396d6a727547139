// write_lines.h - puts sorted lines back into bytes. Opening and replacing the file is the caller's work.
#pragma once

#include "linesorter/sortable_lines.h"
#include "textio/data_writer.h"

namespace QVLineSorter {

/// Writes the byte-order mark, every line with the line break that it was read with, and an odd last byte. Nothing is
/// converted. A line without a break, which is the file's last one or one that a lone CR ended, gets the prevailing
/// break: else it would run into the line that now follows it.
template <class CharT>
void WriteLines(const SortableLinesData<CharT>& data, QVUtils::DataWriter& writer);

}  // namespace QVLineSorter
