// rename_plan.h - from rows and the names on disk to an order of renames in which nothing is ever overwritten. A pure
// function: it touches no disk. Carrying the steps out, and putting a ring back, is the run's work.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "rename/rename_item.h"
#include "win32/name_list.h"

namespace BatchRename {

/// What a folder holds now.
struct FolderNames {
    std::wstring folder;
    Win32::NameList names;
    uint32_t error = 0;                    // Windows error code when the folder cannot be read
    std::vector<ItemIdentity> items = {};  // of each name; empty where items have no lasting numbers
};

enum class RowVerdict : uint8_t { Rename, Ignored, Failed };

/// Why a row gets its verdict.
enum class RowReason : uint8_t {
    None,
    Unchanged,    // the new name is exactly the current one
    RuleFault,    // see the row
    BadName,      // Win32::CheckFileName says why
    PathTooLong,  // with its folder the name is beyond what the system takes
    FolderError,  // the folder cannot be read
    Gone,         // there is no such item any more
    OtherItem,    // another item has the row's name now
    ListedTwice,  // an earlier row stands for the same item; of a restore, any other
    Duplicate,    // more than one row wants the name, or a row that keeps it
    Taken,        // an item that is in no row has the name
    HeldByARow,   // a row that stays has the name
    LongPath,     // of a row that is to be renamed: many programs cannot open its path then
};

struct RowPlan {
    RowVerdict verdict = RowVerdict::Rename;
    RowReason reason = RowReason::None;
    uint32_t code = 0;  // Windows error code of a failed row
};

enum class StepKind : uint8_t {
    Direct,     // from the current name to the new one
    Aside,      // from the current name to the ring's temporary name
    FromAside,  // from there to the new name
};

struct RenameStep {
    uint32_t row = 0;
    StepKind kind = StepKind::Direct;
};

/// A chain: each step frees the name that the next one needs. Or a ring: all of it or nothing, through one temporary
/// name.
struct StepGroup {
    static constexpr uint32_t kNoRing = 0xFFFFFFFF;

    uint32_t first = 0;  // into the steps
    uint32_t count = 0;
    uint32_t ring = kNoRing;  // into the temporary names

    bool IsRing() const { return ring != kNoRing; }
};

struct RenamePlan {
    std::vector<RowPlan> rows;  // one for each row
    std::vector<RenameStep> steps;
    std::vector<StepGroup> groups;  // in the order in which they are to be done
    std::vector<std::wstring> temporaryNames;
    std::vector<ItemIdentity> identities;  // of the item that has each row's name now; empty when none is known
};

/// Plans the rows. Names count as equal when they differ in case alone, as the file system has it. `folders` holds a
/// listing for each folder of FoldersOf(rows).
///
/// Items in deeper folders come before those in folders above, so that no path changes under a row that waits; within
/// one depth chains and rings come in the list order of their first rows. Takes time linear in rows and names.
RenamePlan PlanRenames(const RenameItems& rows, const std::vector<FolderNames>& folders);

/// How deep the folder is, in separators: the same with the prefix for long paths and without.
uint32_t DepthOf(std::wstring_view location);

/// The distinct folders of the rows, in order of appearance.
std::vector<std::wstring> FoldersOf(const RenameItems& rows);

/// The row's verdict in words, without the word for the verdict itself; "" for a row that is to be renamed, unless
/// there is something to warn of.
std::wstring DescribeRowPlan(const BatchRenameItem& row, const RowPlan& plan);

/// The name under which an item may lie aside for a moment: "~qvbr" and eight hexadecimal digits that depend on its
/// folder and name alone. So an item that a crash has left aside can be found by what the undo session knows of it.
/// `attempt`: 0, or more when the names before are taken.
std::wstring TemporaryNameFor(std::wstring_view location, std::wstring_view name, uint32_t attempt);

}  // namespace BatchRename
