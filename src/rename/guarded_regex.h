// guarded_regex.h - the standard regular expressions, made safe for names that are typed live in somebody else's
// process. The standard engine recurses for every character and can run for days; here every step is counted and every
// frame compared with the end of the stack.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>

#include "rename/rename_item.h"
#include "win32/text.h"

namespace BatchRename {

/// No name and no path is longer; a text that grows beyond it is refused. UTF-16 units.
inline constexpr size_t kLongestText = 32767;

/// A pattern that does not compile; the text says why in words for the user.
class RegexFault : public std::runtime_error {
public:
    explicit RegexFault(std::wstring text)
        : std::runtime_error("invalid regular expression"), m_text(std::move(text)) {}
    const std::wstring& Text() const noexcept { return m_text; }

private:
    std::wstring m_text;
};

/// The standard traits of wide characters, without their slow parts: those ask the locale about every unit of a text,
/// which costs more than the matching. What matches what is the same.
class NameRegexTraits : public std::regex_traits<wchar_t> {
public:
    using Base = std::regex_traits<wchar_t>;

    /// A class of characters; for ASCII with its members.
    struct char_class_type {
        Base::char_class_type base = {};
        uint64_t ascii[2] = {};

        char_class_type() = default;
        char_class_type(int) {}  // the engine begins with 0
        char_class_type& operator|=(const char_class_type& other) {
            base |= other.base;
            ascii[0] |= other.ascii[0];
            ascii[1] |= other.ascii[1];
            return *this;
        }
        bool operator==(const char_class_type& other) const { return base == other.base; }
    };

    wchar_t translate_nocase(wchar_t unit) const { return Win32::LowerAscii(unit); }
    /// A locale of LocaleThatIgnoresCase() makes back references ignore case too.
    locale_type imbue(locale_type locale);
    /// What a back reference compares: the engine asks traits that are not its own for this, whatever the case.
    template <class Iterator>
    string_type transform(Iterator first, Iterator last) const {
        string_type units(first, last);
        if (m_ignoresCase)
            for (wchar_t& unit : units) unit = Win32::LowerAscii(unit);
        return units;
    }
    bool isctype(wchar_t unit, const char_class_type& of) const {
        if (unit < 0x80) return (of.ascii[unit / 64] >> (unit % 64) & 1) != 0;
        return Base::isctype(unit, of.base);
    }
    template <class Iterator>
    char_class_type lookup_classname(Iterator first, Iterator last, bool ignoresCase = false) const {
        // The engine asks for this one twice wherever a text is looked at for the border of a word.
        const bool isWord = std::distance(first, last) == 1 && *first == L'w';
        return isWord ? m_word : LookUp(first, last, ignoresCase);
    }

private:
    template <class Iterator>
    char_class_type LookUp(Iterator first, Iterator last, bool ignoresCase) const {
        char_class_type found;
        found.base = Base::lookup_classname(first, last, ignoresCase);
        for (wchar_t unit = 0; unit < 0x80; ++unit)
            if (Base::isctype(unit, found.base)) found.ascii[unit / 64] |= uint64_t(1) << (unit % 64);
        return found;
    }

    bool m_ignoresCase = false;
    char_class_type m_word;
};

/// One compiled expression of the ECMAScript grammar. Ignoring case folds A to Z.
class GuardedRegex {
public:
    GuardedRegex() = default;
    /// @throws RegexFault for a malformed pattern, one of more than 4,096 units, one nested deeper than 500, and one so
    /// large that running it could exhaust the stack or take seconds between two looks at the text
    GuardedRegex(const std::wstring& pattern, bool isCaseSensitive);

    /// Replaces every match in `text`, by the ECMAScript format rules, into `result`. After a fault `result` is
    /// meaningless. One million steps are allowed for a text, 12 to 50 ms, and fewer the more a step of this expression
    /// can cost: no text takes longer than about a quarter of a second. The live preview and the run have the same
    /// limit, so that the run does what the preview showed.
    RuleFault Replace(const std::wstring& text, const std::wstring& replacement, std::wstring& result) const;

private:
    std::basic_regex<wchar_t, NameRegexTraits> m_regex;
    uint64_t m_searchCost = 0;   // of beginning a search, by states
    uint64_t m_stepCost = 1;     // in plain steps, at most
    size_t m_stackForCalls = 0;  // bytes
};

/// How much the standard engine makes of a pattern, counted from its text (pattern_size.cpp): the engine does not tell,
/// and what it spends on some parts of an expression passes every comparison by which it could be stopped.
/// Upper estimates for a pattern of the ECMAScript grammar; what stands under a count such as "{5}" is counted as
/// often. For a pattern that does not compile they mean nothing. None is above a million.
struct PatternSize {
    uint64_t states = 0;      // of the compiled expression
    uint64_t groups = 0;      // that keep what they match; counts do not multiply them
    uint64_t lookaheads = 0;  // for each that is tried the engine allocates and fills arrays by states and by groups
    uint64_t uncheckedCalls = 0;  // that the engine can nest without a comparison of two places of the text
    uint64_t longestClass = 0;    // units between "[" and "]"
};

PatternSize PatternSizeOf(std::wstring_view pattern);

}  // namespace BatchRename
