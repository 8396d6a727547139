// name_sample.h - tries one find and replace pair on names, for the dialog that edits it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "rename/search_and_replace_items.h"

namespace BatchRename {

struct ItemTrial {
    std::wstring error;   // the find text is no regular expression; in words
    size_t tried = 0;     // names looked at
    size_t matches = 0;   // of these
    std::wstring before;  // the first name that changes
    std::wstring after;
};

/// Applies the pair to the part of each name that `options` (RenameOption bits) let it work on. Ends early when
/// `isTimeUp` says so: the dialog must answer at once, however many names there are.
ItemTrial TryItem(const SearchAndReplaceItem& item, uint32_t options, const RenameItems& rows,
                  const std::function<bool()>& isTimeUp);

/// "3 of 20 names match", the first example, or what is wrong.
std::wstring TextOfTrial(const ItemTrial& trial, size_t rowCount);

/// How the options make a pair work: "regular expression, every match, ..."
std::wstring TextOfModes(uint32_t options);

}  // namespace BatchRename
