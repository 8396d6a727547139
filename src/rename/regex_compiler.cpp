// The grammar, and what it is compiled to, follow the standard library's compiler step by step: the order in which
// alternatives are tried, what a count copies, and the number of states at which an expression is too large.
#include <algorithm>
#include <utility>

#include "rename/regex_program.h"
#include "rename/regex_scanner.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

using namespace std::regex_constants;

constexpr size_t kMostStates = 100'000;
constexpr uint32_t kNoState = RegexState::kNoState;

/// A part of the program that is entered at one state and left at another, whose `next` is still open.
struct Piece {
    uint32_t start = 0;
    uint32_t end = 0;
    bool canBeEmpty = true;  // may match without taking a unit
};

/// A group that has not ended, or the whole expression.
struct OpenGroup {
    RegexToken kind = RegexToken::GroupBegin;
    uint32_t number = 0;                 // of a GroupBegin
    Piece begin = {};                    // not of lookaheads
    std::optional<Piece> branches = {};  // that have ended, joined
    std::optional<Piece> sequence = {};  // the terms of the present one
};

class Compiler {
public:
    Compiler(std::wstring_view pattern, bool ignoresCase) : m_scanner(pattern), m_ignoresCase(ignoresCase) {}

    RegexProgram Compile() {
        Open(RegexToken::GroupBegin);
        for (;;) {
            if (CompileTerm()) continue;
            EndBranch();
            if (Take(RegexToken::Bar)) continue;
            if (m_open.size() == 1) break;
            if (!Take(RegexToken::GroupEnd)) FailRegex(error_paren);
            CloseGroup();
        }
        if (m_scanner.Token() != RegexToken::End) FailRegex(error_paren);
        Piece all = Closed(m_open.back());
        Append(all, InsertPiece({RegexOp::Accept}));
        Finish();
        return std::move(m_program);
    }

private:
    bool Take(RegexToken token) {
        if (m_scanner.Token() != token) return false;
        m_scanner.Advance();
        return true;
    }

    RegexState& At(uint32_t state) { return m_program.states[state]; }

    uint32_t Insert(const RegexState& state) {
        m_program.states.push_back(state);
        if (m_program.states.size() > kMostStates) FailRegex(error_space);
        return static_cast<uint32_t>(m_program.states.size() - 1);
    }

    Piece InsertPiece(const RegexState& state, bool canBeEmpty = true) {
        const uint32_t number = Insert(state);
        return {number, number, canBeEmpty};
    }

    void Append(Piece& piece, const Piece& with) {
        At(piece.end).next = with.start;
        piece.end = with.end;
        piece.canBeEmpty = piece.canBeEmpty && with.canBeEmpty;
    }

    void AppendTerm(const Piece& term) {
        std::optional<Piece>& sequence = m_open.back().sequence;
        if (sequence)
            Append(*sequence, term);
        else
            sequence = term;
    }

    /// False where no term begins.
    bool CompileTerm() {
        const RegexToken token = m_scanner.Token();
        switch (token) {
            case RegexToken::TextBegin: return CompileAssertion({RegexOp::TextBegin});
            case RegexToken::TextEnd: return CompileAssertion({RegexOp::TextEnd});
            case RegexToken::WordBorder: return CompileAssertion({RegexOp::WordBorder});
            case RegexToken::NoWordBorder: return CompileAssertion({RegexOp::WordBorder, true});
            case RegexToken::Any: return CompileAtom({RegexOp::Any}, false);
            case RegexToken::Unit: return CompileAtom(UnitState(m_scanner.Unit()), false);
            case RegexToken::LetterClass: return CompileLetterClass(m_scanner.Unit());
            case RegexToken::BackReference: return CompileBackReference(static_cast<uint32_t>(m_scanner.Number()));
            case RegexToken::ClassBegin:
            case RegexToken::NegatedClassBegin: return CompileClass(token == RegexToken::NegatedClassBegin);
            case RegexToken::GroupBegin:
            case RegexToken::PlainGroupBegin:
            case RegexToken::LookaheadBegin:
            case RegexToken::NegativeLookaheadBegin:
                m_scanner.Advance();
                Open(token);
                return true;
            default: return false;
        }
    }

    /// Nothing can be counted after it.
    bool CompileAssertion(const RegexState& state) {
        m_scanner.Advance();
        AppendTerm(InsertPiece(state));
        return true;
    }

    bool CompileAtom(const RegexState& state, bool canBeEmpty) {
        m_scanner.Advance();
        AppendTerm(Quantified(InsertPiece(state, canBeEmpty)));
        return true;
    }

    RegexState UnitState(wchar_t unit) const {
        const wchar_t lower = Win32::LowerAscii(unit);
        const bool hasCase = m_ignoresCase && lower != Win32::UpperAscii(unit);
        return {hasCase ? RegexOp::UnitIgnoringCase : RegexOp::Unit, false, hasCase ? lower : unit};
    }

    RegexState SetState(CharacterSet set) {
        m_program.sets.push_back(std::move(set));
        return {.op = RegexOp::Set, .index = static_cast<uint32_t>(m_program.sets.size() - 1)};
    }

    bool CompileLetterClass(wchar_t letter) { return CompileAtom(SetState(LetterClass(letter)), false); }

    bool CompileClass(bool isNegated) {
        m_scanner.Advance();
        CharacterSet set = ReadCharacterClass(m_scanner, isNegated, m_ignoresCase);
        AppendTerm(Quantified(InsertPiece(SetState(std::move(set)), false)));
        return true;
    }

    bool CompileBackReference(uint32_t group) {
        m_scanner.Advance();
        if (group >= m_program.groups || m_isOpen[group]) FailRegex(error_backref);
        AppendTerm(Quantified(InsertPiece({.op = RegexOp::BackReference, .isSpecial = m_ignoresCase, .index = group})));
        return true;
    }

    void Open(RegexToken kind) {
        OpenGroup group = {.kind = kind, .number = m_program.groups};
        if (kind == RegexToken::GroupBegin) {
            group.begin = InsertPiece({.op = RegexOp::GroupBegin, .index = m_program.groups++});
            m_isOpen.push_back(true);
        } else if (kind == RegexToken::PlainGroupBegin) {
            group.begin = InsertPiece({});
        }
        m_open.push_back(group);
    }

    void EndBranch() {
        AppendTerm(InsertPiece({}));
        OpenGroup& group = m_open.back();
        const Piece branch = *std::exchange(group.sequence, std::nullopt);
        group.branches = group.branches ? Either(*group.branches, branch) : branch;
    }

    Piece Either(Piece first, Piece second) {
        const bool canBeEmpty = first.canBeEmpty || second.canBeEmpty;
        const Piece end = InsertPiece({});
        Append(first, end);
        Append(second, end);
        return {Insert({.op = RegexOp::Alternative, .next = second.start, .other = first.start}), end.end, canBeEmpty};
    }

    void CloseGroup() {
        const OpenGroup group = m_open.back();
        m_open.pop_back();
        const Piece piece = Closed(group);
        const bool isLookahead = At(piece.end).op == RegexOp::Lookahead;
        AppendTerm(isLookahead ? piece : Quantified(piece));
    }

    Piece Closed(const OpenGroup& group) {
        Piece content = *group.branches;
        if (group.kind == RegexToken::LookaheadBegin || group.kind == RegexToken::NegativeLookaheadBegin) {
            Append(content, InsertPiece({RegexOp::Accept}));
            const bool isNegative = group.kind == RegexToken::NegativeLookaheadBegin;
            return InsertPiece({.op = RegexOp::Lookahead, .isSpecial = isNegative, .other = content.start});
        }
        Piece piece = group.begin;
        Append(piece, content);
        if (group.kind == RegexToken::GroupBegin) {
            m_isOpen[group.number] = false;
            Append(piece, InsertPiece({.op = RegexOp::GroupEnd, .index = group.number}));
        }
        return piece;
    }

    Piece Quantified(Piece piece) {
        for (;;) {
            if (Take(RegexToken::Star))
                piece = Star(piece);
            else if (Take(RegexToken::Plus))
                piece = Plus(piece);
            else if (Take(RegexToken::Question))
                piece = Optional(piece);
            else if (Take(RegexToken::CountBegin))
                piece = Counted(piece);
            else
                return piece;
        }
    }

    /// Only what can be empty needs to be kept from being repeated without end.
    RegexState RepeatOf(const Piece& piece, bool isLazy) const {
        return {.op = RegexOp::Repeat,
                .isSpecial = isLazy,
                .other = piece.start,
                .index = piece.canBeEmpty ? 0 : RegexState::kNoLoop};
    }

    Piece Star(Piece piece) {
        const bool isLazy = Take(RegexToken::Question);
        const Piece repeat = InsertPiece(RepeatOf(piece, isLazy));
        Append(piece, repeat);
        return repeat;
    }

    Piece Plus(Piece piece) {
        const bool isLazy = Take(RegexToken::Question);
        const bool canBeEmpty = piece.canBeEmpty;
        Append(piece, InsertPiece(RepeatOf(piece, isLazy)));
        piece.canBeEmpty = canBeEmpty;
        return piece;
    }

    Piece Optional(Piece piece) {
        const bool isLazy = Take(RegexToken::Question);
        const Piece end = InsertPiece({});
        Piece repeat = InsertPiece(RepeatOf(piece, isLazy));
        Append(piece, end);
        Append(repeat, end);
        return repeat;
    }

    int32_t TakeNumber() {
        const int32_t number = m_scanner.Number();
        m_scanner.Advance();
        return number;
    }

    Piece Counted(const Piece& piece) {
        if (m_scanner.Token() != RegexToken::Number) FailRegex(error_badbrace);
        const int64_t least = TakeNumber();
        Piece all = InsertPiece({});
        bool isEndless = false;
        int64_t more = 0;
        if (Take(RegexToken::Comma)) {
            isEndless = m_scanner.Token() != RegexToken::Number;
            if (!isEndless) more = TakeNumber() - least;
        }
        if (!Take(RegexToken::CountEnd)) FailRegex(error_brace);
        const bool isLazy = Take(RegexToken::Question);
        for (int64_t at = 0; at < least; ++at) Append(all, Copy(piece));
        if (isEndless)
            AppendEndless(all, piece, isLazy);
        else
            AppendOptional(all, piece, more, isLazy);
        all.canBeEmpty = least <= 0 || piece.canBeEmpty;
        return all;
    }

    void AppendEndless(Piece& all, const Piece& piece, bool isLazy) {
        Piece copy = Copy(piece);
        const Piece repeat = InsertPiece(RepeatOf(copy, isLazy));
        Append(copy, repeat);
        Append(all, repeat);
    }

    void AppendOptional(Piece& all, const Piece& piece, int64_t count, bool isLazy) {
        if (count < 0) FailRegex(error_badbrace);
        const Piece end = InsertPiece({});
        std::vector<uint32_t> repeats;
        for (; count > 0; --count) {
            const Piece copy = Copy(piece);
            repeats.push_back(Insert(RepeatOf(copy, isLazy)));
            Append(all, {repeats.back(), copy.end});
        }
        Append(all, end);
        for (const uint32_t repeat : repeats) At(repeat).next = end.start;
    }

    Piece Copy(const Piece& piece) {
        m_copies.resize(m_program.states.size(), kNoState);
        m_toCopy.push_back(piece.start);
        while (!m_toCopy.empty()) {
            const uint32_t original = m_toCopy.back();
            m_toCopy.pop_back();
            CopyState(original, original == piece.end);
        }
        for (const uint32_t original : m_copied) {
            RegexState& copy = At(m_copies[original]);
            if (copy.next != kNoState) copy.next = m_copies[copy.next];
            if (copy.other != kNoState) copy.other = m_copies[copy.other];
        }
        const Piece result = {m_copies[piece.start], m_copies[piece.end], piece.canBeEmpty};
        for (const uint32_t original : m_copied) m_copies[original] = kNoState;
        m_copied.clear();
        return result;
    }

    /// A state can come here twice. Its first copy is then left over, as in the standard library: it counts as a state.
    void CopyState(uint32_t original, bool isEnd) {
        const RegexState state = At(original);
        if (m_copies[original] == kNoState) m_copied.push_back(original);
        m_copies[original] = Insert(state);
        const auto copyToo = [this](uint32_t other) {
            if (other != kNoState && m_copies[other] == kNoState) m_toCopy.push_back(other);
        };
        copyToo(state.other);
        if (!isEnd) copyToo(state.next);
    }

    void Finish() {
        for (RegexState& state : m_program.states) {
            state.next = SkipNothing(state.next);
            state.other = SkipNothing(state.other);
            if (state.op == RegexOp::Repeat && state.index != RegexState::kNoLoop) state.index = m_program.loops++;
        }
        for (uint32_t number = 0; number < m_program.states.size(); ++number)
            if (IsRun(number)) At(number).op = RegexOp::Run;
    }

    uint32_t SkipNothing(uint32_t from) {
        uint32_t to = from;
        while (to != kNoState && At(to).op == RegexOp::Nothing) to = At(to).next;
        while (from != to) from = std::exchange(At(from).next, to);  // long ways are gone once
        return to;
    }

    bool IsRun(uint32_t number) {
        const RegexState& state = At(number);
        if (state.op != RegexOp::Repeat || state.isSpecial || state.index != RegexState::kNoLoop) return false;
        return TakesOneUnit(At(state.other).op) && At(state.other).next == number;
    }

    RegexScanner m_scanner;
    bool m_ignoresCase;
    RegexProgram m_program;
    std::vector<OpenGroup> m_open;
    std::vector<bool> m_isOpen;  // by the group's number
    // Of Copy, kept for their memory: the copies by the original, the originals that have one, those still to do.
    std::vector<uint32_t> m_copies;
    std::vector<uint32_t> m_copied;
    std::vector<uint32_t> m_toCopy;
};

}  // namespace

RegexProgram CompileRegex(std::wstring_view pattern, bool ignoresCase) {
    return Compiler(pattern, ignoresCase).Compile();
}

}  // namespace BatchRename
