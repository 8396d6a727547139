// restore_rows.h - from an undo session to the rows that give its items their old names back. The rows then go through
// the same planner and the same run as any other.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "rename/rename_item.h"
#include "rename/rename_plan.h"
#include "rename/undo_session.h"

namespace BatchRename {

/// Lists a folder as it is now.
using ListFolder = std::function<FolderNames(const std::wstring& folder)>;
/// Looks on the volume of `folder` for an item that is not in it any more. Its path, "" when it is not to be had.
using FindItem = std::function<std::wstring(const ItemIdentity& item, const std::wstring& folder)>;

/// The rows of a restore, and which entry each is from.
struct RestoreRows {
    RenameItems rows;             // current name: where the item is now; new name: its old one; state: Restore
    std::vector<size_t> entries;  // of each row
};

/// Rows for all entries, the last one first: so what was done last is undone first.
///
/// - An item whose identity was recorded is found by it, under whatever name and, by `find`, wherever on its volume: it
///   gets its old name where it is now. Another item that has its name is left alone.
/// - Without an identity the names must tell. An entry whose new name is gone (or belongs to another entry) and whose
///   old name is there has nothing to restore: its row keeps the name it has. Of an unfinished session each item is
///   looked for under the last name that the record knows, and under the temporary one.
/// - A folder that was renamed by the same session is followed to its present name.
/// - A location that is the item's full path, with the old name or the new one, is understood as well as its folder.
RestoreRows MakeRestoreRows(const BatchRenameUndo& session, const ListFolder& list, const FindItem& find = {});

/// The rows of some entries alone.
void KeepEntries(RestoreRows& restore, const std::function<bool(size_t entry)>& isWanted);

}  // namespace BatchRename
