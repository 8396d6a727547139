// row_order.h - puts rows into another order. The order is what counters count, so it is the list's own and no mere
// view.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "rename/rename_item.h"

namespace BatchRename {

/// Problems is an order of the list alone, in which the rows themselves keep theirs.
enum class RowKey : uint8_t { HostOrder, CurrentName, NewName, Location, Problems };

struct RowOrder {
    RowKey key = RowKey::HostOrder;
    bool isDescending = false;

    bool operator==(const RowOrder&) const = default;
};

/// What a click on a column's header makes of the order: first up, then down, then the host's again.
RowOrder NextOrder(const RowOrder& current, RowKey clicked);

/// The rows in that order: texts in the order of the user's language, digits as numbers ("2" before "10"), equal ones
/// as they stood. May take long: `isCancelled` is asked now and then, and then an empty list is the result.
RenameItems SortRows(const RenameItems& rows, const RowOrder& order, const std::function<bool()>& isCancelled);

/// The rows without those marked.
RenameItems WithoutRows(const RenameItems& rows, const std::vector<bool>& isMarked);

/// The marked rows one place up or down; marked rows that have nowhere to go stay. `isMarked` moves with them.
RenameItems MoveRows(RenameItems rows, std::vector<bool>& isMarked, bool isUp);

/// Which rows of `now` were marked in `before`: the same ones wherever they stand, and of rows that were all made anew
/// those with the path of a marked one.
std::vector<bool> CarriedMarks(const RenameItems& before, const std::vector<bool>& isMarked, const RenameItems& now);

}  // namespace BatchRename
