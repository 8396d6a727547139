// columns_command.h - what `qvhost columns` prints: one row a file, one column for each property.
#pragma once

#include <memory>
#include <vector>

#include "host/column_values.h"
#include "host/output.h"

namespace QVHost {

enum class ColumnFormat {
    Table,  // for people: aligned, under the columns' names
    Csv,    // comma-separated, under the columns' keys; cells in quotes where they must be
    Json,   // a list of objects with the columns' keys; null for a file without the value
};

void PrintColumns(Output& output, const ColumnValues& values, const std::vector<std::shared_ptr<FileItem>>& items,
                  ColumnFormat format);

}  // namespace QVHost
