// name_diff.h - what is different between an old and a new name, for the eye.
#pragma once

#include <cstddef>
#include <string_view>

namespace BatchRename {

/// A stretch of the new name, in UTF-16 units.
struct ChangedPart {
    size_t begin = 0;
    size_t end = 0;

    bool operator==(const ChangedPart&) const = default;
};

/// The part of `newName` between what both names begin and end with. Empty for equal names, and where something was
/// only taken out. Surrogate pairs stay whole.
ChangedPart FindChangedPart(std::wstring_view oldName, std::wstring_view newName);

}  // namespace BatchRename
