#include "rename/guarded_regex.h"

#include <algorithm>
#include <iterator>
#include <locale>
#include <string_view>

#include "win32/stack.h"

namespace BatchRename {
namespace {

constexpr size_t kLongestPattern = 4096;  // units
constexpr int kDeepestNesting = 500;
constexpr int64_t kStepsForAText = 1'000'000;
constexpr size_t kStackReserve = 192 * 1024;  // bytes: for unwinding, and for whatever runs below
// Compiling recurses for each term of a sequence (128 bytes were measured) and for each group (500).
constexpr size_t kStackForATerm = 160;   // bytes
constexpr size_t kStackForAGroup = 640;  // bytes
constexpr size_t kStackForACall = 512;   // bytes; 440 were measured

// Beginning a search, or a lookahead, takes the time of a step for every so many states of the expression, and a group
// the time of so many states; a class the time of a step for every so many units. Upper values of measurements.
constexpr uint64_t kStatesForAStep = 8;
constexpr uint64_t kStatesForAGroup = 8;
constexpr uint64_t kUnitsForAStep = 16;
constexpr uint64_t kMostStates = 100'000;                 // the engine's own limit
constexpr uint64_t kMostStatesOfLookaheads = 16'000'000;  // all that can be begun between two looks at the text

struct Budget {
    int64_t steps;
    const char* stackFloor;
};

/// A place in a text. The engine compares two places at every step that it takes, which makes the comparison the one
/// spot where neither time nor depth can escape.
class GuardedPlace {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = wchar_t;
    using difference_type = std::ptrdiff_t;
    using pointer = const wchar_t*;
    using reference = const wchar_t&;

    GuardedPlace() = default;
    GuardedPlace(const wchar_t* at, Budget& budget) : m_at(at), m_budget(&budget) {}

    reference operator*() const { return *m_at; }
    pointer operator->() const { return m_at; }
    GuardedPlace& operator++() {
        ++m_at;
        return *this;
    }
    GuardedPlace operator++(int) {
        const GuardedPlace before = *this;
        ++m_at;
        return before;
    }
    GuardedPlace& operator--() {
        --m_at;
        return *this;
    }
    GuardedPlace operator--(int) {
        const GuardedPlace before = *this;
        --m_at;
        return before;
    }
    bool operator==(const GuardedPlace& other) const {
        if (m_budget) Spend();
        return m_at == other.m_at;
    }

private:
    void Spend() const {
        const bool isDeep = static_cast<const char*>(__builtin_frame_address(0)) < m_budget->stackFloor;
        if (--m_budget->steps < 0 || isDeep) [[unlikely]]
            GiveUp(isDeep);
    }
    [[noreturn, gnu::noinline, gnu::cold]] static void GiveUp(bool isDeep) {
        throw std::regex_error(isDeep ? std::regex_constants::error_stack : std::regex_constants::error_complexity);
    }

    const wchar_t* m_at = nullptr;
    Budget* m_budget = nullptr;
};

struct TextTooLong {};

/// Appends to a text until that has the greatest length.
class CappedAppender {
public:
    using iterator_category = std::output_iterator_tag;
    using value_type = void;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = void;

    explicit CappedAppender(std::wstring& text) : m_text(&text) {}
    CappedAppender& operator=(wchar_t unit) {
        if (m_text->size() >= kLongestText) throw TextTooLong();
        m_text->push_back(unit);
        return *this;
    }
    CappedAppender& operator*() { return *this; }
    CappedAppender& operator++() { return *this; }
    CappedAppender operator++(int) { return *this; }

private:
    std::wstring* m_text;
};

/// The engine's scanner narrows each unit to see whether it has a special meaning, and the standard facet narrows with
/// best fit: a full-width dot would mean "any character", a full-width bracket would open a class.
class ExactNarrowing : public std::ctype<wchar_t> {
public:
    /// Owned by its maker, not by the locales that use it.
    ExactNarrowing() : std::ctype<wchar_t>(1) {}

protected:
    char do_narrow(wchar_t unit, char otherwise) const override {
        return unit < 0x80 ? static_cast<char>(unit) : otherwise;
    }
    const wchar_t* do_narrow(const wchar_t* from, const wchar_t* to, char otherwise, char* narrowed) const override {
        for (; from != to; ++from) *narrowed++ = do_narrow(*from, otherwise);
        return to;
    }
};

const std::locale& ExactLocale() {
    static ExactNarrowing facet;
    static const std::locale locale(std::locale::classic(), &facet);
    return locale;
}

/// The same for expressions that ignore case: a locale is all that the engine hands from an expression to its traits.
const std::locale& LocaleThatIgnoresCase() {
    static ExactNarrowing facet;
    static const std::locale locale(std::locale::classic(), &facet);
    return locale;
}

std::wstring DescribeFault(std::regex_constants::error_type code) {
    using namespace std::regex_constants;
    const struct {
        error_type code;
        const wchar_t* text;
    } texts[] = {
        {error_collate, L"a name inside [: :], [. .] or [= =] is unknown"},
        {error_ctype, L"a class inside [: :] is unknown"},
        {error_escape, L"a backslash stands before a character that needs none, or at the end"},
        {error_backref, L"a number after a backslash names a group that is not there"},
        {error_brack, L"a \"[\" has no \"]\""},
        {error_paren, L"a \"(\" or \")\" has no counterpart, or a sign such as \"*\" has nothing before it to repeat"},
        {error_brace, L"a \"{\" has no \"}\""},
        {error_badbrace, L"what stands between \"{\" and \"}\" is no count"},
        {error_range, L"a range inside [ ] runs backwards or is cut off"},
        {error_space, L"the expression is too large"},
        {error_badrepeat, L"a \"*\", \"+\", \"?\" or \"{\" stands after nothing that it could repeat"},
        {error_complexity, L"the expression is too complex"},
        {error_stack, L"the expression is nested too deeply"},
    };
    for (const auto& entry : texts)
        if (entry.code == code) return entry.text;
    return L"the expression is not valid";
}

uint64_t SearchCostOf(const PatternSize& size) {
    return std::min(size.states, kMostStates) + size.groups * kStatesForAGroup;
}

/// How deep the pattern's groups are nested at most. A "(" that is escaped or in a class counts too: near enough.
int NestingOf(const std::wstring& pattern) {
    int depth = 0;
    int deepest = 0;
    for (const wchar_t unit : pattern) {
        if (unit == L'(') deepest = std::max(deepest, ++depth);
        if (unit == L')' && depth > 0) --depth;
    }
    return deepest;
}

/// @throws RegexFault when compiling or running it could run out of stack, or a look at the text come too late
void CheckSize(const std::wstring& pattern, const PatternSize& size, size_t stackForCalls) {
    if (pattern.size() > kLongestPattern)
        throw RegexFault(L"the expression is longer than " + std::to_wstring(kLongestPattern) + L" characters");
    const int nesting = NestingOf(pattern);
    if (nesting > kDeepestNesting)
        throw RegexFault(L"the expression is nested deeper than " + std::to_wstring(kDeepestNesting) + L" groups");
    const size_t toCompile = pattern.size() * kStackForATerm + static_cast<size_t>(nesting) * kStackForAGroup;
    const size_t needed = kStackReserve + std::max(toCompile, stackForCalls);
    if (static_cast<const char*>(__builtin_frame_address(0)) < Win32::StackFloor(needed))
        throw RegexFault(L"the expression is too long or nested too deeply");
    if (size.lookaheads * SearchCostOf(size) > kMostStatesOfLookaheads)
        throw RegexFault(DescribeFault(std::regex_constants::error_complexity));
}

}  // namespace

NameRegexTraits::locale_type NameRegexTraits::imbue(locale_type locale) {
    m_ignoresCase = locale == LocaleThatIgnoresCase();
    locale = Base::imbue(locale);
    constexpr std::wstring_view kWord = L"w";
    m_word = LookUp(kWord.begin(), kWord.end(), false);
    return locale;
}

GuardedRegex::GuardedRegex(const std::wstring& pattern, bool isCaseSensitive) {
    const PatternSize size = PatternSizeOf(pattern);
    m_searchCost = SearchCostOf(size);
    m_stepCost = 1 + size.lookaheads * m_searchCost / kStatesForAStep / 2 + size.longestClass / kUnitsForAStep;
    m_stackForCalls = static_cast<size_t>(size.uncheckedCalls) * kStackForACall;
    CheckSize(pattern, size, m_stackForCalls);
    auto flags = std::regex_constants::ECMAScript;
    if (!isCaseSensitive) flags |= std::regex_constants::icase;
    try {
        m_regex.imbue(isCaseSensitive ? ExactLocale() : LocaleThatIgnoresCase());
        m_regex.assign(pattern, flags);
    } catch (const std::regex_error& error) {
        throw RegexFault(DescribeFault(error.code()));
    }
}

RuleFault GuardedRegex::Replace(const std::wstring& text, const std::wstring& replacement, std::wstring& result) const {
    result.clear();
    // Every place of the text may begin a search.
    const auto searches = static_cast<int64_t>(text.size() * m_searchCost / kStatesForAStep);
    Budget budget = {(kStepsForAText - searches) / static_cast<int64_t>(m_stepCost),
                     Win32::StackFloor(kStackReserve + m_stackForCalls)};
    if (static_cast<const char*>(__builtin_frame_address(0)) < budget.stackFloor) return RuleFault::TooDeep;
    if (budget.steps <= 0) return RuleFault::TooComplex;
    const GuardedPlace begin(text.data(), budget);
    const GuardedPlace end(text.data() + text.size(), budget);
    try {
        std::regex_replace(CappedAppender(result), begin, end, m_regex, replacement);
        return RuleFault::None;
    } catch (const TextTooLong&) {
        return RuleFault::ResultTooLong;
    } catch (const std::regex_error& error) {
        return error.code() == std::regex_constants::error_stack ? RuleFault::TooDeep : RuleFault::TooComplex;
    }
}

}  // namespace BatchRename
