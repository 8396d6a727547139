// name_fit.h - what of a new name differs from the old one, and which parts of it are shown where there is not enough
// width for all.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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

/// A line as it is shown.
struct FittedName {
    std::wstring text;
    ChangedPart changed;  // of that text

    bool operator==(const FittedName&) const = default;
};

/// As much of the name as fits into `width` pixels, with an ellipsis wherever something is left out. The changed part
/// stays in sight, or its beginning where that alone is too wide: a name that seems to end where the column does would
/// be read as the new name. Surrogate pairs stay whole.
/// `edges`: for each unit of the name its right edge, in pixels from the name's beginning; `ellipsis`: its width.
FittedName FitName(std::wstring_view name, ChangedPart changed, std::span<const int> edges, int width, int ellipsis);

/// The places of blanks that nobody would see: at the ends of the name, and before its extension.
std::vector<size_t> HiddenBlanks(std::wstring_view name);

}  // namespace BatchRename
