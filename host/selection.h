// selection.h - the files that a command line selects.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace QVHost {

/// The absolute paths of `given` and of the list file (`-`: the lines of `in`), in this order.
/// @throws UsageError naming the first path that does not exist, or a list that cannot be read
std::vector<std::wstring> SelectedPaths(const std::vector<std::wstring>& given,
                                        const std::optional<std::wstring>& listFile, std::istream& in);

}  // namespace QVHost
