// name_fit.h - which parts of a new name are shown where there is not enough width for all of it.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "batchrename/model/name_diff.h"

namespace BatchRename {

/// Drawn one after the other. An empty changed piece is a place where something was only taken out.
struct NamePiece {
    std::wstring_view text;
    bool isChanged = false;

    bool operator==(const NamePiece&) const = default;
};

/// The name in pieces that fit into `width` pixels, with an ellipsis wherever something is left out. The changed part
/// stays in sight, or its beginning where that alone is too wide: a name that seems to end where the column does would
/// be read as the new name. Surrogate pairs stay whole.
/// `edges`: for each unit of the name its right edge, in pixels from the name's beginning; `ellipsis`: its width.
std::vector<NamePiece> FitName(std::wstring_view name, ChangedPart changed, std::span<const int> edges, int width,
                               int ellipsis);

}  // namespace BatchRename
