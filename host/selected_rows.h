// selected_rows.h - the rows of a rename from the paths of a command line.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "batchrename/rename_item.h"
#include "batchrename/rename_plan.h"
#include "host/folder_listings.h"

namespace QVHost {

class SelectedRows {
public:
    /// Adds a row for a full path, and begins to look at its folder.
    void Add(std::wstring path);

    size_t Count() const { return m_paths.size(); }
    /// Folders are numbered in order of appearance; spellings that differ in case alone are one folder.
    size_t CountOfFolders() const { return m_listings.Count(); }
    size_t FolderOf(size_t row) const { return m_folderOf[row]; }

    /// The row of a path, once.
    /// @throws UsageError for a path that leads to nothing
    std::shared_ptr<BatchRename::BatchRenameItem> Make(size_t row);

    /// What a folder holds, once, and behind the last of its rows.
    BatchRename::FolderNames TakeNames(size_t folder);

private:
    uint32_t NumberOf(std::wstring_view folder);

    std::vector<std::wstring> m_paths;
    std::vector<uint32_t> m_folderOf;
    std::wstring m_lastFolder;
    std::unordered_map<std::wstring, uint32_t> m_numbers;  // of folders, by their folded names
    FolderListings m_listings;
};

}  // namespace QVHost
