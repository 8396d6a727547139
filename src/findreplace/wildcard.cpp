#include "findreplace/wildcard.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "findreplace/request.h"
#include "textio/byte_search.h"

namespace QVFindAndReplace {
namespace {

using QVUtils::FindLastSequence;
using QVUtils::FindLineBreak;
using QVUtils::FindSequence;
using QVUtils::FindUnit;
using QVUtils::FoldCase;
namespace RegexError = std::regex_constants;

/// One step of a compiled pattern. Targets are relative, so that a piece of program can be copied as it is.
template <class CharT>
struct State {
    enum class Kind : uint8_t {
        Unit,   // this character, then the next state
        Any,    // any character but a line break, then the next state
        Split,  // the next state first, then the one at `target`
        Jump,   // the one at `target`
    };
    Kind kind;
    CharT unit = 0;
    int32_t target = 0;
};

template <class CharT>
using Program = std::vector<State<CharT>>;

constexpr uint32_t kUnbounded = std::numeric_limits<uint32_t>::max();
constexpr size_t kMaxStates = 100'000;

/// How often the term before it is repeated: at least `least` times, at most `most`.
struct Quantifier {
    uint32_t least;
    uint32_t most;
};

template <class CharT>
bool IsAny(CharT unit) {
    if constexpr (sizeof(CharT) > 1) {
        if (unit == CharT(0x2028) || unit == CharT(0x2029)) return false;
    }
    return unit != CharT('\r') && unit != CharT('\n');
}

/// Reads a pattern into its program.
template <class CharT>
class Compiler {
public:
    Compiler(const std::basic_string<CharT>& pattern, bool ignoreCase) : m_pattern(pattern), m_ignoreCase(ignoreCase) {}

    Program<CharT> Compile() {
        Program<CharT> program;
        while (!AtEnd()) {
            if (Peek() == CharT('{')) Fail(RegexError::error_paren);  // only the pattern's start has nothing to count
            Program<CharT> term = CompileAtom(Next());
            while (!AtEnd() && Peek() == CharT('{')) term = Repeat(term, ReadQuantifier());
            Append(program, term);
        }
        return program;
    }

private:
    using S = State<CharT>;

    bool AtEnd() const { return m_position == m_pattern.size(); }
    CharT Peek() const { return m_pattern[m_position]; }
    CharT Next() { return m_pattern[m_position++]; }

    Program<CharT> CompileAtom(CharT unit) const {
        if (unit == CharT('?')) return {{S::Kind::Any}};
        if (unit == CharT('*')) return {{S::Kind::Split, 0, 3}, {S::Kind::Any}, {S::Kind::Jump, 0, -2}};
        return {{S::Kind::Unit, m_ignoreCase ? FoldCase(unit) : unit}};
    }

    static bool IsDigit(CharT unit) { return unit >= CharT('0') && unit <= CharT('9'); }

    Quantifier ReadQuantifier() {
        Next();  // the brace
        if (AtEnd() || !IsDigit(Peek())) Fail(RegexError::error_badbrace);
        Quantifier quantifier = {};
        quantifier.least = quantifier.most = ReadCount();
        if (ReadsOn(CharT(','))) quantifier.most = !AtEnd() && IsDigit(Peek()) ? ReadCount() : kUnbounded;
        if (!ReadsOn(CharT('}'))) Fail(Peek() == CharT(',') ? RegexError::error_brace : RegexError::error_badbrace);
        if (quantifier.most < quantifier.least) Fail(RegexError::error_badbrace);
        return quantifier;
    }

    /// Takes `unit` when it comes next. The pattern's end inside braces is an error of its own.
    bool ReadsOn(CharT unit) {
        if (AtEnd()) Fail(RegexError::error_brace);
        if (Peek() != unit) return false;
        Next();
        return true;
    }

    /// Larger counts than any program may have states need no telling apart.
    uint32_t ReadCount() {
        uint32_t count = 0;
        while (!AtEnd() && IsDigit(Peek())) {
            count = count * 10 + static_cast<uint32_t>(Next() - CharT('0'));
            count = std::min<uint32_t>(count, kMaxStates + 1);
        }
        return count;
    }

    /// Copies of a term: the required ones in a row; then one that repeats, or the optional ones, each inside the one
    /// before it. Longer ways come first everywhere: all counts are greedy.
    Program<CharT> Repeat(const Program<CharT>& term, Quantifier quantifier) const {
        const size_t optional = quantifier.most == kUnbounded ? 1 : quantifier.most - quantifier.least;
        // The room needed is known beforehand, and refused before any of it is taken.
        CheckSize((term.size() + 1) * (quantifier.least + optional));
        Program<CharT> result;
        for (uint32_t i = 0; i < quantifier.least; ++i) Append(result, term);
        const auto length = static_cast<int32_t>(term.size());
        if (quantifier.most == kUnbounded) {
            result.push_back({S::Kind::Split, 0, length + 2});
            Append(result, term);
            result.push_back({S::Kind::Jump, 0, -length - 1});
            return result;
        }
        for (size_t left = optional; left > 0; --left) {
            result.push_back({S::Kind::Split, 0, static_cast<int32_t>(left) * (length + 1)});
            Append(result, term);
        }
        return result;
    }

    void Append(Program<CharT>& program, const Program<CharT>& term) const {
        CheckSize(program.size() + term.size());
        program.insert(program.end(), term.begin(), term.end());
    }
    void CheckSize(size_t states) const {
        if (states > kMaxStates) Fail(RegexError::error_space);
    }

    [[noreturn]] void Fail(RegexError::error_type code) const {
        std::string shown;
        for (const CharT unit : m_pattern)
            shown += unit >= CharT(' ') && unit < CharT(0x7F) ? static_cast<char>(unit) : '.';
        throw WildcardError(code, shown);
    }

    const std::basic_string<CharT>& m_pattern;
    const bool m_ignoreCase;
    size_t m_position = 0;
};

/// Runs a program over a text: all ways at once, in the order in which a backtracking search would try them, so that
/// the first to arrive is the one it would find.
template <class CharT>
class Simulation {
public:
    using View = std::basic_string_view<CharT>;

    Simulation(Program<CharT> program, bool ignoreCase)
        : m_program(std::move(program)), m_ignoreCase(ignoreCase), m_seenAt(m_program.size() + 1) {}

    bool Find(View text, Span& found) {
        bool isFound = false;
        m_now.clear();
        std::fill(m_seenAt.begin(), m_seenAt.end(), kNever);
        for (size_t position = 0;; ++position) {
            // A way that begins here comes after all that began earlier: the leftmost hit wins.
            if (!isFound) Follow(m_now, 0, position, position);
            if (m_now.empty()) break;
            m_next.clear();
            for (const Thread& thread : m_now) {
                if (thread.state == m_program.size()) {
                    found = {thread.start, position - thread.start};
                    isFound = true;
                    break;  // the ways after it would have been tried later
                }
                if (position < text.size() && Accepts(m_program[thread.state], text[position]))
                    Follow(m_next, thread.state + 1, thread.start, position + 1);
            }
            if (position == text.size()) break;
            m_now.swap(m_next);
        }
        return isFound;
    }

private:
    using S = State<CharT>;
    static constexpr size_t kNever = std::numeric_limits<size_t>::max();

    struct Thread {
        uint32_t state;
        size_t start;
    };

    bool Accepts(const S& state, CharT unit) const {
        if (state.kind == S::Kind::Any) return IsAny(unit);
        return state.unit == (m_ignoreCase ? FoldCase(unit) : unit);
    }

    /// Adds the states that are reached from `state` without a character, first choices first, each once a position.
    void Follow(std::vector<Thread>& threads, uint32_t state, size_t start, size_t position) {
        m_pending.assign(1, state);
        while (!m_pending.empty()) {
            state = m_pending.back();
            m_pending.pop_back();
            if (m_seenAt[state] == position) continue;
            m_seenAt[state] = position;
            if (state == m_program.size()) {
                threads.push_back({state, start});
                continue;
            }
            const S& step = m_program[state];
            const auto target = static_cast<uint32_t>(static_cast<int64_t>(state) + step.target);
            if (step.kind == S::Kind::Split) {
                m_pending.push_back(target);
                m_pending.push_back(state + 1);
            } else if (step.kind == S::Kind::Jump) {
                m_pending.push_back(target);
            } else {
                threads.push_back({state, start});
            }
        }
    }

    const Program<CharT> m_program;
    const bool m_ignoreCase;
    // Kept between searches: a search allocates nothing once they have grown.
    std::vector<size_t> m_seenAt;  // per state, the position for which it was last followed
    std::vector<Thread> m_now;
    std::vector<Thread> m_next;
    std::vector<uint32_t> m_pending;
};

/// What stands between two stars: characters and question marks, of fixed length. Searched by its longest run of
/// characters. A question mark stands for whatever there is: a text in which a hit must end with the line is given
/// without line breaks.
template <class CharT>
class Segment {
public:
    using View = std::basic_string_view<CharT>;

    Segment(View pattern, bool ignoreCase) : m_pattern(pattern), m_ignoreCase(ignoreCase) {
        size_t begin = 0;
        for (size_t i = 0; i <= m_pattern.size(); ++i) {
            if (i < m_pattern.size() && m_pattern[i] != CharT('?')) continue;
            if (i - begin > m_run.length) m_run = {begin, i - begin};
            begin = i + 1;
        }
    }

    size_t Length() const { return m_pattern.size(); }
    View Run() const { return View(m_pattern).substr(m_run.start, m_run.length); }

    /// The first place in `text`, from `from` on, where the segment fits; npos when there is none.
    size_t FindFirst(View text, size_t from) const {
        if (text.size() < from || text.size() - from < Length()) return View::npos;
        if (m_run.length == 0) return from;
        const CharT* const end = text.data() + text.size() - (Length() - m_run.start - m_run.length);
        const CharT* at = text.data() + from + m_run.start;
        for (;; ++at) {
            at = FindSequence(at, end, Run().data(), m_run.length, m_ignoreCase);
            if (at == end) return View::npos;
            const size_t start = static_cast<size_t>(at - text.data()) - m_run.start;
            if (Fits(text.data() + start)) return start;
        }
    }

    /// The last such place.
    size_t FindLast(View text, size_t from) const {
        if (text.size() < from || text.size() - from < Length()) return View::npos;
        if (m_run.length == 0) return text.size() - Length();
        const CharT* const begin = text.data() + from + m_run.start;
        const CharT* end = text.data() + text.size() - (Length() - m_run.start - m_run.length);
        for (;;) {
            const CharT* const at = FindLastSequence(begin, end, Run().data(), m_run.length, m_ignoreCase);
            if (at == end) return View::npos;
            const size_t start = static_cast<size_t>(at - text.data()) - m_run.start;
            if (Fits(text.data() + start)) return start;
            end = at + m_run.length - 1;
        }
    }

private:
    bool Fits(const CharT* text) const {
        for (size_t i = 0; i < m_pattern.size(); ++i) {
            if (m_pattern[i] == CharT('?')) continue;
            const bool equal = m_ignoreCase ? FoldCase(text[i]) == FoldCase(m_pattern[i]) : text[i] == m_pattern[i];
            if (!equal) return false;
        }
        return true;
    }

    std::basic_string<CharT> m_pattern;
    bool m_ignoreCase;
    Span m_run;
};

template <class CharT>
class WildcardMatcher final : public LineMatcher<CharT> {
public:
    using View = typename LineMatcher<CharT>::View;

    WildcardMatcher(const std::basic_string<CharT>& pattern, bool ignoreCase)
        : m_simulation(Compiler<CharT>(pattern, ignoreCase).Compile(), ignoreCase), m_ignoreCase(ignoreCase) {
        if (pattern.find(CharT('{')) == View::npos) CutAtStars(pattern);
        for (const Segment<CharT>& segment : m_segments)
            if (segment.Run().size() > (m_longestSegment ? m_longestSegment->Run().size() : 0))
                m_longestSegment = &segment;
    }

    /// The segments take line breaks for characters like all others, so they find no fewer hits than there are, and
    /// none later. Only the hit itself is looked at for them: a look at the whole rest of the line, once a hit, would
    /// make time grow with the square of a long line.
    bool Find(View text, Span& found) override {
        if (m_segments.empty()) return m_simulation.Find(text, found);
        Span hit;
        if (!FindBySegments(text, hit)) return false;
        if (!IsAnyThroughout(text.substr(hit.start, hit.length))) return m_simulation.Find(text, found);
        found = hit;
        return true;
    }

    const CharT* FindCandidate(View lines) const override {
        if (!m_longestSegment) return lines.data();
        const size_t at = m_longestSegment->FindFirst(lines, 0);
        return at == View::npos ? nullptr : lines.data() + at;
    }

    bool MayBeginIn(View, View) override { return true; }

private:
    void CutAtStars(View pattern) {
        size_t begin = 0;
        for (size_t i = 0; i <= pattern.size(); ++i) {
            if (i < pattern.size() && pattern[i] != CharT('*')) continue;
            m_segments.emplace_back(pattern.substr(begin, i - begin), m_ignoreCase);
            begin = i + 1;
        }
    }

    /// Piece by piece: a break that comes soon must not cost a look at all of a long line.
    static bool IsAnyThroughout(View text) {
        constexpr size_t kPieceUnits = 1024;
        for (; !text.empty(); text.remove_prefix(std::min(kPieceUnits, text.size())))
            if (!IsAnyInPiece(text.substr(0, kPieceUnits))) return false;
        return true;
    }

    static bool IsAnyInPiece(View text) {
        const CharT* const end = text.data() + text.size();
        if (FindLineBreak(text.data(), end) != end) return false;
        if constexpr (sizeof(CharT) > 1) {
            if (FindUnit(text.data(), end, CharT(0x2028)) != end) return false;
            if (FindUnit(text.data(), end, CharT(0x2029)) != end) return false;
        }
        return true;
    }

    /// Without counts, the hit begins at the first place of the first segment after which the others follow, each taken
    /// at its first place; when they do not follow that one, they follow no later one either. It ends as far right as
    /// the last segment goes.
    bool FindBySegments(View text, Span& found) const {
        const size_t start = m_segments.front().FindFirst(text, 0);
        if (start == View::npos) return false;
        size_t position = start + m_segments.front().Length();
        for (size_t i = 1; i < m_segments.size(); ++i) {
            const bool isLast = i + 1 == m_segments.size();
            const size_t at = isLast ? m_segments[i].FindLast(text, position) : m_segments[i].FindFirst(text, position);
            if (at == View::npos) return false;
            position = at + m_segments[i].Length();
        }
        found = {start, position - start};
        return true;
    }

    Simulation<CharT> m_simulation;
    const bool m_ignoreCase;
    std::vector<Segment<CharT>> m_segments;  // empty when the pattern has counts
    const Segment<CharT>* m_longestSegment =
        nullptr;  // the one with the longest run of characters: every hit's line must hold it
};

}  // namespace

template <class CharT>
std::unique_ptr<LineMatcher<CharT>> MakeWildcardMatcher(const std::basic_string<CharT>& pattern, bool ignoreCase) {
    return std::make_unique<WildcardMatcher<CharT>>(pattern, ignoreCase);
}

template std::unique_ptr<LineMatcher<char>> MakeWildcardMatcher(const std::basic_string<char>&, bool);
template std::unique_ptr<LineMatcher<WideChar>> MakeWildcardMatcher(const std::basic_string<WideChar>&, bool);

}  // namespace QVFindAndReplace
