// sort_parameters.h - the parameters of the custom command "SortLines", read into a request.
#pragma once

#include <string>
#include <vector>

#include "linesorter/sort_request.h"
#include "sdk/menus_and_commands.h"

namespace FileUtils {

/// A parameter that cannot be used. The reason is written to follow the parameter's name.
struct BadParameter {
    const char* name;
    std::wstring reason;
};

/// What is not given leaves its field alone. @throws BadParameter for what is given wrongly
QVLineSorter::SortRequest ReadSortParameters(Quorvane::SDK::ICustomCommandCall& call);

/// What of the given parameters has no effect, and what is missing for a key: the sort is done all the same. `request`
/// is what was read from them.
std::vector<std::wstring> NotesOnSortParameters(Quorvane::SDK::ICustomCommandCall& call,
                                                const QVLineSorter::SortRequest& request);

}  // namespace FileUtils
