#include "findreplace/line_edit.h"

#include <algorithm>
#include <utility>

#include "findreplace/request.h"

namespace QVFindAndReplace {

template <class CharT>
void LineEdit<CharT>::Begin(View line) {
    m_line = line;
    m_isChanged = m_isFinished = false;
    m_passed = 0;
    m_done.Clear();
    m_ahead = line;
    m_put = 0;
    m_isBehindReplacement = false;
}

template <class CharT>
PassingText<CharT> LineEdit<CharT>::TakeText() {
    m_done.Append(m_ahead);
    return std::exchange(m_done, {});
}

template <class CharT>
std::basic_string<CharT> LineEdit<CharT>::GetPart(size_t from, size_t length) const {
    const View done = GetDone();
    std::basic_string<CharT> part;
    if (from < done.size()) part = done.substr(from, length);
    const size_t fromAhead = from + part.size() - done.size();
    if (part.size() < length && fromAhead < m_ahead.size()) part += m_ahead.substr(fromAhead, length - part.size());
    return part;
}

template <class CharT>
void LineEdit<CharT>::Skip(Span match) {
    const size_t lengthBefore = m_ahead.size();
    Pass(match.start + match.length);
    GoOnAfter(match, lengthBefore);
}

template <class CharT>
bool LineEdit<CharT>::PassReplacement(Span match) {
    const bool isBeside = m_isBehindReplacement && match.start == 0 && match.length == 0;
    const bool isInside = m_put > 0 && match.start + match.length <= m_put;
    if (isBeside) {
        GoOnAfter(match, m_ahead.size());
    } else if (isInside) {
        Pass(m_put);
        m_isBehindReplacement = true;
    }
    return isBeside || isInside;
}

template <class CharT>
void LineEdit<CharT>::Replace(Span match, View replacement, LineMatcher<CharT>& matcher) {
    if (!m_isChanged) {
        m_isChanged = true;
        // Most replacements are about as long as what they replace; a long line must not be copied while it grows.
        m_done.Reserve(m_line.size() + m_line.size() / 8 + replacement.size());
        m_done.Append(m_line.substr(0, m_passed));
    }
    const size_t lengthBefore = m_ahead.size();
    Pass(match.start);
    m_ahead.remove_prefix(match.length);
    // What a longer replacement pushes back is searched again, unless it is plain that nothing is found in there. An
    // empty match would be found at the same place for ever.
    size_t kept = std::min(replacement.size(), match.length);
    if (match.length == 0 || !matcher.MayBeginIn(replacement.substr(kept), m_ahead)) kept = replacement.size();
    m_done.Append(replacement.substr(0, kept));
    m_put = replacement.size() - kept;
    PushBack(replacement.substr(kept));
    m_isBehindReplacement = kept == replacement.size() && kept > 0;
    if (kept < match.length) Pass(match.length - kept);
    GoOnAfter(match, lengthBefore);
}

/// Moves the position over text that stays as it is. Further than to the line's end means out of the line.
template <class CharT>
void LineEdit<CharT>::Pass(size_t length) {
    if (length > m_ahead.size()) {
        m_isFinished = true;
        length = m_ahead.size();
    }
    if (m_isChanged)
        m_done.Append(m_ahead.substr(0, length));
    else
        m_passed += length;
    m_ahead.remove_prefix(length);
    m_put -= std::min(m_put, length);
    m_isBehindReplacement = false;
}

template <class CharT>
void LineEdit<CharT>::GoOnAfter(Span match, size_t lengthBefore) {
    if (match.length > 0) return;
    const bool wasAtEnd = match.start == lengthBefore;
    Pass(wasAtEnd ? m_ahead.size() + 1 : 1);
}

/// Puts `text` in front of the text ahead.
template <class CharT>
void LineEdit<CharT>::PushBack(View text) {
    if (text.empty()) return;
    const CharT* const roomEnd = m_room.get() + m_roomSize;
    const bool isInRoom = m_room && m_ahead.data() >= m_room.get() && m_ahead.data() + m_ahead.size() == roomEnd;
    const size_t free = isInRoom ? static_cast<size_t>(m_ahead.data() - m_room.get()) : 0;
    if (free < text.size()) {
        // Twice the room needed: moving the text is paid for by what fits in front of it before it must move again.
        const size_t needed = 2 * (m_ahead.size() + text.size());
        if (m_roomSize >= needed) {
            std::copy_backward(m_ahead.begin(), m_ahead.end(), m_room.get() + m_roomSize);
        } else {
            auto larger = std::make_unique_for_overwrite<CharT[]>(needed);
            std::copy_backward(m_ahead.begin(), m_ahead.end(), larger.get() + needed);
            m_room = std::move(larger);
            m_roomSize = needed;
        }
        m_ahead = View(m_room.get() + m_roomSize - m_ahead.size(), m_ahead.size());
    }
    CharT* const front = m_room.get() + (m_ahead.data() - m_room.get()) - text.size();
    std::copy(text.begin(), text.end(), front);
    m_ahead = View(front, m_ahead.size() + text.size());
}

template class LineEdit<char>;
template class LineEdit<WideChar>;

}  // namespace QVFindAndReplace
