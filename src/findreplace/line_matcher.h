// line_matcher.h - finds one item in a line: as plain text in its two ways, or as a wildcard (wildcard.h).
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace QVFindAndReplace {

/// A hit; both count characters.
struct Span {
    size_t start = 0;
    size_t length = 0;
};

/// Finds one item. A hit never depends on what is before the place where the search begins, so a line can be
/// searched on from anywhere by giving the rest of it.
template <class CharT>
class LineMatcher {
public:
    using View = std::basic_string_view<CharT>;

    virtual ~LineMatcher() = default;
    LineMatcher() = default;
    LineMatcher(const LineMatcher&) = delete;
    LineMatcher& operator=(const LineMatcher&) = delete;

    /// The first hit in `text`, which is a line or the rest of one. False: none, and `found` is left alone.
    virtual bool Find(View text, Span& found) = 0;

    /// A place in a stretch of many lines before whose line no line has a hit; null when no line in it has one. Cheap,
    /// and may be wrong in the other direction: the place's own line need not have a hit.
    virtual const CharT* FindCandidate(View lines) const = 0;

    /// `alive` is called every few milliseconds of a search that takes long; what it throws ends the search.
    void CallWhileSearching(std::function<void()> alive) { m_alive = std::move(alive); }

    /// False when no hit can begin in `text` while `following` comes after it. True says nothing.
    virtual bool MayBeginIn(View text, View following) = 0;

protected:
    std::function<void()> m_alive;
};

/// The matcher for plain text. An empty item has no hits.
///
/// Without `ignoreCase`: the item's characters as they are; a zero character at a place where a hit could begin ends
/// the search. With it: a scan that goes on after the character that did not fit and never steps back, so it misses
/// "ab" in "aab". In 16-bit text the scan folds every letter; in 8-bit text it folds nothing: one request finds the
/// same matches from version to version. compatibility: 2
template <class CharT>
std::unique_ptr<LineMatcher<CharT>> MakePlainMatcher(std::basic_string<CharT> item, bool ignoreCase);

}  // namespace QVFindAndReplace
