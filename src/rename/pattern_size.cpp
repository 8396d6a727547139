// pattern_size.cpp - counts what the standard engine makes of a regular expression.
#include <algorithm>
#include <string>
#include <vector>

#include "rename/guarded_regex.h"

namespace BatchRename {
namespace {

constexpr uint64_t kMost = 1'000'000;

bool IsDigit(wchar_t unit) {
    return unit >= L'0' && unit <= L'9';
}

/// A term, a sequence of terms, or the alternatives of a group.
struct Part {
    uint64_t states = 0;
    uint64_t lookaheads = 0;
    uint64_t uncheckedCalls = 0;
    bool canBeEmpty = false;
    bool hasBackReference = false;  // to a group without a match it fails without a look at the text

    void Add(const Part& other) {
        states = std::min(states + other.states, kMost);
        lookaheads = std::min(lookaheads + other.lookaheads, kMost);
        uncheckedCalls = std::min(uncheckedCalls + other.uncheckedCalls, kMost);
        hasBackReference = hasBackReference || other.hasBackReference;
    }
};

class PatternReader {
public:
    explicit PatternReader(std::wstring_view pattern) : m_rest(pattern) {}

    PatternSize Read() {
        m_open.emplace_back();
        while (!m_rest.empty()) ReadUnit(Take());
        while (m_open.size() > 1) CloseGroup();
        EndBranch();
        const Part& all = m_open.back().alternatives;
        m_size.states = all.states;
        m_size.lookaheads = all.lookaheads;
        m_size.uncheckedCalls = all.uncheckedCalls;
        return m_size;
    }

private:
    enum class Kind : uint8_t { Capturing, Plain, Lookahead };

    struct Group {
        Kind kind = Kind::Plain;
        Part alternatives;  // that came to their end
        Part branch = {.canBeEmpty = true};
        Part term = {.canBeEmpty = true};  // the last one, which may still be repeated
    };

    wchar_t Take() {
        const wchar_t unit = m_rest.front();
        m_rest.remove_prefix(1);
        return unit;
    }

    bool TakeIf(wchar_t unit) {
        if (!m_rest.starts_with(unit)) return false;
        m_rest.remove_prefix(1);
        return true;
    }

    void ReadUnit(wchar_t unit) {
        switch (unit) {
            case L'\\': return ReadEscape();
            case L'[': return ReadClass();
            case L'(': return OpenGroup();
            case L')':
                if (m_open.size() > 1) CloseGroup();
                return;
            case L'|': return EndBranchWithAnother();
            case L'*':
            case L'?': return Repeat(0, 1);
            case L'+': return Repeat(1, 1);
            case L'{': return ReadCount();
            case L'^':
            case L'$': return Begin({.states = 1, .canBeEmpty = true});
            default: return Begin({.states = 1});
        }
    }

    void ReadEscape() {
        const wchar_t unit = m_rest.empty() ? L'\\' : Take();
        const bool isBackReference = IsDigit(unit) && unit != L'0';
        const bool isPlace = unit == L'b' || unit == L'B';
        Begin({.states = 1, .canBeEmpty = isBackReference || isPlace, .hasBackReference = isBackReference});
    }

    void ReadClass() {
        uint64_t length = 0;
        for (; !m_rest.empty(); ++length) {
            const wchar_t unit = Take();
            if (unit == L']') break;
            if (unit == L'\\' && !m_rest.empty()) m_rest.remove_prefix(1);
            if (unit == L'[') SkipClassName();
        }
        m_size.longestClass = std::max(m_size.longestClass, length);
        Begin({.states = 1});
    }

    /// In a class "[:alpha:]", "[=a=]" and "[.a.]" hold a "]" that does not end it.
    void SkipClassName() {
        if (m_rest.empty() || std::wstring_view(L":=.").find(m_rest.front()) == std::wstring_view::npos) return;
        const size_t end = m_rest.find(std::wstring{m_rest.front(), L']'}, 1);
        if (end != std::wstring_view::npos) m_rest.remove_prefix(end + 2);
    }

    void OpenGroup() {
        Group group;
        if (!TakeIf(L'?')) {
            group.kind = Kind::Capturing;
            ++m_size.groups;
        } else if (!m_rest.empty() && Take() != L':') {
            group.kind = Kind::Lookahead;
        }
        m_open.push_back(group);
    }

    void CloseGroup() {
        EndBranch();
        const Kind kind = m_open.back().kind;
        Part part = m_open.back().alternatives;
        m_open.pop_back();
        // Both ends of a group are states. A lookahead is a search within the search: a plain call's stack four times.
        part.Add({.states = 2,
                  .lookaheads = kind == Kind::Lookahead ? 1u : 0u,
                  .uncheckedCalls = kind == Kind::Lookahead ? 4u : 2u});
        part.canBeEmpty = part.canBeEmpty || kind == Kind::Lookahead;
        Begin(part);
    }

    /// What stood before is a term that nothing repeats any more.
    void Begin(const Part& term) {
        EndTerm();
        m_open.back().term = term;
    }

    void EndTerm() {
        Group& group = m_open.back();
        group.branch.Add(group.term);
        group.branch.canBeEmpty = group.branch.canBeEmpty && group.term.canBeEmpty;
        group.term = {.canBeEmpty = true};
    }

    void EndBranch() {
        EndTerm();
        Group& group = m_open.back();
        group.alternatives.Add(group.branch);
        group.alternatives.canBeEmpty = group.alternatives.canBeEmpty || group.branch.canBeEmpty;
        group.branch = {.canBeEmpty = true};
    }

    void EndBranchWithAnother() {
        EndTerm();
        const Part& branch = m_open.back().branch;
        const bool looksAtText = !branch.canBeEmpty && !branch.hasBackReference;
        EndBranch();
        m_open.back().alternatives.Add({.states = 2, .uncheckedCalls = looksAtText ? 0u : 1u});
    }

    void ReadCount() {
        const uint64_t least = ReadNumber();
        uint64_t most = least;
        if (TakeIf(L',')) most = m_rest.starts_with(L'}') ? least + 1 : ReadNumber();
        TakeIf(L'}');
        Repeat(least, most);
    }

    uint64_t ReadNumber() {
        uint64_t number = 0;
        while (!m_rest.empty() && IsDigit(m_rest.front()))
            number = std::min(number * 10 + static_cast<uint64_t>(Take() - L'0'), kMost);
        return number;
    }

    void Repeat(uint64_t least, uint64_t copies) {
        Part& term = m_open.back().term;
        const bool isLazy = TakeIf(L'?');
        copies = std::max<uint64_t>(copies, 1);
        const auto times = [copies](uint64_t count) { return std::min(count * copies, kMost); };
        term.states = times(term.states + 2);
        term.lookaheads = times(term.lookaheads);
        term.uncheckedCalls = times(term.uncheckedCalls + (isLazy || term.canBeEmpty ? 1 : 0));
        term.canBeEmpty = term.canBeEmpty || least == 0;
    }

    std::wstring_view m_rest;
    PatternSize m_size;
    std::vector<Group> m_open;
};

}  // namespace

PatternSize PatternSizeOf(std::wstring_view pattern) {
    return PatternReader(pattern).Read();
}

}  // namespace BatchRename
