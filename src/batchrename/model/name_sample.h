// name_sample.h - tries one find and replace pair of a rule on names, for the dialog that edits it.
#pragma once

#include <functional>
#include <string>

#include "rename/rename_rule.h"
#include "sdk/words.h"

namespace BatchRename {

struct ItemTrial {
    std::wstring error;   // the find text is no regular expression; in words
    size_t tried = 0;     // names looked at
    size_t matches = 0;   // of these: those that hold the find text, whether or not they change
    std::wstring before;  // the first of them
    std::wstring after;
};

/// Applies the rule to each name up to and with its pair number `place`, switched on or not: what it finds is looked
/// for in what the templates, the case and the pairs before it make of the name. Tags of properties are empty here.
/// Ends early when `isTimeUp` says so: the dialog must answer at once, however many names there are.
ItemTrial TryItem(const RuleDefinition& rule, size_t place, const RenameItems& rows,
                  const std::function<bool()>& isTimeUp);

/// "3 of 20 names match", the first example, or what is wrong.
std::wstring TextOfTrial(const ItemTrial& trial, size_t rowCount, const Quorvane::SDK::Words& say = {});

/// How the options make a pair work: "regular expression, every match, ..."
std::wstring TextOfModes(uint32_t options, const Quorvane::SDK::Words& say);

}  // namespace BatchRename
