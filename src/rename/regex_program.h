// regex_program.h - a regular expression compiled into states, which regex_matcher carries out.
#pragma once

#include <array>
#include <cstdint>
#include <locale>
#include <string_view>
#include <utility>
#include <vector>

namespace BatchRename {

class RegexScanner;

/// The locale by which expressions tell digits, letters and blanks: the classic one, whatever the process has set.
const std::ctype<wchar_t>& RegexLocale();

/// A named class of characters; some of the standard's classes are several bits of the locale.
struct CharacterClass {
    std::ctype_base::mask bits = {};
    bool hasUnderscore = false;
};

/// True for what "\w" stands for.
bool IsWordUnit(wchar_t unit);

/// The units that a class such as "[^a-z\d]" stands for.
class CharacterSet {
public:
    explicit CharacterSet(bool ignoresCase) : m_ignoresCase(ignoresCase) {}

    void Add(wchar_t unit) { AddRange(unit, unit); }
    /// From `first` to `last`, both within, in the order of their numbers.
    void AddRange(wchar_t first, wchar_t last);
    void Add(CharacterClass members);
    void AddAllBut(CharacterClass members);
    /// The letters that differ from `unit` in case at most.
    void AddEquivalents(wchar_t unit);
    /// To be called once, when everything is added. A negated set holds what was not added.
    void Finish(bool isNegated);

    bool Contains(wchar_t unit) const {
        const auto number = static_cast<uint32_t>(unit);
        return number < 128 ? (m_ascii[number / 64] >> (number % 64) & 1) != 0 : ContainsBeyondAscii(unit);
    }

private:
    void AddAscii(uint32_t unit) { m_ascii[unit / 64] |= uint64_t{1} << (unit % 64); }
    bool ContainsBeyondAscii(wchar_t unit) const;

    bool m_ignoresCase;
    bool m_isNegated = false;
    std::array<uint64_t, 2> m_ascii = {};
    // Beyond ASCII:
    std::vector<std::pair<wchar_t, wchar_t>> m_ranges;  // in their order, none touching the next
    std::ctype_base::mask m_classes = {};
    std::vector<std::ctype_base::mask> m_complements;
};

/// What "\d", "\D" and the like stand for, by the letter.
CharacterSet LetterClass(wchar_t letter);

/// Reads the rest of a class; the scanner stands after its "[" or "[^".
/// @throws std::regex_error
CharacterSet ReadCharacterClass(RegexScanner& scanner, bool isNegated, bool ignoresCase);

enum class RegexOp : uint8_t {
    Nothing,  // of a program being compiled only
    Unit,
    UnitIgnoringCase,  // `unit` is in lower case
    Any,               // all but line breaks
    Set,               // `index`: of the set
    BackReference,     // `index`: of the group; `isSpecial`: ignoring case
    TextBegin,
    TextEnd,
    WordBorder,   // `isSpecial`: no border
    Lookahead,    // `other`: what is to match here; `isSpecial`: is not to match
    GroupBegin,   // `index`: of the group
    GroupEnd,     // the same
    Alternative,  // `other`, then `next`
    Repeat,       // `other`, which leads back, then `next`; `isSpecial`: the other way round
    Run,          // as often as possible the state `other`, which takes one unit, then fewer times
    Accept,
};

constexpr bool TakesOneUnit(RegexOp op) {
    return op == RegexOp::Unit || op == RegexOp::UnitIgnoringCase || op == RegexOp::Any || op == RegexOp::Set;
}

struct RegexState {
    RegexOp op = RegexOp::Nothing;
    bool isSpecial = false;
    wchar_t unit = 0;
    uint32_t next = kNoState;
    uint32_t other = kNoState;
    uint32_t index = kNoLoop;  // of a Repeat: its counter

    static constexpr uint32_t kNoState = UINT32_MAX;
    static constexpr uint32_t kNoLoop = UINT32_MAX;  // what repeats takes at least one unit
};

struct RegexProgram {
    std::vector<RegexState> states;
    std::vector<CharacterSet> sets;
    uint32_t start = 0;
    uint32_t groups = 0;  // the first is the whole match
    uint32_t loops = 0;   // with a counter
};

/// Compiles an expression of the ECMAScript grammar as the standard library reads it. Nothing recurses, and time and
/// memory are bounded by the expression's length and by 100,000 states, the standard library's own limit.
/// @throws std::regex_error with the code that the standard library gives
RegexProgram CompileRegex(std::wstring_view pattern, bool ignoresCase);

}  // namespace BatchRename
