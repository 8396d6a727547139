// line_edit.h - one line while matches in it are replaced one after the other. Knows where the search goes on; finds
// nothing itself.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "findreplace/line_matcher.h"
#include "findreplace/passing_text.h"

namespace QVFindAndReplace {

/// A position in a line cuts it in two: what lies before it is final, what lies ahead of it is still searched.
///
/// After a match the position moves to its end as it was found, applied to the line as it then stands. So a longer
/// replacement is itself searched from there on, and a shorter one lets the position jump over text after it; after
/// the line's end there is nothing to find. After an empty match it moves one character further, at the line's end out
/// of the line. compatibility: 1
///
/// Some replacements would be found in themselves for ever by that: "'" by "''", "id" by "user_id", "*" by "<*>". So a
/// match inside of what the last replacement put there, or an empty one beside it, is left alone, and the position
/// moves to its end. For a plain item such a match is the sign that there would be no end, so nothing else changes.
///
/// The text ahead is kept in one piece with free room in front of it, so that what a longer replacement pushes back in
/// front costs its own length only: any number of replacements in a line takes time in proportion to the text.
template <class CharT>
class LineEdit {
public:
    using View = std::basic_string_view<CharT>;

    /// Starts on a line, which must stay where it is until the edit is committed, at its first character.
    void Begin(View line);

    /// True once the position has left the line: there is nothing more to search in it, not even for an empty match.
    bool IsFinished() const noexcept { return m_isFinished; }

    /// The text to be searched next. Spans below count from its beginning.
    View GetAhead() const noexcept { return m_ahead; }
    /// Characters of the line before the text ahead.
    size_t GetColumn() const noexcept { return m_isChanged ? m_done.Size() : m_passed; }
    bool IsChanged() const noexcept { return m_isChanged; }
    /// The line's text up to the position and from it on.
    View GetDone() const noexcept { return m_isChanged ? m_done.Get() : m_line.substr(0, m_passed); }

    /// Ends the edit: gives the line's new text, of which nothing is kept here.
    PassingText<CharT> TakeText();

    /// At most `length` characters of the line as it stands, from column `from` on.
    std::basic_string<CharT> GetPart(size_t from, size_t length) const;

    /// Moves the position to the end of a match without changing it.
    void Skip(Span match);

    /// True for a match in what the last replacement put there, with the position moved to its end.
    bool PassReplacement(Span match);

    /// Replaces a match of `matcher`.
    void Replace(Span match, View replacement, LineMatcher<CharT>& matcher);

private:
    void Pass(size_t length);
    void PushBack(View text);
    void GoOnAfter(Span match, size_t lengthBefore);

    View m_line;
    bool m_isChanged = false;
    bool m_isFinished = false;
    size_t m_passed = 0;        // while nothing is changed, the units of m_line that are done
    PassingText<CharT> m_done;  // from the first change on
    View m_ahead;
    // Holds m_ahead at its end once something was pushed back. Its front is memory that was not touched yet.
    std::unique_ptr<CharT[]> m_room;
    size_t m_roomSize = 0;
    size_t m_put = 0;                    // units at the front of m_ahead that the last replacement put there
    bool m_isBehindReplacement = false;  // nothing lies between it and the position
};

}  // namespace QVFindAndReplace
