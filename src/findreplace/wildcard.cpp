#include "findreplace/wildcard.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "findreplace/request.h"
#include "findreplace/wildcard_program.h"
#include "textio/byte_search.h"

namespace QVFindAndReplace {
namespace {

using QVUtils::CaseFolding;
using QVUtils::FindLineBreak;
using QVUtils::FindUnit;
using QVUtils::SequenceFinder;

template <class CharT>
bool IsAny(CharT unit) {
    if constexpr (sizeof(CharT) > 1) {
        if (unit == CharT(0x2028) || unit == CharT(0x2029)) return false;
    }
    return unit != CharT('\r') && unit != CharT('\n');
}

/// Runs a program over a text: all ways at once, in the order in which a backtracking search would try them, so that
/// the first to arrive is the one it would find.
template <class CharT>
class Simulation {
public:
    using View = std::basic_string_view<CharT>;

    Simulation(Program<CharT> program, const CaseFolding<CharT>* folding)
        : m_program(std::move(program)), m_folding(folding), m_seenAt(m_program.size() + 1) {}

    /// `alive`: called every some thousand steps.
    bool Find(View text, Span& found, const std::function<void()>& alive) {
        bool isFound = false;
        size_t steps = 0;
        m_now.clear();
        m_firstMark = std::exchange(m_nextMark, m_nextMark + text.size() + 2);
        for (size_t position = 0;; ++position) {
            steps += m_now.size();
            if (steps > kStepsBetween && alive) {
                alive();
                steps = 0;
            }
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
    static constexpr size_t kStepsBetween = 100'000;

    struct Thread {
        uint32_t state;
        size_t start;
    };

    bool Accepts(const S& state, CharT unit) const {
        if (state.kind == S::Kind::Any) return IsAny(unit);
        return state.unit == (m_folding ? (*m_folding)(unit) : unit);
    }

    /// Adds the states that are reached from `state` without a character, first choices first, each once a position.
    void Follow(std::vector<Thread>& threads, uint32_t state, size_t start, size_t position) {
        m_pending.assign(1, state);
        while (!m_pending.empty()) {
            state = m_pending.back();
            m_pending.pop_back();
            if (m_seenAt[state] == m_firstMark + position) continue;
            m_seenAt[state] = m_firstMark + position;
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
    const CaseFolding<CharT>* const m_folding;
    // Kept between searches: a search allocates nothing once they have grown.
    std::vector<size_t> m_seenAt;  // per state, the mark of the position for which it was last followed
    size_t m_firstMark = 0;        // of this search
    size_t m_nextMark = 1;         // of the next one: above all that searches before it have left
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

    Segment(View pattern, const CaseFolding<CharT>* folding) : Segment(pattern, RunsIn(pattern), folding) {}

    size_t Length() const { return m_length; }
    size_t LongestRun() const { return m_run.length; }

    /// The first place in `text`, from `from` on, where the segment fits; npos when there is none.
    size_t FindFirst(View text, size_t from) const {
        if (text.size() < from || text.size() - from < Length()) return View::npos;
        if (m_run.length == 0) return from;
        const CharT* const end = text.data() + text.size() - (Length() - m_run.start - m_run.length);
        const CharT* at = text.data() + from + m_run.start;
        for (;; ++at) {
            at = m_finder.FindFirst(at, end);
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
            const CharT* const at = m_finder.FindLast(begin, end);
            if (at == end) return View::npos;
            const size_t start = static_cast<size_t>(at - text.data()) - m_run.start;
            if (Fits(text.data() + start)) return start;
            end = at + m_run.length - 1;
        }
    }

private:
    struct Runs {
        Span longest;
        std::vector<Span> others;
    };

    static Runs RunsIn(View pattern) {
        Runs runs;
        for (size_t begin = 0; begin < pattern.size();) {
            const size_t end = std::min(pattern.find(CharT('?'), begin), pattern.size());
            Span run = {begin, end - begin};
            if (run.length > runs.longest.length) std::swap(run, runs.longest);
            if (run.length > 0) runs.others.push_back(run);
            begin = end + 1;
        }
        return runs;
    }

    Segment(View pattern, const Runs& runs, const CaseFolding<CharT>* folding)
        : m_length(pattern.size()),
          m_run(runs.longest),
          m_finder(std::basic_string<CharT>(pattern.substr(m_run.start, m_run.length)), folding) {
        for (const Span& run : runs.others)
            m_others.emplace_back(
                run.start,
                SequenceFinder<CharT>(std::basic_string<CharT>(pattern.substr(run.start, run.length)), folding));
    }

    bool Fits(const CharT* text) const {
        return std::ranges::all_of(m_others, [&](const auto& run) { return run.second.StandsAt(text + run.first); });
    }

    size_t m_length;
    Span m_run;
    SequenceFinder<CharT> m_finder;
    std::vector<std::pair<size_t, SequenceFinder<CharT>>> m_others;  // and where they stand in the segment
};

template <class CharT>
class WildcardMatcher final : public LineMatcher<CharT> {
public:
    using View = typename LineMatcher<CharT>::View;

    WildcardMatcher(Compiled<CharT>&& compiled, const CaseFolding<CharT>* folding)
        : m_simulation(std::move(compiled.program), folding) {
        if (compiled.flat) CutAtStars(*compiled.flat, folding);
        for (const Segment<CharT>& segment : m_segments)
            if (segment.LongestRun() > (m_sign ? m_sign->LongestRun() : 0)) m_sign = &segment;
        if (m_segments.empty() && !compiled.required.empty()) m_sign = &m_required.emplace(compiled.required, folding);
    }

    /// The segments take line breaks for characters like all others, so they find no fewer hits than there are, and
    /// none later. Only the hit itself is looked at for them: a look at the whole rest of the line, once a hit, would
    /// make time grow with the square of a long line.
    bool Find(View text, Span& found) override {
        if (m_segments.empty()) {
            const bool canBe = !m_sign || m_sign->FindFirst(text, 0) != View::npos;
            return canBe && m_simulation.Find(text, found, this->m_alive);
        }
        Span hit;
        if (!FindBySegments(text, hit)) return false;
        if (!IsAnyThroughout(text.substr(hit.start, hit.length))) return m_simulation.Find(text, found, this->m_alive);
        found = hit;
        return true;
    }

    const CharT* FindCandidate(View lines) const override {
        if (!m_sign) return lines.data();
        const size_t at = m_sign->FindFirst(lines, 0);
        return at == View::npos ? nullptr : lines.data() + at;
    }

    bool MayBeginIn(View, View) override { return true; }

private:
    void CutAtStars(View pattern, const CaseFolding<CharT>* folding) {
        size_t begin = 0;
        for (size_t i = 0; i <= pattern.size(); ++i) {
            if (i < pattern.size() && pattern[i] != CharT('*')) continue;
            m_segments.emplace_back(pattern.substr(begin, i - begin), folding);
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
    std::vector<Segment<CharT>> m_segments;  // empty when the pattern has counts that a plain one cannot say
    std::optional<Segment<CharT>> m_required;
    const Segment<CharT>* m_sign = nullptr;  // every hit's line must hold it
};

}  // namespace

template <class CharT>
std::unique_ptr<LineMatcher<CharT>> MakeWildcardMatcher(const std::basic_string<CharT>& pattern, bool ignoreCase,
                                                        const CaseFolding<CharT>& folding) {
    const CaseFolding<CharT>* const used = ignoreCase ? &folding : nullptr;
    return std::make_unique<WildcardMatcher<CharT>>(CompileWildcard(pattern, used), used);
}

template std::unique_ptr<LineMatcher<char>> MakeWildcardMatcher(const std::basic_string<char>&, bool,
                                                                const CaseFolding<char>&);
template std::unique_ptr<LineMatcher<WideChar>> MakeWildcardMatcher(const std::basic_string<WideChar>&, bool,
                                                                    const CaseFolding<WideChar>&);

}  // namespace QVFindAndReplace
