// standard_regex.h - random expressions with texts for them, and what the standard library makes of both: the reference
// for our own expressions, in the tests and for the fuzz target. No test framework in here, and nothing of Windows.
#pragma once

#include <iterator>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/counted_place.h"
#include "rename/regex.h"
#include "rename/regex_matcher.h"

namespace QVFuzz {

struct RegexCase {
    std::wstring pattern;
    std::wstring text;
    std::wstring replacement;
    bool ignoresCase = false;
    size_t from = 0;  // of one search apart from the replacement
    BatchRename::RegexSearch how = {};
};

/// `pick(n)` gives a number below n: from a generator, or from a fuzzer's bytes.
template <class Pick>
class RegexMaker {
public:
    explicit RegexMaker(Pick pick) : m_pick(pick) {}

    RegexCase Make() {
        RegexCase made;
        m_groups = 0;
        m_ended.clear();
        made.pattern = Branches(3);
        while (m_pick(12) == 0) Damage(made.pattern);
        for (size_t count = m_pick(13); count > 0; --count) made.text += Unit();
        for (size_t count = m_pick(6); count > 0; --count) made.replacement += OneOf(kFormats);
        made.ignoresCase = m_pick(3) != 0;
        made.from = m_pick(made.text.size() + 1);
        made.how = {made.from > 0 && m_pick(2) == 0, m_pick(4) == 0, m_pick(4) == 0};
        return made;
    }

private:
    using View = std::wstring_view;
    static constexpr View kUnits = L"abcC1_ -\n\r\u00E4\u00C4\u2028\u0130\u0131\u212A\u00B2\u0663\uFF0E";
    static constexpr View kEscapes[] = {L"\\d", L"\\D", L"\\s",   L"\\S",     L"\\w",  L"\\W", L"\\t",  L"\\n", L"\\0",
                                        L"\\.", L"\\(", L"\\x61", L"\\u0042", L"\\ca", L"\\-", L"\\\\", L"\\e"};
    static constexpr View kPlaces[] = {L"^", L"$", L"\\b", L"\\B"};
    static constexpr View kCounts[] = {L"*",   L"*",   L"+",     L"+",     L"?",     L"?",    L"{0}",  L"{1}",
                                       L"{2}", L"{2}", L"{0,1}", L"{1,2}", L"{2,3}", L"{0,}", L"{1,}", L"{2,}"};
    static constexpr View kInClass[] = {L"a-b",       L"B-c",           L"A-Z",       L"a-z",       L"-",
                                        L"-",         L"\\d",           L"\\W",       L"\\w",       L"\\b",
                                        L"\\x41",     L"[:alpha:]",     L"[:upper:]", L"[:Lower:]", L"[:w:]",
                                        L"[:punct:]", L"[.a.]",         L"[.space.]", L"[=b=]",     L"[",
                                        L"^",         L"\u00C0-\u00FF", L" -\u00E4",  L"[:no:]"};
    static constexpr View kFormats[] = {L"$&", L"$1", L"$2", L"$3", L"$01", L"$10", L"$`",
                                        L"$'", L"$$", L"$",  L"<",  L"|",   L"$0",  L"$x"};
    static constexpr View kDamage = L"()[]{}*+?|\\^$.-,:=!123abdwxu\u00B2";

    template <size_t N>
    View OneOf(const View (&from)[N]) {
        return from[m_pick(N)];
    }
    wchar_t Unit() { return m_pick(4) == 0 ? kUnits[m_pick(kUnits.size())] : L"abAB"[m_pick(4)]; }

    std::wstring Branches(int depth) {
        std::wstring made = Sequence(depth);
        while (m_pick(4) == 0) made += L"|" + Sequence(depth);
        return made;
    }

    std::wstring Sequence(int depth) {
        std::wstring made;
        for (size_t count = m_pick(5); count > 0; --count) made += Term(depth);
        return made;
    }

    std::wstring Term(int depth) {
        const size_t kind = m_pick(depth > 0 ? 16 : 10);
        if (kind == 0) return std::wstring(OneOf(kPlaces));
        if (kind > 13) return (m_pick(2) == 0 ? L"(?=" : L"(?!") + Branches(depth - 1) + L")";
        std::wstring made = Atom(kind, depth);
        while (m_pick(5) < 2) {
            made += OneOf(kCounts);
            if (m_pick(3) == 0) made += L"?";
        }
        return made;
    }

    std::wstring Atom(size_t kind, int depth) {
        if (kind == 1) return L".";
        if (kind == 2) return std::wstring(OneOf(kEscapes));
        if (kind == 3) return Class();
        if (kind <= 5 && !m_ended.empty()) return L"\\" + std::to_wstring(m_ended[m_pick(m_ended.size())]);
        if (kind < 10) return PlainUnit();
        if (kind == 10) return L"(?:" + Branches(depth - 1) + L")";
        const size_t number = ++m_groups;
        const std::wstring made = L"(" + Branches(depth - 1) + L")";
        m_ended.push_back(number);
        return made;
    }

    /// Some signs come here too; then they mean what they mean.
    std::wstring PlainUnit() { return std::wstring(1, Unit()); }

    std::wstring Class() {
        std::wstring made = m_pick(3) == 0 ? L"[^" : L"[";
        for (size_t count = m_pick(4); count > 0; --count)
            made += m_pick(2) == 0 ? PlainUnit() : std::wstring(OneOf(kInClass));
        return made + L"]";
    }

    void Damage(std::wstring& pattern) {
        const size_t at = m_pick(pattern.size() + 1);
        const wchar_t unit = kDamage[m_pick(kDamage.size())];
        if (m_pick(2) == 0 && at < pattern.size())
            pattern[at] = unit;
        else
            pattern.insert(at, 1, unit);
    }

    Pick m_pick;
    size_t m_groups = 0;
    std::vector<size_t> m_ended;  // the groups that a reference can name
};

enum class RegexVerdict { Same, SameRefusal, Skipped, Different };

/// A locale whose narrowing knows ASCII alone: the standard library's scanner takes a full-width dot for "." otherwise
/// where the system narrows with best fit.
inline const std::locale& ExactLocale() {
    class ExactNarrowing : public std::ctype<wchar_t> {
        char do_narrow(wchar_t unit, char otherwise) const override {
            return static_cast<uint32_t>(unit) < 0x80 ? static_cast<char>(unit) : otherwise;
        }
    };
    static const std::locale locale(std::locale::classic(), new ExactNarrowing);
    return locale;
}

/// The standard library's side of one comparison.
class StandardRegex {
public:
    using Place = CountedPlace<wchar_t>;

    StandardRegex(const RegexCase& given, int steps, size_t stack)
        : m_case(given),
          m_limit(steps, stack),
          m_begin(given.text.data(), &m_limit),
          m_end(given.text.data() + given.text.size(), &m_limit) {}

    /// The error's code; nothing when it compiles.
    std::optional<int> Compile() {
        using namespace std::regex_constants;
        try {
            m_regex.imbue(ExactLocale());
            m_regex.assign(m_case.pattern, m_case.ignoresCase ? ECMAScript | icase : ECMAScript);
            return std::nullopt;
        } catch (const std::regex_error& failure) {
            return failure.code();
        }
    }

    /// @throws TooManySteps
    std::wstring Replace() {
        std::wstring result;
        std::regex_replace(std::back_inserter(result), m_begin, m_end, m_regex, m_case.replacement);
        return result;
    }

    /// Nothing when there is no match. @throws TooManySteps
    std::vector<BatchRename::RegexGroup> Search() {
        using namespace std::regex_constants;
        auto flags = match_default;
        if (m_case.how.hasPrevious) flags |= match_prev_avail;
        if (m_case.how.isContinuous) flags |= match_continuous;
        if (m_case.how.mustTakeUnits) flags |= match_not_null;
        std::match_results<Place> match;
        const Place from(m_case.text.data() + m_case.from, &m_limit);
        if (!std::regex_search(from, m_end, match, m_regex, flags)) return {};
        std::vector<BatchRename::RegexGroup> groups;
        for (const auto& group : match) {
            groups.emplace_back();
            if (group.matched) groups.back() = {Offset(group.first), Offset(group.second)};
        }
        return groups;
    }

private:
    uint32_t Offset(const Place& place) const { return static_cast<uint32_t>(place.Get() - m_case.text.data()); }

    const RegexCase& m_case;
    StepLimit m_limit;
    Place m_begin;
    Place m_end;
    std::wregex m_regex;
};

inline bool AreSame(const std::vector<BatchRename::RegexGroup>& left,
                    const std::vector<BatchRename::RegexGroup>& right) {
    return std::ranges::equal(left, right, [](const auto& one, const auto& other) {
        return one.IsMatched() == other.IsMatched() &&
               (!one.IsMatched() || (one.begin == other.begin && one.end == other.end));
    });
}

/// Refusal for refusal, and else the text replaced and one search with all groups. Ours comes first: where it takes too
/// many steps, so would the standard engine, which cannot be stopped while it compares no places.
inline RegexVerdict CompareWithStandard(const RegexCase& given, int steps, size_t stack = 256 * 1024) {
    using namespace BatchRename;
    constexpr size_t kMostStates = 400;  // the standard's compiler and executor recurse for some of them
    std::optional<int> refusal;
    RegexProgram program;
    try {
        program = CompileRegex(given.pattern, given.ignoresCase);
    } catch (const std::regex_error& failure) {
        refusal = failure.code();
    }
    if (program.states.size() > kMostStates || refusal == std::regex_constants::error_space)
        return RegexVerdict::Skipped;
    StandardRegex standard(given, steps, stack);
    if (standard.Compile() != refusal) return RegexVerdict::Different;
    if (refusal) return RegexVerdict::SameRefusal;
    std::wstring result;
    const RuleFault fault =
        Regex(given.pattern, !given.ignoresCase).Replace(given.text, given.replacement, result, steps);
    RegexMatcher matcher(program);
    matcher.Begin(given.text, steps);
    const bool isFound = matcher.Search(static_cast<uint32_t>(given.from), given.how);
    if (fault != RuleFault::None || matcher.Fault() != RuleFault::None) return RegexVerdict::Skipped;
    try {
        if (result != standard.Replace()) return RegexVerdict::Different;
        const std::vector<RegexGroup> groups = standard.Search();
        const bool isSame = isFound ? AreSame(matcher.Groups(), groups) : groups.empty();
        return isSame ? RegexVerdict::Same : RegexVerdict::Different;
    } catch (const TooManySteps&) {
        return RegexVerdict::Skipped;
    }
}

}  // namespace QVFuzz
