// regex_scanner.h - cuts a regular expression into tokens, as the standard library's ECMAScript scanner does.
#pragma once

#include <cstdint>
#include <regex>
#include <string_view>

namespace BatchRename {

enum class RegexToken : uint8_t {
    Unit,  // also of an escape that stands for one
    Any,
    BackReference,
    GroupBegin,
    PlainGroupBegin,
    LookaheadBegin,
    NegativeLookaheadBegin,
    GroupEnd,
    ClassBegin,
    NegatedClassBegin,
    ClassEnd,
    Dash,         // in a class
    LetterClass,  // "\d" and its like, by the letter
    ClassName,    // "[:name:]"
    Collating,    // "[.name.]"
    Equivalence,  // "[=name=]"
    CountBegin,
    CountEnd,
    Comma,
    Number,
    Star,
    Plus,
    Question,
    Bar,
    TextBegin,
    TextEnd,
    WordBorder,
    NoWordBorder,
    End,
};

/// What the scanner or the compiler throws; words for it are Regex's work.
[[noreturn]] inline void FailRegex(std::regex_constants::error_type code) {
    throw std::regex_error(code);
}

class RegexScanner {
public:
    /// Stands at the first token. @throws std::regex_error, here and with every Advance
    explicit RegexScanner(std::wstring_view pattern) : m_pattern(pattern) { Advance(); }

    RegexToken Token() const { return m_token; }
    wchar_t Unit() const { return m_unit; }            // of Unit and LetterClass
    int32_t Number() const { return m_number; }        // of Number and BackReference, modulo 2^32
    std::wstring_view Name() const { return m_name; }  // of the three kinds of names in classes
    void Advance();

private:
    enum class State : uint8_t { Normal, InClass, InCount };

    bool IsAtEnd() const { return m_at == m_pattern.size(); }
    bool IsNext(wchar_t unit) const { return !IsAtEnd() && m_pattern[m_at] == unit; }
    bool TakeIf(wchar_t unit);
    wchar_t Take(std::regex_constants::error_type otherwise);
    void SetUnit(wchar_t unit);
    void ScanNormal();
    void ScanGroupBegin();
    void ScanClassBegin();
    void ScanInClass();
    void ScanInBracket();
    void ScanName(RegexToken token, std::regex_constants::error_type otherwise);
    void ScanInCount();
    void ScanEscape();
    void ScanHex(int digits);
    void ScanNumber(RegexToken token);

    std::wstring_view m_pattern;
    size_t m_at = 0;
    State m_state = State::Normal;
    RegexToken m_token = RegexToken::End;
    wchar_t m_unit = 0;
    int32_t m_number = 0;
    std::wstring_view m_name;
};

/// What a digit of the locale is worth: other digits than 0 to 9 and A to F, which Windows knows, count as -1. So the
/// standard library reads them in counts, in escapes and in replacements.
int RegexDigitValue(wchar_t unit);

}  // namespace BatchRename
