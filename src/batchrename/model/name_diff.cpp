#include "batchrename/model/name_diff.h"

#include <algorithm>

#include "win32/text.h"

namespace BatchRename {
ChangedPart FindChangedPart(std::wstring_view oldName, std::wstring_view newName) {
    const size_t shorter = std::min(oldName.size(), newName.size());
    size_t begin = 0;
    while (begin < shorter && oldName[begin] == newName[begin]) ++begin;
    size_t kept = 0;
    while (kept < shorter - begin && oldName[oldName.size() - kept - 1] == newName[newName.size() - kept - 1]) ++kept;
    size_t end = newName.size() - kept;
    if (begin == end) return {begin, end};
    if (begin > 0 && Win32::IsHighSurrogate(newName[begin - 1])) --begin;
    if (end < newName.size() && Win32::IsLowSurrogate(newName[end])) ++end;
    return {begin, end};
}

}  // namespace BatchRename
