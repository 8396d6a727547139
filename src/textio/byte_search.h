// byte_search.h - searching text at the memory's speed. The one place that knows the processor's wide registers; every
// function here gives exactly what the obvious loop over single units would give.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace QVUtils {

/// Which characters count as one where case is ignored: a table of what stands for each unit.
template <class CharT>
class CaseFolding {
public:
    /// In 8-bit text A to Z and no other letter. In 16-bit text each unit by the system's table of single characters,
    /// the same for every user.
    CaseFolding();

    CharT operator()(CharT unit) const { return m_folded[Index(unit)]; }

    /// From now on `unit` counts as `other` does.
    void Equate(CharT unit, CharT other);

    /// All units that count as `unit` does, itself among them.
    std::vector<CharT> UnitsLike(CharT unit) const;

private:
    static size_t Index(CharT unit) { return static_cast<std::make_unsigned_t<CharT>>(unit); }

    std::vector<CharT> m_folded;
    std::vector<CharT> m_others;  // the units that something else stands for
};

/// One such table for all, made when it is first asked for. Nothing is equated in it.
template <class CharT>
const CaseFolding<CharT>& PlainCaseFolding();

// All take the text as [begin, end) and give a pointer into it, or `end` when there is no hit. CharT is a type of one
// or two bytes: char, wchar_t on Windows, char16_t elsewhere.

/// The first CR or LF.
template <class CharT>
const CharT* FindLineBreak(const CharT* begin, const CharT* end);

/// Is every CR followed by a LF, and every LF preceded by a CR?
template <class CharT>
bool HasOnlyCrLf(const CharT* begin, const CharT* end);

struct LineBegins {
    size_t lines = 0;
    bool hasZero = false;  // a unit of the text is zero
};

/// How many lines begin in the text: at each unit after a LF, and after a CR unless it is a LF. `begin[-1]` is looked
/// at too, and must be there when the text is not empty.
template <class CharT>
LineBegins CountLineBegins(const CharT* begin, const CharT* end);

/// The first unit equal to `unit`.
template <class CharT>
const CharT* FindUnit(const CharT* begin, const CharT* end, CharT unit);

/// Units that MarkUnits looks at, at most.
inline constexpr size_t kMarks = 64;

/// Where text has many hits of one byte: bit N is set when the Nth of the next kMarks bytes is there and is `unit`.
uint64_t MarkUnits(const char* begin, const char* end, char unit);

/// A text made ready to be found many times.
///
/// Time of a search: one look at each unit plus one comparison for each place where the text's first and last unit fit.
template <class CharT>
class SequenceFinder {
public:
    /// `folding`: null where case counts; it must outlive the object.
    SequenceFinder(std::basic_string<CharT> text, const CaseFolding<CharT>* folding);

    /// The first place where the text stands; `begin` for an empty one.
    const CharT* FindFirst(const CharT* begin, const CharT* end) const;
    /// The last such place; `end` for an empty text.
    const CharT* FindLast(const CharT* begin, const CharT* end) const;

    /// Does the text stand at `at`, where as many units are?
    bool StandsAt(const CharT* at) const;

private:
    template <size_t kUnits>
    const CharT* FindFirstBy(const CharT* begin, const CharT* end) const;
    template <size_t kUnits>
    const CharT* FindLastBy(const CharT* begin, const CharT* end) const;

    std::basic_string<CharT> m_text;  // folded
    const CaseFolding<CharT>* m_folding;
    std::vector<CharT> m_first;  // what counts as the text's first unit
    std::vector<CharT> m_last;
};

}  // namespace QVUtils
