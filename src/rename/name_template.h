// name_template.h - the template language of rename rules: from text to tokens, once a rule. What a token is worth for
// a row is the rule's work.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace BatchRename {

/// The numbers 4, 6 and 10 are not used.
enum class TokenKind : int32_t {
    Literal = 1,
    Name = 2,
    Extension = 3,
    Counter = 5,
    Year = 7,
    Month = 8,
    Day = 9,
    Hour = 11,
    Minute = 12,
    Second = 13,
    Property = 14,
    Folder = 15,
};

/// One piece of a template, compiled.
struct Token {
    TokenKind kind = TokenKind::Literal;
    std::wstring text;       // of a literal; the name of a property
    std::wstring extraText;  // a property's brace text: how its value is to be formatted
    int32_t start = 0;       // first parameter; a counter's current value
    int32_t end = 0;         // second parameter of a range, 0: none; a counter's step
    int32_t length = 0;      // length or padding width; a counter's digits

    /// A counter without parameters of its own counts with the rule.
    bool IsRuleCounter() const { return start == 0 && end == 0 && length == 0; }
};

/// A piece of a template: plain text, or one that a single "]" ended.
struct TemplatePiece {
    std::wstring text;  // of a bracketed piece with its first character and the "]"
    bool isBracketed = false;
};

/// Cuts a template into pieces. "[[" and "]]" stand for the single characters.
///
/// A single "]" ends a bracketed piece whatever the piece began with: in text without an opening "[" the first
/// character takes its place, so `xN]` is the name tag.
/// compatibility: 26
std::vector<TemplatePiece> SplitTemplate(std::wstring_view text);

/// Compiles a template. `hasProperties`: somebody can be asked for properties; without, a property tag keeps neither
/// name nor parameters and is worth "".
std::vector<Token> CompileTemplate(std::wstring_view text, bool hasProperties);

/// The part of `source` that a token's start, end and length select. Positions count from 1, in UTF-16 units.
std::wstring_view SelectPart(std::wstring_view source, const Token& token);

/// Appends a number, padded with zeros to at least `width` characters (a minus sign counts). Longer numbers are never
/// cut. A width of 0 or less is none; one above 4,096 counts as 4,096, far beyond what any name can hold.
void AppendNumber(std::wstring& text, int32_t value, int32_t width);

}  // namespace BatchRename
