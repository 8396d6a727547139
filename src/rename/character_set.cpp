#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

#include "rename/regex_program.h"
#include "rename/regex_scanner.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

using Bits = std::ctype_base::mask;

constexpr uint32_t kAsciiEnd = 128;

constexpr CharacterClass kWord = {std::ctype_base::alnum, true};

/// The locale's bits of each ASCII character: asking the locale costs more than the matching.
const std::array<Bits, kAsciiEnd>& AsciiBits() {
    static const auto table = [] {
        std::array<Bits, kAsciiEnd> bits = {};
        for (wchar_t unit = 0; unit < static_cast<wchar_t>(kAsciiEnd); ++unit)
            for (int bit = 0; bit < std::numeric_limits<Bits>::digits; ++bit)
                if (const auto one = static_cast<Bits>(1U << bit); RegexLocale().is(one, unit))
                    bits[static_cast<size_t>(unit)] |= one;
        return bits;
    }();
    return table;
}

bool IsAsciiMember(uint32_t unit, CharacterClass of) {
    return (AsciiBits()[unit] & of.bits) != 0 || (of.hasUnderscore && unit == L'_');
}

/// Of the ASCII characters, in their order.
constexpr std::wstring_view kCollatingNames =
    L"NUL SOH STX ETX EOT ENQ ACK alert backspace tab newline vertical-tab form-feed carriage-return SO SI "
    L"DLE DC1 DC2 DC3 DC4 NAK SYN ETB CAN EM SUB ESC IS4 IS3 IS2 IS1 "
    L"space exclamation-mark quotation-mark number-sign dollar-sign percent-sign ampersand apostrophe "
    L"left-parenthesis right-parenthesis asterisk plus-sign comma hyphen period slash "
    L"zero one two three four five six seven eight nine colon semicolon "
    L"less-than-sign equals-sign greater-than-sign question-mark commercial-at A B C D E F G H I J K L M N O "
    L"P Q R S T U V W X Y Z left-square-bracket backslash right-square-bracket circumflex underscore "
    L"grave-accent a b c d e f g h i j k l m n o p q r s t u v w x y z "
    L"left-curly-bracket vertical-line right-curly-bracket tilde DEL";
static_assert(std::ranges::count(kCollatingNames, L' ') == kAsciiEnd - 1);

/// The class of "[:name:]", and of "\d", "\s" and "\w" by their letters; upper case is the same. Where case is ignored,
/// "lower" and "upper" are "alpha".
CharacterClass ClassOf(std::wstring_view name, bool ignoresCase) {
    using Base = std::ctype_base;
    const std::pair<std::wstring_view, CharacterClass> classes[] = {
        {L"d", {Base::digit}},       {L"w", kWord},
        {L"s", {Base::space}},       {L"alnum", {Base::alnum}},
        {L"alpha", {Base::alpha}},   {L"blank", {Base::blank}},
        {L"cntrl", {Base::cntrl}},   {L"digit", {Base::digit}},
        {L"graph", {Base::graph}},   {L"lower", {Base::lower}},
        {L"print", {Base::print}},   {L"punct", {Base::punct}},
        {L"space", {Base::space}},   {L"upper", {Base::upper}},
        {L"xdigit", {Base::xdigit}},
    };
    for (const auto& [known, members] : classes) {
        if (!std::ranges::equal(name, known, {}, Win32::LowerAscii<wchar_t>)) continue;
        return ignoresCase && (members.bits & (Base::lower | Base::upper)) != 0 ? CharacterClass{Base::alpha} : members;
    }
    FailRegex(std::regex_constants::error_collate);
}

/// The character of "[.name.]" and "[=name=]".
wchar_t CollatingElementOf(std::wstring_view name) {
    std::wstring_view rest = kCollatingNames;
    for (wchar_t unit = 0;; ++unit) {
        const size_t end = rest.find(L' ');
        if (rest.substr(0, end) == name) return unit;
        if (end == std::wstring_view::npos) FailRegex(std::regex_constants::error_collate);
        rest.remove_prefix(end + 1);
    }
}

/// Reads what stands between "[" and "]".
class ClassReader {
public:
    ClassReader(RegexScanner& scanner, bool ignoresCase)
        : m_scanner(scanner), m_ignoresCase(ignoresCase), m_set(ignoresCase) {}

    CharacterSet Read(bool isNegated) {
        // A dash that comes first stands for itself.
        if (m_scanner.Token() == RegexToken::Unit || m_scanner.Token() == RegexToken::Dash) SetLast(TakeUnit());
        while (ReadTerm()) {
        }
        AddLast();
        m_set.Finish(isNegated);
        return std::move(m_set);
    }

private:
    bool Take(RegexToken token) {
        if (m_scanner.Token() != token) return false;
        m_scanner.Advance();
        return true;
    }

    wchar_t TakeUnit() {
        const wchar_t unit = m_scanner.Token() == RegexToken::Dash ? L'-' : m_scanner.Unit();
        m_scanner.Advance();
        return unit;
    }

    std::wstring_view TakeName() {
        const std::wstring_view name = m_scanner.Name();
        m_scanner.Advance();
        return name;
    }

    /// False at the end of the class.
    bool ReadTerm() {
        switch (m_scanner.Token()) {
            case RegexToken::ClassEnd: m_scanner.Advance(); return false;
            case RegexToken::Unit: SetLast(TakeUnit()); return true;
            case RegexToken::Dash: return ReadDash();
            case RegexToken::Collating: SetLast(CollatingElementOf(TakeName())); return true;
            case RegexToken::Equivalence:
                EndWithClass();
                m_set.AddEquivalents(CollatingElementOf(TakeName()));
                return true;
            case RegexToken::ClassName:
                EndWithClass();
                m_set.Add(ClassOf(TakeName(), m_ignoresCase));
                return true;
            case RegexToken::LetterClass: ReadLetterClass(TakeUnit()); return true;
            default: FailRegex(std::regex_constants::error_brack);
        }
    }

    void ReadLetterClass(wchar_t letter) {
        EndWithClass();
        const CharacterClass members = ClassOf({&letter, 1}, m_ignoresCase);
        if (letter == Win32::UpperAscii(letter))
            m_set.AddAllBut(members);
        else
            m_set.Add(members);
    }

    bool ReadDash() {
        m_scanner.Advance();
        if (Take(RegexToken::ClassEnd)) {
            SetLast(L'-');
            return false;
        }
        if (m_isAfterClass) FailRegex(std::regex_constants::error_range);
        if (m_last)
            ReadEndOfRange(*std::exchange(m_last, std::nullopt));
        else
            SetLast(L'-');
        return true;
    }

    void ReadEndOfRange(wchar_t first) {
        if (m_scanner.Token() != RegexToken::Unit && m_scanner.Token() != RegexToken::Dash)
            FailRegex(std::regex_constants::error_range);
        const wchar_t last = TakeUnit();
        if (first > last) FailRegex(std::regex_constants::error_range);
        m_set.AddRange(first, last);
    }

    /// A unit that may yet begin a range.
    void SetLast(wchar_t unit) {
        AddLast();
        m_last = unit;
        m_isAfterClass = false;
    }

    void AddLast() {
        if (m_last) m_set.Add(*m_last);
        m_last.reset();
    }

    void EndWithClass() {
        AddLast();
        m_isAfterClass = true;
    }

    RegexScanner& m_scanner;
    bool m_ignoresCase;
    CharacterSet m_set;
    std::optional<wchar_t> m_last;
    bool m_isAfterClass = false;
};

}  // namespace

const std::ctype<wchar_t>& RegexLocale() {
    static const auto& facet = std::use_facet<std::ctype<wchar_t>>(std::locale::classic());
    return facet;
}

bool IsWordUnit(wchar_t unit) {
    const auto number = static_cast<uint32_t>(unit);
    return number < kAsciiEnd ? IsAsciiMember(number, kWord) : RegexLocale().is(kWord.bits, unit);
}

void CharacterSet::AddRange(wchar_t first, wchar_t last) {
    const auto end = static_cast<uint32_t>(last) + 1;
    for (auto unit = static_cast<uint32_t>(first); unit < std::min(end, kAsciiEnd); ++unit) {
        AddAscii(unit);
        if (m_ignoresCase) AddEquivalents(static_cast<wchar_t>(unit));
    }
    if (end > kAsciiEnd) m_ranges.emplace_back(std::max(first, static_cast<wchar_t>(kAsciiEnd)), last);
}

void CharacterSet::Add(CharacterClass members) {
    for (uint32_t unit = 0; unit < kAsciiEnd; ++unit)
        if (IsAsciiMember(unit, members)) AddAscii(unit);
    m_classes |= members.bits;
}

void CharacterSet::AddAllBut(CharacterClass members) {
    for (uint32_t unit = 0; unit < kAsciiEnd; ++unit)
        if (!IsAsciiMember(unit, members)) AddAscii(unit);
    if (std::ranges::find(m_complements, members.bits) == m_complements.end()) m_complements.push_back(members.bits);
}

void CharacterSet::AddEquivalents(wchar_t unit) {
    AddAscii(static_cast<uint32_t>(Win32::LowerAscii(unit)));
    AddAscii(static_cast<uint32_t>(Win32::UpperAscii(unit)));
}

void CharacterSet::Finish(bool isNegated) {
    std::ranges::sort(m_ranges);
    std::vector<std::pair<wchar_t, wchar_t>> joined;
    for (const auto& range : m_ranges) {
        if (joined.empty() || range.first > joined.back().second)
            joined.push_back(range);
        else
            joined.back().second = std::max(joined.back().second, range.second);
    }
    m_ranges = std::move(joined);
    m_isNegated = isNegated;
    if (!isNegated) return;
    for (uint64_t& half : m_ascii) half = ~half;
}

bool CharacterSet::ContainsBeyondAscii(wchar_t unit) const {
    const auto after = std::ranges::upper_bound(m_ranges, unit, {}, &std::pair<wchar_t, wchar_t>::first);
    const auto is = [unit](std::ctype_base::mask bits) { return RegexLocale().is(bits, unit); };
    const bool isMember = (after != m_ranges.begin() && unit <= std::prev(after)->second) ||
                          (m_classes != 0 && is(m_classes)) || !std::ranges::all_of(m_complements, is);
    return isMember != m_isNegated;
}

CharacterSet LetterClass(wchar_t letter) {
    CharacterSet set(false);
    set.Add(ClassOf({&letter, 1}, false));
    set.Finish(letter == Win32::UpperAscii(letter));
    return set;
}

CharacterSet ReadCharacterClass(RegexScanner& scanner, bool isNegated, bool ignoresCase) {
    return ClassReader(scanner, ignoresCase).Read(isNegated);
}

}  // namespace BatchRename
