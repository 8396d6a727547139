#include "rename/name_template.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr size_t kPieceReserve = 1024;
constexpr size_t kLongestField = 80;      // units
constexpr size_t kLongestBraceText = 80;  // units
constexpr int32_t kWidestNumber = 4096;

/// Too large a number counts as the largest one.
int32_t Clamp(int64_t value) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

int32_t Negated(int32_t value) {
    return Clamp(-static_cast<int64_t>(value));
}

/// Up to two numbers and what separates them.
struct Fields {
    int32_t values[2] = {};
    int count = 0;
    wchar_t separator = 0;  // before the second
};

Fields ReadFields(std::wstring_view text) {
    Fields fields;
    wchar_t lastSeparator = 0;
    for (size_t at = 0; at < text.size() && fields.count < 2;) {
        if (!Win32::IsDigit(text[at]) && text[at] != L'-') {
            ++at;
            continue;
        }
        const size_t end = std::min(text.find_first_of(L",-", at + 1), text.size());
        if (fields.count == 1) fields.separator = lastSeparator;
        fields.values[fields.count++] =
            Win32::LeadingNumber<int32_t>(text.substr(at, std::min(end - at, kLongestField)));
        if (end < text.size()) lastSeparator = text[end];
        at = end + 1;
    }
    return fields;
}

void ReadPartParameters(std::wstring_view text, Token& token) {
    const Fields fields = ReadFields(text);
    const int32_t first = fields.values[0];
    const int32_t second = fields.values[1];
    if (fields.count == 2 && fields.separator == L'-') {
        token.start = first;
        token.end = std::max(first, second);
    } else if (fields.count == 2) {
        token.start = second < 0 ? Negated(first) : first;
        token.length = second < 0 ? Negated(second) : second;
    } else if (fields.count == 1 && text.starts_with(L',')) {
        token.start = first;
    } else if (fields.count == 1) {
        token.start = first < 0 ? -1 : 1;
        token.length = first < 0 ? Negated(first) : first;
    }
}

/// Of dates and times only the length counts, as the padding width.
void ReadWidth(std::wstring_view text, Token& token) {
    ReadPartParameters(text, token);
    token.start = 0;
    token.end = 0;
}

/// Up to three runs of digits; everything else, a minus sign too, is skipped.
void ReadCounterParameters(std::wstring_view text, Token& token) {
    int32_t values[3] = {};
    size_t at = 0;
    for (int32_t& value : values) {
        while (at < text.size() && !Win32::IsDigit(text[at])) ++at;
        const size_t begin = at;
        while (at < text.size() && Win32::IsDigit(text[at])) ++at;
        value = Win32::LeadingNumber<int32_t>(text.substr(begin, at - begin));
    }
    token.start = values[0];
    token.end = values[1];
    token.length = values[2];
}

/// `name`, `name,SUB-STRING` or `name,{FORMAT},SUB-STRING`. The comma before the brace may be left out.
void ReadPropertyParameters(std::wstring_view text, Token& token) {
    const size_t nameEnd = std::min(text.find_first_of(L",{"), text.size());
    token.text = text.substr(0, nameEnd);
    text.remove_prefix(nameEnd);
    if (text.starts_with(L',')) text.remove_prefix(1);
    if (text.starts_with(L'{')) {
        const size_t braceEnd = std::min(text.find(L'}'), text.size());
        token.extraText = text.substr(1, std::min(braceEnd - 1, kLongestBraceText));
        text.remove_prefix(std::min(braceEnd + 1, text.size()));
        if (text.starts_with(L',')) text.remove_prefix(1);
    }
    ReadPartParameters(text, token);
}

/// What follows the letter of a tag, and how it is read.
struct Tag {
    wchar_t letter;
    TokenKind kind;
    void (*readParameters)(std::wstring_view, Token&);
};

constexpr Tag kTags[] = {
    {L'N', TokenKind::Name, ReadPartParameters},
    {L'n', TokenKind::Name, ReadPartParameters},
    {L'E', TokenKind::Extension, ReadPartParameters},
    {L'e', TokenKind::Extension, ReadPartParameters},
    {L'F', TokenKind::Folder, ReadPartParameters},
    {L'f', TokenKind::Folder, ReadPartParameters},
    {L'C', TokenKind::Counter, ReadCounterParameters},
    {L'c', TokenKind::Counter, ReadCounterParameters},
    // The case of these letters tells them apart: [M] is the month, [m] the minute.
    {L'Y', TokenKind::Year, ReadWidth},
    {L'M', TokenKind::Month, ReadWidth},
    {L'D', TokenKind::Day, ReadWidth},
    {L'h', TokenKind::Hour, ReadWidth},
    {L'm', TokenKind::Minute, ReadWidth},
    {L's', TokenKind::Second, ReadWidth},
    {L'?', TokenKind::Property, ReadPropertyParameters},
};

Token CompilePiece(const TemplatePiece& piece, bool hasProperties) {
    Token token;
    const std::wstring_view inside = piece.isBracketed && piece.text.size() > 2
                                         ? std::wstring_view(piece.text).substr(1, piece.text.size() - 2)
                                         : L"";
    const auto tag = inside.empty() ? std::end(kTags) : std::ranges::find(kTags, inside.front(), &Tag::letter);
    if (tag == std::end(kTags)) {
        token.text = piece.text;
        return token;
    }
    token.kind = tag->kind;
    if (tag->kind != TokenKind::Property || hasProperties) tag->readParameters(inside.substr(1), token);
    return token;
}

}  // namespace

std::vector<TemplatePiece> SplitTemplate(std::wstring_view text) {
    std::vector<TemplatePiece> pieces;
    std::wstring buffer;
    buffer.reserve(kPieceReserve);
    const auto emit = [&](bool isBracketed) {
        if (buffer.empty()) return;
        pieces.push_back({buffer, isBracketed});
        buffer.clear();
    };
    for (size_t at = 0; at < text.size(); ++at) {
        const wchar_t unit = text[at];
        const bool isDoubled = at + 1 < text.size() && text[at + 1] == unit;
        if ((unit == L'[' || unit == L']') && isDoubled) {
            buffer += unit;
            ++at;
        } else if (unit == L'[') {
            emit(false);
            buffer = L"[";
        } else if (unit == L']' && !buffer.empty()) {
            buffer += unit;
            emit(true);
        } else {
            buffer += unit;
        }
    }
    emit(false);
    return pieces;
}

std::vector<Token> CompileTemplate(std::wstring_view text, bool hasProperties) {
    std::vector<Token> tokens;
    for (const TemplatePiece& piece : SplitTemplate(text)) tokens.push_back(CompilePiece(piece, hasProperties));
    return tokens;
}

std::wstring_view SelectPart(std::wstring_view source, const Token& token) {
    const auto size = static_cast<int64_t>(source.size());
    const int64_t start = token.start;
    if (start == 0) return source;
    if (start > size) return {};
    int64_t begin = start - 1;
    int64_t end = size;
    if (start < 0) {
        end = std::max<int64_t>(0, start + 1 + size);
        begin = std::max<int64_t>(0, end - token.length);
    } else if (token.end >= 1) {
        end = begin + std::max<int64_t>(0, token.end - start + 1);
    } else if (token.length >= 1) {
        end = begin + token.length;
    }
    end = std::min(end, size);
    return source.substr(static_cast<size_t>(begin), static_cast<size_t>(end - begin));
}

void AppendNumber(std::wstring& text, int32_t value, int32_t width) {
    wchar_t digits[16];
    size_t count = 0;
    const bool isNegative = value < 0;
    // Unsigned, because the smallest number has no positive counterpart.
    uint32_t rest = isNegative ? 0u - static_cast<uint32_t>(value) : static_cast<uint32_t>(value);
    do {
        digits[count++] = static_cast<wchar_t>(L'0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    const size_t written = count + (isNegative ? 1 : 0);
    const auto wanted = static_cast<size_t>(std::clamp(width, 0, kWidestNumber));
    if (isNegative) text += L'-';
    if (wanted > written) text.append(wanted - written, L'0');
    while (count > 0) text += digits[--count];
}

}  // namespace BatchRename
