// selection.h - the files that a command line selects.
#pragma once

#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace QVHost {

/// What is done with each line: without its end, and its number, counted from 1.
using TakeLine = std::function<void(std::wstring_view line, size_t number)>;

/// As messages call it: the file as it was given, or the standard input.
std::wstring NameOfList(const std::wstring& listFile);

/// Takes the lines of a text file (`-`: of `in`), in UTF-8 or, with a mark, in UTF-16.
/// @throws UsageError when it cannot be read, with `what` the file is, or at a line of another encoding
void ForEachLineOfList(const std::wstring& listFile, const std::wstring& what, std::istream& in, const TakeLine& take);

/// What is done with each path: as it was given, and in full.
using TakeSelected = std::function<void(const std::wstring& given, const std::wstring& full)>;

/// Takes `given` and the paths in the list file (`-`: the lines of `in`), in this order, each as soon as it is known
/// and whether it leads to something or not. Wildcards in the name of a given path stand for what they match; those of
/// a list are taken as they are. A list is in UTF-8 or, with a mark, in UTF-16; quotes around a path are left out.
/// @throws UsageError for a list that cannot be read; the paths before that were taken
void ForEachSelectedPath(const std::vector<std::wstring>& given, const std::optional<std::wstring>& listFile,
                         std::istream& in, const TakeSelected& take);

/// All of them in full; one that is given twice comes once, as in a panel.
/// @throws UsageError naming the first path that does not exist, or a list that cannot be read
std::vector<std::wstring> SelectedPaths(const std::vector<std::wstring>& given,
                                        const std::optional<std::wstring>& listFile, std::istream& in);

/// @throws UsageError naming the path
[[noreturn]] void RefuseMissingPath(const std::wstring& path);

}  // namespace QVHost
