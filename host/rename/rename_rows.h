// rename_rows.h - carries out a set of renames as one: rows may take each other's names, in any order and in circles.
// Nothing is ever overwritten.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sdk/services.h"

namespace QVHost {

struct RenameRow {
    std::wstring path;     // of the file or folder now
    std::wstring newName;  // within its folder
    uint32_t error = 0;    // out: a Windows error code
    std::wstring now;      // out: where the file or folder is afterwards
};

/// Renames what can be renamed, one by one through `host`, and fills in each row's outcome. Planned as every batch of
/// renames: see PlanRenames. A row that has its new name already is a success.
void RenameRows(std::vector<RenameRow>& rows, Quorvane::SDK::IFileOperations& host);

/// Renames one file or folder within its own folder, never onto a name in use. Where the system takes a change of case
/// alone for no change, it goes through `asideName` ("": a name of the host's). Windows error code, 0 for success;
/// after a failure the item has its old name.
uint32_t RenameOne(const std::wstring& path, const std::wstring& newName, const std::wstring& asideName);

}  // namespace QVHost
