// rename_rows.h - carries out a set of renames as one: rows may take each other's names, in any order and in circles.
// Nothing is ever overwritten.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace QVHost {

struct RenameRow {
    std::wstring path;     // of the file or folder now
    std::wstring newName;  // within its folder
    uint32_t error = 0;    // out: a Windows error code
    std::wstring now;      // out: where the file or folder is afterwards
};

/// Renames what can be renamed and fills in each row's outcome.
///
/// A row whose new name is held by another row waits until that one is renamed. Rows that wait for each other in a
/// circle are resolved through a name that exists nowhere; a change of case alone goes through such a name as well,
/// because not every system does it in one step. A name in use is refused with 183, one that is no file name with 123.
void RenameRows(std::vector<RenameRow>& rows);

/// Renames one file or folder within its own folder, never onto a name in use. Where the system takes a change of case
/// alone for no change, it goes through `asideName` ("": a name of the host's). Windows error code, 0 for success;
/// after a failure the item has its old name.
uint32_t RenameOne(const std::wstring& path, const std::wstring& newName, const std::wstring& asideName);

}  // namespace QVHost
