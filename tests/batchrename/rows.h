// rows.h - short ways to make rows for tests.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "rename/rename_item.h"

namespace QVTest {

inline std::shared_ptr<BatchRename::BatchRenameItem> Row(std::wstring location, std::wstring name,
                                                         std::wstring newName = {}) {
    auto row = std::make_shared<BatchRename::BatchRenameItem>();
    row->location = std::move(location);
    row->currentName = std::move(name);
    row->newName = std::move(newName);
    return row;
}

/// Rows of one folder: current and new names.
inline BatchRename::RenameItems Rows(const std::wstring& location,
                                     const std::vector<std::pair<std::wstring, std::wstring>>& names) {
    BatchRename::RenameItems rows;
    for (const auto& [name, newName] : names) rows.push_back(Row(location, name, newName));
    return rows;
}

}  // namespace QVTest
