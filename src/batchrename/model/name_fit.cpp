#include "batchrename/model/name_fit.h"

#include <algorithm>

#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr wchar_t kEllipsis = L'\u2026';
// The blank, those that break no line, and those of fixed widths.
constexpr std::wstring_view kBlanks =
    L" \u00A0\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A\u202F\u205F\u3000";

/// Where units begin, in pixels, and how many fit into a width.
class Positions {
public:
    explicit Positions(std::span<const int> edges) : m_edges(edges) {}

    int EdgeBefore(size_t unit) const { return unit == 0 ? 0 : m_edges[unit - 1]; }
    /// The last place that is at most `width` pixels after `begin`; `begin` itself where nothing fits.
    size_t EndFrom(size_t begin, int width) const {
        const auto end = std::ranges::upper_bound(m_edges.subspan(begin), EdgeBefore(begin) + width);
        return static_cast<size_t>(end - m_edges.begin());
    }
    /// The first place from which it is at most `width` pixels to `end`.
    size_t BeginTo(size_t end, int width) const {
        size_t begin = end;
        while (begin > 0 && EdgeBefore(end) - EdgeBefore(begin - 1) <= width) --begin;
        return begin;
    }

private:
    std::span<const int> m_edges;
};

struct Stretch {
    size_t begin;
    size_t end;
};

Stretch ShownStretch(std::wstring_view name, ChangedPart changed, const Positions& positions, int width, int ellipsis) {
    const auto wholePairs = [&](size_t begin, size_t end) {
        if (begin < end && Win32::IsLowSurrogate(name[begin])) ++begin;
        if (begin < end && end < name.size() && Win32::IsLowSurrogate(name[end])) --end;
        return Stretch{begin, end};
    };
    if (positions.EdgeBefore(name.size()) <= width) return {0, name.size()};
    const size_t end = positions.EndFrom(0, width - ellipsis);
    if (end >= changed.end || changed.begin == 0) return wholePairs(0, end);
    const size_t begin = positions.BeginTo(name.size(), width - ellipsis);
    if (begin <= changed.begin) return wholePairs(begin, name.size());
    // Cut on both sides: a little of what stands before the change, then as much as there is space for.
    const int between = width - 2 * ellipsis;
    const int spare = between - (positions.EdgeBefore(changed.end) - positions.EdgeBefore(changed.begin));
    const size_t first = positions.BeginTo(changed.begin, spare / 2);
    const Stretch middle = wholePairs(first, positions.EndFrom(first, between));
    return middle.begin < middle.end ? middle : wholePairs(0, end);
}

}  // namespace

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

FittedName FitName(std::wstring_view name, ChangedPart changed, std::span<const int> edges, int width, int ellipsis) {
    const auto [begin, end] = ShownStretch(name, changed, Positions(edges), width, ellipsis);
    FittedName fitted;
    if (begin > 0) fitted.text += kEllipsis;
    const size_t first = fitted.text.size();
    fitted.text += name.substr(begin, end - begin);
    if (end < name.size()) fitted.text += kEllipsis;
    fitted.changed = {first + std::clamp(changed.begin, begin, end) - begin,
                      first + std::clamp(changed.end, begin, end) - begin};
    return fitted;
}

std::vector<size_t> HiddenBlanks(std::wstring_view name) {
    const size_t first = std::min(name.find_first_not_of(kBlanks), name.size());
    const size_t dot = std::min(name.rfind(L'.'), name.size());
    const size_t baseEnd = std::max(first, name.substr(0, dot).find_last_not_of(kBlanks) + 1);
    const size_t end = std::max(first, name.find_last_not_of(kBlanks) + 1);
    std::vector<size_t> places;
    for (size_t at = 0; at < name.size(); ++at)
        if (at < first || at >= end || (at >= baseEnd && at < dot)) places.push_back(at);
    return places;
}

}  // namespace BatchRename
