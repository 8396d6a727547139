// columns_command.h - what `qvhost columns` prints: one row a file, one column for each property.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/app/column_values.h"
#include "host/app/output.h"

namespace QVHost {

enum class ColumnFormat {
    Table,  // for people: aligned, under the columns' names
    Csv,    // comma-separated, under the columns' keys; cells in quotes where they must be
    Json,   // a list of objects with the columns' keys; null for a file without the value
};

/// A server may take seconds for each owner's name, so it is asked before each file whether to stop; what is printed
/// then is whole, but holds the files so far alone. False when it was stopped.
bool PrintColumns(Output& output, const ColumnValues& values, const std::vector<std::shared_ptr<FileItem>>& items,
                  ColumnFormat format, const std::function<bool()>& isStopped);

}  // namespace QVHost
