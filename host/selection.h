// selection.h - the files that a command line selects.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace QVHost {

/// Does every path lead to something? Whoever looks at the items anyway need not be told by a look of its own.
enum class Existence : uint8_t { Checked, NotChecked };

/// The absolute paths of `given` and of the list file (`-`: the lines of `in`), in this order. Wildcards in the name of
/// a given path stand for what they match; those of a list are taken as they are.
/// @throws UsageError naming the first path that does not exist, or a list that cannot be read
std::vector<std::wstring> SelectedPaths(const std::vector<std::wstring>& given,
                                        const std::optional<std::wstring>& listFile, std::istream& in,
                                        Existence existence = Existence::Checked);

/// @throws UsageError naming the path
[[noreturn]] void RefuseMissingPath(const std::wstring& path);

}  // namespace QVHost
