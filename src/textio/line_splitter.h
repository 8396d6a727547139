// line_splitter.h - where a line ends. One rule for both widths, for documents, for find items and for the sorter.
#pragma once

#include <cstdint>
#include <string>

#include "textio/byte_search.h"

namespace QVUtils {

enum class LineBreak : uint8_t {
    None = 0,  // the last line, or a line ended by a lone CR
    Cr = 1,    // never read; exists for writing
    Lf = 2,
    CrLf = 3,
};

/// One line cut from a text. Pointers lead into the text.
template <class CharT>
struct LineEnd {
    const CharT* textEnd;   // after the line's last character
    const CharT* nextLine;  // where the next line begins; the text's end after the last one
    uint8_t breakLength;    // units
    LineBreak lineBreak;
    bool atEndOfData;  // no break was found: in a block that is not the last one, the line may go on
};

/// Cuts the first line off [begin, end).
///
/// A CR that no LF follows ends the line but belongs to neither line, with kind None: that it is lost when a changed
/// document is saved is intended. The caller sees to it that a CR LF is not cut in two by the end of its block.
template <class CharT>
LineEnd<CharT> FindLineEnd(const CharT* begin, const CharT* end) {
    const CharT* const at = FindLineBreak(begin, end);
    if (at == end) return {end, end, 0, LineBreak::None, true};
    if (*at == CharT('\n')) return {at, at + 1, 1, LineBreak::Lf, false};
    if (at + 1 != end && at[1] == CharT('\n')) return {at, at + 2, 2, LineBreak::CrLf, false};
    return {at, at + 1, 0, LineBreak::None, false};
}

/// The bytes of a line break in text of this character type; empty for None.
template <class CharT>
std::string LineBreakBytes(LineBreak kind) {
    std::string bytes;
    for (const char unit : {'\r', '\n'}) {
        const bool wanted = unit == '\r' ? kind == LineBreak::Cr || kind == LineBreak::CrLf
                                         : kind == LineBreak::Lf || kind == LineBreak::CrLf;
        if (!wanted) continue;
        bytes += unit;
        bytes.append(sizeof(CharT) - 1, '\0');
    }
    return bytes;
}

}  // namespace QVUtils
