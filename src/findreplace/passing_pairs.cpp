#include "findreplace/passing_pairs.h"

#include <utility>

namespace QVFindAndReplace {

using QVUtils::FindLineBreak;
using QVUtils::FindUnit;

namespace {

template <class CharT>
bool IsPlain(const std::basic_string<CharT>& text) {
    return text.find_first_of(std::basic_string<CharT>{CharT('\r'), CharT('\n'), CharT(0)}) == text.npos;
}

/// Could a match of `item` begin or end inside of a character, whatever stands around it?
template <class CharT>
bool CouldCut(const std::basic_string<CharT>& item, QVUtils::EncodingKind kind) {
    if (kind == QVUtils::EncodingKind::CodePage) return false;
    if constexpr (sizeof(CharT) == 1) {
        return CutsCharacter(std::string_view("\xF0\x80\x80"), item) ||
               CutsCharacter(std::string_view("\xF0\x80"), item) || CutsCharacter(std::string_view("\xF0"), item) ||
               CutsCharacter(item, std::string_view("\x80\x80\x80"));
    } else {
        constexpr CharT kHigh = 0xD800;
        constexpr CharT kLow = 0xDC00;
        return CutsCharacter(std::basic_string_view<CharT>(&kHigh, 1), item) ||
               CutsCharacter(item, std::basic_string_view<CharT>(&kLow, 1));
    }
}

}  // namespace

template <class CharT>
bool PassingPair<CharT>::CanReplace(const Text& item, const Text& replacement, QVUtils::EncodingKind kind) {
    return !item.empty() && IsPlain(item) && IsPlain(replacement) && !CouldCut(item, kind);
}

template <class CharT>
PassingPair<CharT>::PassingPair(const Text& item, const Text& replacement)
    : m_item(item), m_replacement(replacement), m_finder(item, nullptr) {
    if (replacement.size() <= item.size()) return;
    // What goes beyond the match's end is searched again. An item that is there as a whole would be found without end:
    // the search goes on after the replacement.
    const View again = View(m_replacement).substr(item.size());
    if (again.find(item) != View::npos) return;
    for (size_t length = std::min(item.size() - 1, again.size()); length > 0; --length)
        if (again.ends_with(View(item).substr(0, length))) m_overlaps.push_back(length);
}

template <class CharT>
typename PassingPair<CharT>::View PassingPair<CharT>::Replace(View block, bool endsLine, PassingText<CharT>& out,
                                                              uint64_t& changes) {
    m_block = block;
    m_end = block.data() + block.size();
    m_endsLine = endsLine;
    m_hasZero.reset();
    m_left = 0;
    out.Clear();
    uint64_t count = 0;
    const CharT* written = block.data();
    const CharT* at = BeginSearch();
    while (const CharT* const hit = NextHit(at)) {
        out.Append(written, hit);
        written = PutReplacement(hit, out, count);
        if (m_left > 0) break;
        if (m_replacement.size() < m_item.size()) m_skip = m_item.size() - m_replacement.size();
        at = Skip(written);
    }
    if (endsLine) {
        m_skip = 0;
        m_isLineDone = false;
    }
    changes += count;
    if (count == 0) return block.substr(0, block.size() - m_left);
    out.Append(written, m_end - m_left);
    return out.Get();
}

/// Where the search goes on in a line that has begun in the block before.
template <class CharT>
const CharT* PassingPair<CharT>::BeginSearch() {
    if (!m_isLineDone) return Skip(m_block.data());
    const CharT* const at = FindLineBreak(m_block.data(), m_end);
    m_isLineDone = at == m_end;
    return at;
}

/// After a shorter replacement the position jumps over some text, but never beyond the line.
template <class CharT>
const CharT* PassingPair<CharT>::Skip(const CharT* from) {
    if (m_skip == 0) return from;
    const CharT* const limit = from + std::min(m_skip, static_cast<size_t>(m_end - from));
    const CharT* const stop = FindLineBreak(from, limit);
    m_skip = stop == limit ? m_skip - static_cast<size_t>(limit - from) : 0;
    return stop;
}

/// Null when there is none.
template <class CharT>
const CharT* PassingPair<CharT>::NextHit(const CharT* from) {
    while (from != m_end) {
        const CharT* const hit = m_finder.FindFirst(from, m_end);
        if (hit == m_end && m_endsLine) return nullptr;
        const CharT* const zero = FindZero(from, hit);
        if (zero == hit && hit != m_end) return hit;
        if (zero == hit) {
            m_left = std::min(m_item.size() - 1, static_cast<size_t>(m_end - from));
            return nullptr;
        }
        // A zero character ends the search in its line.
        from = FindLineBreak(zero, m_end);
        m_isLineDone = from == m_end;
    }
    return nullptr;
}

/// The first zero character of a piece of the block; mostly one look at all of the block says that there is none.
template <class CharT>
const CharT* PassingPair<CharT>::FindZero(const CharT* begin, const CharT* end) {
    if (!m_hasZero) m_hasZero = FindUnit(m_block.data(), m_end, CharT(0)) != m_end;
    return *m_hasZero ? FindUnit(begin, end, CharT(0)) : end;
}

/// Puts what takes a hit's place, and gives where the text goes on. Where too little follows to tell that, nothing is
/// put, and all from the hit on is left for the next block.
template <class CharT>
const CharT* PassingPair<CharT>::PutReplacement(const CharT* hit, PassingText<CharT>& out, uint64_t& count) {
    const size_t sizeBefore = out.Size();
    const uint64_t countBefore = count;
    const CharT* after = hit;
    for (size_t overlap = 0;;) {
        after += m_item.size() - overlap;
        out.Append(m_replacement);
        ++count;
        if (m_overlaps.empty()) return after;
        const View following(after, std::min(m_item.size(), static_cast<size_t>(m_end - after)));
        if (!m_endsLine && following.size() < m_item.size()) {
            out.Shorten(sizeBefore);
            count = countBefore;
            m_left = static_cast<size_t>(m_end - hit);
            return hit;
        }
        overlap = OverlapWith(following);
        if (overlap == 0) return after;
        out.Shorten(out.Size() - overlap);
    }
}

/// The length of the hit that begins in the last replacement, as far as it lies there; 0 when none does.
template <class CharT>
size_t PassingPair<CharT>::OverlapWith(View following) const {
    for (const size_t length : m_overlaps)
        if (following.starts_with(View(m_item).substr(length))) return length;
    return 0;
}

template <class CharT>
std::optional<PassingPairs<CharT>> PassingPairs<CharT>::Make(Request& request, QVUtils::EncodingKind kind) {
    if (request.FindFault() || (request.GetOptions() & Option::IgnoreCase)) return std::nullopt;
    if ((request.GetOptions() & Option::Wildcard) && request.GetMode() != Mode::Multiline) return std::nullopt;
    const Items<CharT>& items = request.GetItems(kind, CharT());
    if (request.GetMode() == Mode::Multiline && (items.find.size() > 1 || items.replacement.size() > 1))
        return std::nullopt;
    PassingPairs pairs;
    for (const auto& [item, replacement] : PairsOf(items, request.GetMode())) {
        if (!*item || (*item)->empty()) continue;
        if (!*replacement || !PassingPair<CharT>::CanReplace(**item, **replacement, kind)) return std::nullopt;
        pairs.m_stages.push_back({PassingPair<CharT>(**item, **replacement), {}});
    }
    return pairs;
}

template <class CharT>
typename PassingPairs<CharT>::View PassingPairs<CharT>::Replace(View block, bool endsLine, uint64_t& changes) {
    View text = block;
    size_t free = 0;  // the text of the two in which `text` does not lie
    m_left = 0;
    for (Stage& stage : m_stages) {
        if (!stage.left.empty()) {
            PassingText<CharT>& joined = m_texts[free];
            joined.Clear();
            joined.Append(stage.left);
            joined.Append(text);
            text = joined.Get();
            free = 1 - free;
        }
        const View out = stage.pair.Replace(text, endsLine, m_texts[free], changes);
        const View left = text.substr(text.size() - stage.pair.GetLeft());
        // What is left of the block itself is given once more; of what another stage gave, it is kept here.
        if (&stage == &m_stages.front())
            m_left = left.size();
        else
            stage.left = left;
        if (out.data() != text.data()) free = 1 - free;
        text = out;
    }
    return text;
}

template class PassingPair<char>;
template class PassingPair<WideChar>;
template class PassingPairs<char>;
template class PassingPairs<WideChar>;

}  // namespace QVFindAndReplace
