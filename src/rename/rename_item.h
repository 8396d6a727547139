// rename_item.h - one row of a batch rename: a file or folder, and the name it is to get.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "win32/item_identity.h"

namespace BatchRename {

/// State codes of a row. 5 and 6 are fixed by those who look at rows from outside; the others are this library's.
namespace RowState {
inline constexpr uint32_t Ready = 0;
inline constexpr uint32_t Ignored = 1;
inline constexpr uint32_t Failed = 2;
inline constexpr uint32_t Restore = 5;  // its new name comes from an undo session: the rule leaves the row alone
inline constexpr uint32_t Renamed = 6;
}  // namespace RowState

/// What kept the rule from computing a row's name as written.
enum class RuleFault : uint8_t {
    None,
    TooComplex,       // a regular expression took too many steps on this name
    TooDeep,          // a regular expression needed too much memory on this name
    ResultTooLong,    // a replacement grew beyond every limit of a name
    UnknownProperty,  // a property tag that the host knows nothing about
};

using Win32::ItemIdentity;

/// A row. Shared between the list of rows, the window and the run.
struct BatchRenameItem {
    std::wstring location;     // the folder that holds the item, without a separator at its end (but "C:\")
    std::wstring currentName;  // with extension
    std::wstring newName;      // with extension; what the rule computes
    bool isFolder = false;
    RuleFault fault = RuleFault::None;
    uint32_t state = RowState::Ready;
    bool isLeftOut = false;      // keeps its name and gets no number, but stays in the list
    std::wstring ownName = {};   // given by hand instead of what the rule computes; "": none
    uint32_t hostOrder = 0;      // its place in the host's selection
    ItemIdentity identity = {};  // the one item that the row stands for; not known: whatever has the name
};

using RenameItems = std::vector<std::shared_ptr<BatchRenameItem>>;

}  // namespace BatchRename
