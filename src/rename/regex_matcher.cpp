#include "rename/regex_matcher.h"

#include <algorithm>
#include <iterator>

#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr size_t kMostEntries = 1'000'000;  // 16 MB

/// The state that takes the first unit of every match, where there is one.
uint32_t FirstUnitOf(const RegexProgram& program) {
    uint32_t at = program.start;
    while (program.states[at].op == RegexOp::GroupBegin) at = program.states[at].next;
    return TakesOneUnit(program.states[at].op) ? at : RegexState::kNoState;
}

}  // namespace

RegexMatcher::RegexMatcher(const RegexProgram& program)
    : m_program(&program), m_firstUnit(FirstUnitOf(program)), m_groups(program.groups), m_loops(program.loops) {}

void RegexMatcher::Begin(std::wstring_view text, int64_t steps) {
    m_text = text;
    m_stepsLeft = steps;
    m_fault = RuleFault::None;
    m_attempts = 0;
    std::ranges::fill(m_loops, Loop());
}

bool RegexMatcher::Spend(size_t steps) {
    m_stepsLeft -= static_cast<int64_t>(steps);
    if (m_stepsLeft < 0) GiveUp(RuleFault::TooComplex);
    return m_fault == RuleFault::None;
}

/// The first fault counts.
void RegexMatcher::GiveUp(RuleFault fault) {
    if (m_fault == RuleFault::None) m_fault = fault;
    m_hasLeftovers = true;
}

bool RegexMatcher::Search(uint32_t from, RegexSearch how) {
    m_how = how;
    for (m_begin = from;; ++m_begin, m_how.hasPrevious = true) {
        if (!how.isContinuous && m_firstUnit != RegexState::kNoState && !SkipTo(m_program->states[m_firstUnit]))
            return false;
        if (SearchHere()) return true;
        if (m_fault != RuleFault::None || how.isContinuous || m_begin == m_text.size()) return false;
    }
}

/// Goes on to the next place where `first` takes a unit.
bool RegexMatcher::SkipTo(const RegexState& first) {
    const uint32_t from = m_begin;
    while (m_begin < m_text.size() && !Matches(first, m_text[m_begin])) ++m_begin;
    m_how.hasPrevious = m_how.hasPrevious || m_begin > from;
    return Spend(m_begin - from) && m_begin < m_text.size();
}

bool RegexMatcher::SearchHere() {
    if (m_hasLeftovers) {
        std::ranges::fill(m_groups, RegexGroup());
        Spend(m_groups.size() / 4);
    }
    m_hasLeftovers = false;
    m_entries.clear();
    m_lookaheads.clear();
    m_leftovers.clear();
    m_attempt = ++m_attempts;
    m_at = m_begin;
    m_state = m_program->start;
    return Run();
}

bool RegexMatcher::Run() {
    while (Spend(1)) {
        const RegexState& state = m_program->states[m_state];
        if (state.op == RegexOp::Accept && m_lookaheads.empty() && IsAcceptable()) {
            m_hasLeftovers = true;
            return true;
        }
        if (!Step(state) && !GoBack()) return false;
    }
    return false;
}

/// False when this way ends here.
bool RegexMatcher::Step(const RegexState& state) {
    switch (state.op) {
        case RegexOp::Unit:
        case RegexOp::UnitIgnoringCase:
        case RegexOp::Any:
        case RegexOp::Set: return TakeUnit(state);
        case RegexOp::BackReference: return TakeWhatGroupTook(state);
        case RegexOp::TextBegin: return GoOnIf(m_at == m_begin && !m_how.hasPrevious, state);
        case RegexOp::TextEnd: return GoOnIf(m_at == m_text.size(), state);
        case RegexOp::WordBorder: return GoOnIf(IsWordBorder() != state.isSpecial, state);
        case RegexOp::Lookahead: return EnterLookahead(state);
        case RegexOp::GroupBegin: return BeginGroup(state);
        case RegexOp::GroupEnd: return EndGroup(state);
        case RegexOp::Alternative: Push(Undo::Go, state.next, m_at); return Go(state.other);
        case RegexOp::Repeat: return Repeat(state);
        case RegexOp::Run: return TakeRun(state);
        case RegexOp::Accept: return IsAcceptable() && LeaveLookahead(true);
        case RegexOp::Nothing: break;
    }
    return Go(state.next);
}

inline bool RegexMatcher::Matches(const RegexState& state, wchar_t unit) const {
    switch (state.op) {
        case RegexOp::Unit: return unit == state.unit;
        case RegexOp::UnitIgnoringCase: return Win32::LowerAscii(unit) == state.unit;
        case RegexOp::Set: return m_program->sets[state.index].Contains(unit);
        default: return unit != L'\n' && unit != L'\r' && unit != L'\u2028' && unit != L'\u2029';
    }
}

bool RegexMatcher::TakeUnit(const RegexState& state) {
    if (m_at == m_text.size() || !Matches(state, m_text[m_at])) return false;
    ++m_at;
    return Go(state.next);
}

bool RegexMatcher::TakeRun(const RegexState& run) {
    const RegexState& unit = m_program->states[run.other];
    const uint32_t from = m_at;
    while (m_at < m_text.size() && Matches(unit, m_text[m_at])) ++m_at;
    Spend(m_at - from);
    if (m_at > from) Push(Undo::GoFewer, run.next, from, m_at - 1);
    return Go(run.next);
}

bool RegexMatcher::TakeWhatGroupTook(const RegexState& state) {
    const RegexGroup group = m_groups[state.index];
    if (!group.IsMatched()) return false;
    const uint32_t length = group.end - group.begin;
    if (length > m_text.size() - m_at) return false;
    Spend(length / 4);
    const auto fold = [&](wchar_t unit) { return state.isSpecial ? Win32::LowerAscii(unit) : unit; };
    if (!std::ranges::equal(m_text.substr(group.begin, length), m_text.substr(m_at, length), {}, fold, fold))
        return false;
    m_at += length;
    return Go(state.next);
}

bool RegexMatcher::IsWordBorder() const {
    const bool isAfterWord = (m_at != m_begin || m_how.hasPrevious) && IsWordUnit(m_text[m_at - 1]);
    const bool isBeforeWord = m_at != m_text.size() && IsWordUnit(m_text[m_at]);
    return isAfterWord != isBeforeWord;
}

bool RegexMatcher::BeginGroup(const RegexState& state) {
    RegexGroup& group = m_groups[state.index];
    Push(Undo::GroupBegin, state.index, group.begin);
    group.begin = m_at;
    return Go(state.next);
}

bool RegexMatcher::EndGroup(const RegexState& state) {
    RegexGroup& group = m_groups[state.index];
    Push(Undo::GroupEnd, state.index, group.begin, group.end);
    group.end = m_at;
    return Go(state.next);
}

bool RegexMatcher::Repeat(const RegexState& state) {
    const bool isCounted = state.index != RegexState::kNoLoop;
    if (!state.isSpecial) {
        Push(Undo::Go, state.next, m_at);
        return isCounted ? RepeatOnce(state) : Go(state.other);
    }
    Push(isCounted ? Undo::RepeatLazily : Undo::Go, isCounted ? m_state : state.other, m_at);
    return Go(state.next);
}

/// False when the loop was entered twice at this place already: a third time would find nothing new.
bool RegexMatcher::RepeatOnce(const RegexState& state) {
    Loop& loop = m_loops[state.index];
    const bool isAgain = loop.attempt == m_attempt && loop.place == m_at;
    if (isAgain && loop.times == 2) return false;
    Push(Undo::Loop, state.index, loop.attempt, loop.place, loop.times);
    loop = {m_attempt, m_at, isAgain ? 2U : 1U};
    return Go(state.other);
}

bool RegexMatcher::EnterLookahead(const RegexState& state) {
    m_lookaheads.push_back({m_state, m_at, m_begin, m_attempt, m_entries.size(), m_leftovers.size()});
    Push(Undo::Lookahead, 0, 0);
    m_begin = m_at;
    m_attempt = ++m_attempts;
    return Go(state.other);
}

bool RegexMatcher::LeaveLookahead(bool hasMatched) {
    const OpenLookahead open = m_lookaheads.back();
    m_lookaheads.pop_back();
    if (hasMatched)
        KeepGroups(open);
    else
        DropLeftovers(open);
    m_begin = open.begin;
    m_attempt = open.attempt;
    m_at = open.place;
    const RegexState& state = m_program->states[open.state];
    return GoOnIf(hasMatched != state.isSpecial, state);
}

/// What a lookahead has put into groups stays, whatever comes after it, until a lookahead around it fails.
void RegexMatcher::KeepGroups(const OpenLookahead& open) {
    m_hasLeftovers = true;
    const auto from = m_entries.begin() + static_cast<std::ptrdiff_t>(open.entries);
    const auto isOfGroup = [](const Entry& entry) {
        const auto undo = static_cast<Undo>(entry.what >> kUndoShift);
        return undo == Undo::GroupBegin || undo == Undo::GroupEnd;
    };
    if (!m_lookaheads.empty()) std::copy_if(from, m_entries.end(), std::back_inserter(m_leftovers), isOfGroup);
    m_entries.erase(from, m_entries.end());
    if (m_leftovers.size() > kMostEntries) GiveUp(RuleFault::TooDeep);
}

void RegexMatcher::DropLeftovers(const OpenLookahead& open) {
    for (; m_leftovers.size() > open.leftovers; m_leftovers.pop_back()) Resume(m_leftovers.back());
}

bool RegexMatcher::GoBack() {
    while (!m_entries.empty()) {
        const Entry entry = m_entries.back();
        m_entries.pop_back();
        if (Resume(entry)) return true;
    }
    return false;
}

/// False when the entry only put something back.
bool RegexMatcher::Resume(const Entry& entry) {
    const uint32_t number = entry.what & ((1U << kUndoShift) - 1);
    switch (static_cast<Undo>(entry.what >> kUndoShift)) {
        case Undo::Go: m_at = entry.first; return Go(number);
        case Undo::GoFewer: return ResumeRun(number, entry);
        case Undo::RepeatLazily: m_at = entry.first; return RepeatOnce(m_program->states[number]);
        case Undo::GroupBegin: m_groups[number].begin = entry.first; return false;
        case Undo::GroupEnd: m_groups[number] = {entry.first, entry.second}; return false;
        case Undo::Loop: m_loops[number] = {entry.first, entry.second, entry.third}; return false;
        case Undo::Lookahead: return LeaveLookahead(false);
    }
    return false;
}

/// With one unit less each time.
bool RegexMatcher::ResumeRun(uint32_t next, const Entry& entry) {
    m_at = entry.second;
    if (m_at > entry.first) Push(Undo::GoFewer, next, entry.first, m_at - 1);
    return Go(next);
}

inline void RegexMatcher::Push(Undo undo, uint32_t number, uint32_t first, uint32_t second, uint32_t third) {
    if (m_entries.size() < kMostEntries)
        m_entries.push_back({static_cast<uint32_t>(undo) << kUndoShift | number, first, second, third});
    else
        GiveUp(RuleFault::TooDeep);
}

}  // namespace BatchRename
