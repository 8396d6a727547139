#include "rename/regex_scanner.h"

#include <utility>

#include "rename/regex_program.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

using namespace std::regex_constants;

bool IsDigit(wchar_t unit) {
    return RegexLocale().is(std::ctype_base::digit, unit);
}

}  // namespace

int RegexDigitValue(wchar_t unit) {
    if (Win32::IsDigit(unit)) return unit - L'0';
    const wchar_t letter = Win32::LowerAscii(unit);
    return letter >= L'a' && letter <= L'f' ? letter - L'a' + 10 : -1;
}

void RegexScanner::Advance() {
    if (IsAtEnd()) {
        m_token = RegexToken::End;
        return;
    }
    switch (m_state) {
        case State::Normal: return ScanNormal();
        case State::InClass: return ScanInClass();
        case State::InCount: return ScanInCount();
    }
}

bool RegexScanner::TakeIf(wchar_t unit) {
    if (!IsNext(unit)) return false;
    ++m_at;
    return true;
}

wchar_t RegexScanner::Take(error_type otherwise) {
    if (IsAtEnd()) FailRegex(otherwise);
    return m_pattern[m_at++];
}

void RegexScanner::SetUnit(wchar_t unit) {
    m_token = RegexToken::Unit;
    m_unit = unit;
}

void RegexScanner::ScanNormal() {
    const wchar_t unit = m_pattern[m_at++];
    switch (unit) {
        case L'\\': return ScanEscape();
        case L'(': return ScanGroupBegin();
        case L')': m_token = RegexToken::GroupEnd; return;
        case L'[': return ScanClassBegin();
        case L'{':
            m_token = RegexToken::CountBegin;
            m_state = State::InCount;
            return;
        case L'^': m_token = RegexToken::TextBegin; return;
        case L'$': m_token = RegexToken::TextEnd; return;
        case L'.': m_token = RegexToken::Any; return;
        case L'*': m_token = RegexToken::Star; return;
        case L'+': m_token = RegexToken::Plus; return;
        case L'?': m_token = RegexToken::Question; return;
        case L'|': m_token = RegexToken::Bar; return;
        default: return SetUnit(unit);
    }
}

void RegexScanner::ScanGroupBegin() {
    m_token = RegexToken::GroupBegin;
    if (!TakeIf(L'?')) return;
    switch (Take(error_paren)) {
        case L':': m_token = RegexToken::PlainGroupBegin; return;
        case L'=': m_token = RegexToken::LookaheadBegin; return;
        case L'!': m_token = RegexToken::NegativeLookaheadBegin; return;
        default: FailRegex(error_paren);
    }
}

void RegexScanner::ScanClassBegin() {
    m_state = State::InClass;
    m_token = TakeIf(L'^') ? RegexToken::NegatedClassBegin : RegexToken::ClassBegin;
}

void RegexScanner::ScanInClass() {
    const wchar_t unit = m_pattern[m_at++];
    switch (unit) {
        case L'-': m_token = RegexToken::Dash; return;
        case L'[': return ScanInBracket();
        case L']':
            m_token = RegexToken::ClassEnd;
            m_state = State::Normal;
            return;
        case L'\\': return ScanEscape();
        default: return SetUnit(unit);
    }
}

void RegexScanner::ScanInBracket() {
    if (IsAtEnd()) FailRegex(error_brack);
    switch (m_pattern[m_at]) {
        case L'.': return ScanName(RegexToken::Collating, error_collate);
        case L':': return ScanName(RegexToken::ClassName, error_ctype);
        case L'=': return ScanName(RegexToken::Equivalence, error_collate);
        default: return SetUnit(L'[');
    }
}

void RegexScanner::ScanName(RegexToken token, error_type otherwise) {
    const wchar_t mark = m_pattern[m_at++];
    const size_t end = m_pattern.find(mark, m_at);
    if (end == std::wstring_view::npos || end + 1 == m_pattern.size() || m_pattern[end + 1] != L']')
        FailRegex(otherwise);
    m_token = token;
    m_name = m_pattern.substr(m_at, end - m_at);
    m_at = end + 2;
}

void RegexScanner::ScanInCount() {
    const wchar_t unit = m_pattern[m_at++];
    if (IsDigit(unit)) return ScanNumber(RegexToken::Number);
    if (unit != L',' && unit != L'}') FailRegex(error_badbrace);
    m_token = unit == L',' ? RegexToken::Comma : RegexToken::CountEnd;
    if (unit == L'}') m_state = State::Normal;
}

void RegexScanner::ScanEscape() {
    const wchar_t unit = Take(error_escape);
    switch (unit) {
        case L'0': return SetUnit(L'\0');
        case L'f': return SetUnit(L'\f');
        case L'n': return SetUnit(L'\n');
        case L'r': return SetUnit(L'\r');
        case L't': return SetUnit(L'\t');
        case L'v': return SetUnit(L'\v');
        case L'b':
            if (m_state == State::InClass) return SetUnit(L'\b');
            m_token = RegexToken::WordBorder;
            return;
        case L'B': m_token = RegexToken::NoWordBorder; return;
        case L'd':
        case L'D':
        case L's':
        case L'S':
        case L'w':
        case L'W':
            m_token = RegexToken::LetterClass;
            m_unit = unit;
            return;
        case L'c': return SetUnit(Take(error_escape));
        case L'x': return ScanHex(2);
        case L'u': return ScanHex(4);
        default: return IsDigit(unit) ? ScanNumber(RegexToken::BackReference) : SetUnit(unit);
    }
}

void RegexScanner::ScanHex(int digits) {
    int number = 0;
    for (; digits > 0; --digits) {
        const wchar_t unit = Take(error_escape);
        if (!RegexLocale().is(std::ctype_base::xdigit, unit)) FailRegex(error_escape);
        number = number * 16 + RegexDigitValue(unit);
    }
    SetUnit(static_cast<wchar_t>(number));
}

/// Its first digit is taken already.
void RegexScanner::ScanNumber(RegexToken token) {
    uint32_t number = 0;
    for (--m_at; !IsAtEnd() && IsDigit(m_pattern[m_at]); ++m_at)
        number = number * 10 + static_cast<uint32_t>(RegexDigitValue(m_pattern[m_at]));
    m_token = token;
    m_number = static_cast<int32_t>(number);
}

}  // namespace BatchRename
