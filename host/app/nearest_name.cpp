#include "host/app/nearest_name.h"

#include <algorithm>
#include <cwctype>
#include <numeric>

namespace QVHost {

size_t EditDistance(std::wstring_view left, std::wstring_view right) {
    std::vector<size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t l = 1; l <= left.size(); ++l) {
        size_t diagonal = row[0];
        row[0] = l;
        for (size_t r = 1; r <= right.size(); ++r) {
            const bool same = std::towlower(left[l - 1]) == std::towlower(right[r - 1]);
            const size_t changed = diagonal + (same ? 0 : 1);
            diagonal = row[r];
            row[r] = std::min({row[r] + 1, row[r - 1] + 1, changed});
        }
    }
    return row.back();
}

std::wstring NearestName(std::wstring_view name, const std::vector<std::wstring>& known) {
    std::wstring nearest;
    size_t best = std::max<size_t>(2, name.size() / 3) + 1;
    for (const std::wstring& candidate : known) {
        const size_t distance = EditDistance(name, candidate);
        if (distance >= best) continue;
        best = distance;
        nearest = candidate;
    }
    return nearest;
}

std::wstring DidYouMean(std::wstring_view name, const std::vector<std::wstring>& known) {
    const std::wstring nearest = NearestName(name, known);
    return nearest.empty() ? L"" : L", did you mean " + nearest + L"?";
}

}  // namespace QVHost
