#include "rename/regex.h"

#include <regex>

#include "rename/regex_matcher.h"
#include "rename/regex_program.h"
#include "rename/regex_scanner.h"

namespace BatchRename {
namespace {

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
    };
    for (const auto& entry : texts)
        if (entry.code == code) return entry.text;
    return L"the expression is not valid";
}

/// One replacement of every match in a text.
class Replacing {
public:
    Replacing(RegexMatcher& matcher, std::wstring_view text, std::wstring_view replacement, std::wstring& result)
        : m_matcher(matcher), m_text(text), m_replacement(replacement), m_result(result) {}

    RuleFault Run(int64_t steps) {
        m_result.clear();
        m_matcher.Begin(m_text, steps);
        RegexSearch how;
        for (bool isFound = m_matcher.Search(0, how); isFound; isFound = FindNext(how)) {
            m_match = m_matcher.Groups().front();
            if (!m_matcher.Spend(m_replacement.size()) || !Append(Before()) || !AppendReplacement()) break;
            m_copied = m_match.end;
            m_hasMatched = true;
        }
        if (m_matcher.Fault() != RuleFault::None) return m_matcher.Fault();
        return !m_isTooLong && Append(m_text.substr(m_copied)) ? RuleFault::None : RuleFault::ResultTooLong;
    }

    bool HasMatched() const { return m_hasMatched; }

private:
    /// After an empty match one that is not is looked for at the same place, as if the text began there until a search
    /// has gone further.
    bool FindNext(RegexSearch& how) {
        uint32_t from = m_match.end;
        if (m_match.begin == m_match.end) {
            if (from == m_text.size()) return false;
            if (m_matcher.Search(from, {how.hasPrevious, true, true})) return true;
            if (m_matcher.Fault() != RuleFault::None) return false;
            ++from;
        }
        how.hasPrevious = true;
        return m_matcher.Search(from, how);
    }

    /// False when the result would be too long.
    bool Append(std::wstring_view text) {
        m_isTooLong = m_isTooLong || text.size() > kLongestText - m_result.size();
        if (!m_isTooLong) m_result += text;
        return !m_isTooLong;
    }

    std::wstring_view Before() const { return m_text.substr(m_copied, m_match.begin - m_copied); }

    bool AppendReplacement() {
        std::wstring_view rest = m_replacement;
        for (;;) {
            const size_t sign = rest.find(L'$');
            if (!Append(rest.substr(0, sign))) return false;
            if (sign == std::wstring_view::npos) return true;
            rest.remove_prefix(sign + 1);
            if (!AppendSign(rest)) return false;
        }
    }

    /// What a "$" stands for with what comes after it, which is taken from `rest`.
    bool AppendSign(std::wstring_view& rest) {
        const wchar_t kind = rest.empty() ? L'\0' : rest.front();
        if (IsDigit(rest)) return AppendGroup(TakeNumber(rest));
        if (kind != L'$' && kind != L'&' && kind != L'`' && kind != L'\'') return Append(L"$");
        rest.remove_prefix(1);
        if (kind == L'&') return AppendGroup(0);
        if (kind == L'`') return Append(Before());
        return Append(kind == L'$' ? L"$" : m_text.substr(m_match.end));
    }

    static bool IsDigit(std::wstring_view rest) {
        return !rest.empty() && RegexLocale().is(std::ctype_base::digit, rest.front());
    }

    /// One digit or two.
    static int TakeNumber(std::wstring_view& rest) {
        int number = RegexDigitValue(rest.front());
        rest.remove_prefix(1);
        if (!IsDigit(rest)) return number;
        number = number * 10 + RegexDigitValue(rest.front());
        rest.remove_prefix(1);
        return number;
    }

    bool AppendGroup(int number) {
        const auto& groups = m_matcher.Groups();
        if (number < 0 || static_cast<size_t>(number) >= groups.size()) return true;
        const RegexGroup group = groups[static_cast<size_t>(number)];
        return !group.IsMatched() || Append(m_text.substr(group.begin, group.end - group.begin));
    }

    RegexMatcher& m_matcher;
    std::wstring_view m_text;
    std::wstring_view m_replacement;
    std::wstring& m_result;
    RegexGroup m_match;
    uint32_t m_copied = 0;  // so much of the text is in the result
    bool m_isTooLong = false;
    bool m_hasMatched = false;
};

}  // namespace

Regex::Regex(const std::wstring& pattern, bool isCaseSensitive) {
    try {
        m_program = std::make_unique<RegexProgram>(CompileRegex(pattern, !isCaseSensitive));
    } catch (const std::regex_error& error) {
        throw RegexFault(DescribeFault(error.code()));
    }
    m_matcher = std::make_unique<RegexMatcher>(*m_program);
}

Regex::~Regex() = default;
Regex::Regex(Regex&& other) noexcept = default;
Regex& Regex::operator=(Regex&& other) noexcept = default;

RuleFault Regex::Replace(std::wstring_view text, std::wstring_view replacement, std::wstring& result, int64_t steps) {
    Replacing replacing(*m_matcher, text, replacement, result);
    const RuleFault fault = replacing.Run(steps);
    m_hasMatched = replacing.HasMatched();
    return fault;
}

}  // namespace BatchRename
