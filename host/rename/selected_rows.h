// selected_rows.h - the rows of a rename from the paths of a command line.
#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/app/command_line.h"
#include "host/rename/folder_listings.h"
#include "rename/rename_item.h"
#include "rename/rename_plan.h"
#include "rename/rename_rule.h"
#include "win32/name_list.h"

namespace QVHost {

class SelectedRows {
public:
    /// Adds a row for a full path, and begins to look at its folder.
    void Add(std::wstring_view path);

    size_t Count() const { return m_names.Count(); }
    /// Folders are numbered in order of appearance; spellings that differ in case alone are one folder.
    size_t CountOfFolders() const { return m_listings.Count(); }
    size_t FolderOf(size_t row) const { return m_locations[m_locationOf[row]].folder; }

    /// Makes `item` the row of a path, under the name that its folder shows; what a rule sets stays as it is. Once for
    /// each row. False for an item that an earlier row stands for: it counts once.
    /// @throws UsageError for a path that leads to nothing
    bool Fill(size_t row, BatchRename::BatchRenameItem& item);

    /// What a folder holds, once, and after the last of its rows.
    BatchRename::FolderNames TakeNames(size_t folder);

private:
    /// A folder as a path spells it.
    struct Location {
        std::wstring path;
        size_t folder = 0;
    };

    uint32_t LocationNumberOf(std::wstring_view path);

    Win32::NameList m_names;  // of all rows
    std::vector<uint32_t> m_locationOf;
    std::vector<Location> m_locations;
    std::unordered_map<std::wstring, uint32_t> m_locationNumbers;
    std::unordered_map<std::wstring, size_t> m_folderNumbers;  // by folded paths
    FolderListings m_listings;
};

/// All rows in the order and with the new names that the options ask for.
/// @throws UsageError for a path that leads to nothing, and for names that cannot be read or are too few or too many
BatchRename::RenameItems MakeRows(SelectedRows& selection, BatchRename::RenameRule& rule, const RenameOptions& options,
                                  std::istream& in);

}  // namespace QVHost
