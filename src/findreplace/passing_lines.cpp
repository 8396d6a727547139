#include "findreplace/passing_lines.h"

#include <algorithm>
#include <utility>

#include "findreplace/passing_pairs.h"
#include "textio/line_splitter.h"

namespace QVFindAndReplace {

using QVUtils::FindLineBreak;
using QVUtils::FindLineEnd;
using QVUtils::FindUnit;

namespace {

/// Could a search for `item` find a hit, or its end, in `text`, whatever follows that?
template <class CharT>
bool EndsSearchIn(std::basic_string_view<CharT> text, std::basic_string_view<CharT> item) {
    for (; !text.empty(); text.remove_prefix(1))
        if (text.front() == CharT(0) || text.substr(0, item.size()) == item.substr(0, text.size())) return true;
    return false;
}

}  // namespace

template <class CharT>
std::optional<PassingLines<CharT>> PassingLines<CharT>::Make(Request& request, QVUtils::EncodingKind kind) {
    if (request.FindFault() || request.GetMode() != Mode::Multiline || (request.GetOptions() & Option::IgnoreCase))
        return std::nullopt;
    const Items<CharT>& items = request.GetItems(kind, CharT());
    const auto isMissing = [](const Converted<CharT>& item) { return !item; };
    if (items.find.size() < 2 || std::ranges::any_of(items.find, isMissing) ||
        std::ranges::any_of(items.replacement, isMissing))
        return std::nullopt;
    std::vector<Text> find;
    for (const auto& item : items.find) find.push_back(*item);
    // A replacement without any line counts as one empty line.
    std::vector<Text> replacement;
    for (const auto& item : items.replacement) replacement.push_back(*item);
    if (replacement.empty()) replacement.emplace_back();
    const auto fits = [&](const Text& text) { return PassingPair<CharT>::CanReplace(text, {}, kind); };
    if (!fits(find.front()) || !(find.back().empty() || fits(find.back()))) return std::nullopt;
    // What the last replacement line puts after the match's end is searched again.
    const View last = replacement.size() > 1 ? View(replacement.back()) : View();
    if (last.size() > find.back().size() && EndsSearchIn(last.substr(find.back().size()), View(find.front())))
        return std::nullopt;
    return PassingLines(std::move(find), std::move(replacement));
}

template <class CharT>
PassingLines<CharT>::PassingLines(std::vector<Text> find, std::vector<Text> replacement)
    : m_find(std::move(find)), m_replacement(std::move(replacement)), m_finder(m_find.front(), nullptr) {}

template <class CharT>
typename PassingLines<CharT>::View PassingLines<CharT>::Replace(View block, bool isLast, uint64_t& changes) {
    m_end = block.data() + block.size();
    m_hasZero = FindUnit(block.data(), m_end, CharT(0)) != m_end;
    m_left = 0;
    m_out.Clear();
    const CharT* written = block.data();
    for (const CharT* from = written;;) {
        const CharT* const hit = m_finder.FindFirst(from, m_end);
        if (hit == m_end) break;
        if (IsInDeadLine(from, hit)) continue;
        Place place = {};
        if (!FindRest(hit, place)) {
            // There are too few lines for any match that begins here or further on.
            if (!isLast) m_left = static_cast<size_t>(m_end - hit);
            break;
        }
        from = place.next;  // of the first find line only the first hit in a line counts
        if (!Fits(place)) continue;
        m_out.Append(written, hit);
        PutReplacement(place);
        ++changes;
        written = m_replacement.size() > 1 ? place.last + m_find.back().size() : place.last;
        from = GoOn(place.last);
    }
    if (m_out.Size() == 0 && written == block.data()) return block.substr(0, block.size() - m_left);
    m_out.Append(written, m_end - m_left);
    return m_out.Get();
}

/// True when a zero character ends the search before the hit, with `from` moved to that line's end.
template <class CharT>
bool PassingLines<CharT>::IsInDeadLine(const CharT*& from, const CharT* hit) {
    if (!m_hasZero) return false;
    const CharT* const zero = FindUnit(from, hit, CharT(0));
    if (zero == hit) return false;
    from = FindLineBreak(zero, m_end);
    return true;
}

/// False when the block has too few lines after the hit's.
template <class CharT>
bool PassingLines<CharT>::FindRest(const CharT* hit, Place& place) const {
    const auto line = FindLineEnd(hit + m_find.front().size(), m_end);
    place = {line.textEnd, line.breakLength, line.nextLine, line.nextLine};
    for (size_t i = 2; i < m_find.size() && place.last != m_end; ++i)
        place.last = FindLineEnd(place.last, m_end).nextLine;
    return place.last != m_end;
}

/// Do the find lines after the first fit? compatibility: 3
template <class CharT>
bool PassingLines<CharT>::Fits(const Place& place) const {
    const CharT* begin = place.next;
    for (size_t i = 1; i + 4 <= m_find.size(); ++i) {
        const auto line = FindLineEnd(begin, m_end);
        if (View(begin, static_cast<size_t>(line.textEnd - begin)) != m_find[i]) return false;
        begin = line.nextLine;
    }
    return View(place.last, static_cast<size_t>(m_end - place.last)).starts_with(m_find.back());
}

/// The first line ends as it did, with no break at all when that is a lone CR, which is lost. A line that is added has
/// a break in any case.
template <class CharT>
void PassingLines<CharT>::PutReplacement(const Place& place) {
    static constexpr CharT kLf = '\n';
    const View lineBreak(place.lineEnd, place.breakLength);
    m_out.Append(m_replacement.front());
    m_out.Append(lineBreak);
    for (size_t i = 1; i + 1 < m_replacement.size(); ++i) {
        m_out.Append(m_replacement[i]);
        m_out.Append(lineBreak.empty() ? View(&kLf, 1) : lineBreak);
    }
    if (m_replacement.size() > 1) m_out.Append(m_replacement.back());
}

/// Where the search goes on: at the end of the match's last line as it was found, in the line as it then stands.
template <class CharT>
const CharT* PassingLines<CharT>::GoOn(const CharT* last) const {
    const CharT* const from = last + m_find.back().size();
    if (m_replacement.size() == 1 || m_replacement.back().size() >= m_find.back().size()) return from;
    const size_t skipped = m_find.back().size() - m_replacement.back().size();
    return FindLineBreak(from, from + std::min(skipped, static_cast<size_t>(m_end - from)));
}

template class PassingLines<char>;
template class PassingLines<WideChar>;

}  // namespace QVFindAndReplace
