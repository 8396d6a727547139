// regex_matcher.h - looks for a compiled expression in texts.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "rename/regex_program.h"
#include "rename/rename_item.h"

namespace BatchRename {

/// What a group of the expression has matched, in units of the text.
struct RegexGroup {
    uint32_t begin = 0;
    uint32_t end = kUnmatched;
    bool IsMatched() const { return end != kUnmatched; }

    static constexpr uint32_t kUnmatched = UINT32_MAX;
};

struct RegexSearch {
    bool hasPrevious = false;    // there is a unit before the place where the search begins, which borders look at
    bool isContinuous = false;   // the match begins where the search does
    bool mustTakeUnits = false;  // an empty match is none
};

/// Finds what the standard library's backtracking executor finds, in the same order and with the same groups, its
/// oddities included: groups keep what an earlier round of a loop has matched; what a lookahead has matched stays in
/// its groups when a later part fails; within a lookahead "^" and "\b" take its place for the text's beginning while
/// the search is at its first place.
/// compatibility: 38
///
/// Nothing recurses: what is still to be tried stands in a vector. Work and memory are bounded by the steps given.
class RegexMatcher {
public:
    /// `program` must outlive the matcher.
    explicit RegexMatcher(const RegexProgram& program);

    /// Begins with a text of less than 2^32 - 1 units, with this many steps for all searches in it, of 2 to 10 ns each.
    void Begin(std::wstring_view text, int64_t steps);

    /// True when there is a match at or after `from`; the first is found. False with a Fault: the steps or the memory
    /// were not enough to tell.
    bool Search(uint32_t from, RegexSearch how);
    RuleFault Fault() const { return m_fault; }
    /// Of the match that was found last. The first group is the whole match.
    const std::vector<RegexGroup>& Groups() const { return m_groups; }

    /// Takes steps for work that is done elsewhere. False when there are not so many.
    bool Spend(size_t steps);

private:
    enum class Undo : uint32_t { Go, GoFewer, RepeatLazily, GroupBegin, GroupEnd, Loop, Lookahead };
    static constexpr uint32_t kUndoShift = 29;  // an Undo stands above a number of a state, a group or a loop

    /// What to go back to, or what to try then.
    struct Entry {
        uint32_t what;
        uint32_t first;
        uint32_t second;
        uint32_t third;
    };

    /// How often a repetition that can be empty was entered at one place. Counters of another attempt count as new.
    struct Loop {
        uint32_t attempt = 0;
        uint32_t place = 0;
        uint32_t times = 0;
    };

    /// A lookahead that is being tried, and what it goes back to.
    struct OpenLookahead {
        uint32_t state;
        uint32_t place;
        uint32_t begin;
        uint32_t attempt;
        size_t entries;
        size_t leftovers;
    };

    void GiveUp(RuleFault fault);
    bool SkipTo(const RegexState& first);
    bool SearchHere();
    bool Run();
    bool Step(const RegexState& state);
    /// True, always: this way goes on at `state`.
    bool Go(uint32_t state) { return m_state = state, true; }
    bool GoOnIf(bool holds, const RegexState& state) { return m_state = state.next, holds; }
    bool IsAcceptable() const { return m_at != m_begin || !m_how.mustTakeUnits; }
    bool Matches(const RegexState& state, wchar_t unit) const;
    bool TakeUnit(const RegexState& state);
    bool TakeRun(const RegexState& run);
    bool TakeWhatGroupTook(const RegexState& state);
    bool IsWordBorder() const;
    bool BeginGroup(const RegexState& state);
    bool EndGroup(const RegexState& state);
    bool Repeat(const RegexState& state);
    bool RepeatOnce(const RegexState& state);
    bool EnterLookahead(const RegexState& state);
    bool LeaveLookahead(bool hasMatched);
    void KeepGroups(const OpenLookahead& open);
    void DropLeftovers(const OpenLookahead& open);
    bool GoBack();
    bool Resume(const Entry& entry);
    bool ResumeRun(uint32_t next, const Entry& entry);
    void Push(Undo undo, uint32_t number, uint32_t first, uint32_t second = 0, uint32_t third = 0);

    const RegexProgram* m_program;
    uint32_t m_firstUnit;  // the state that takes the first unit of every match; kNoState: there is no such
    std::wstring_view m_text;
    int64_t m_stepsLeft = 0;
    RuleFault m_fault = RuleFault::None;

    RegexSearch m_how;
    uint32_t m_begin = 0;    // of the attempt
    uint32_t m_attempt = 0;  // its number; a lookahead is one too
    uint32_t m_attempts = 0;
    uint32_t m_state = 0;
    uint32_t m_at = 0;
    bool m_hasLeftovers = false;  // of lookaheads, in the groups
    std::vector<RegexGroup> m_groups;
    std::vector<Loop> m_loops;
    std::vector<OpenLookahead> m_lookaheads;
    std::vector<Entry> m_entries;
    std::vector<Entry> m_leftovers;  // what undoes the groups of lookaheads within the open ones
};

}  // namespace BatchRename
