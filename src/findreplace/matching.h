// matching.h - applies one find-and-replace request to one loaded document.
#pragma once

#include "findreplace/callback.h"
#include "findreplace/lines.h"
#include "findreplace/request.h"
#include "textio/encoding.h"
#include "textio/progress.h"

namespace QVFindAndReplace {

/// A text that is being worked on: its lines, its encoding, and what has been done to it.
///
/// `char` for 8-bit text, the wide type for UTF-16. Holds a whole file, or one block of whole lines after the other:
/// the count of changes goes on from block to block.
template <class CharT>
class TextDocumentT {
public:
    explicit TextDocumentT(QVUtils::EncodingKind kind) : m_kind(kind) {}

    QVUtils::EncodingKind GetKind() const noexcept { return m_kind; }
    Lines<CharT>& GetLines() noexcept { return m_lines; }

    uint64_t GetChangeCount() const noexcept { return m_changeCount; }
    void CountChange() noexcept { ++m_changeCount; }
    void CountChanges(uint64_t changes) noexcept { m_changeCount += changes; }

    /// Set when the user wants no more questions for this document.
    bool ReplacesAll() const noexcept { return m_replacesAll; }
    void SetReplacesAll() noexcept { m_replacesAll = true; }

private:
    const QVUtils::EncodingKind m_kind;
    Lines<CharT> m_lines;
    uint64_t m_changeCount = 0;
    bool m_replacesAll = false;
};

/// Where a search over several lines stands when it leaves one block of a text for the next.
struct SearchPosition {
    static constexpr uint32_t kAllLines = 0xFFFFFFFF;

    bool isLastBlock = true;    // in: no lines follow
    size_t column = 0;          // in: of the first line; out: of `line`
    uint32_t line = kAllLines;  // out: the first line that the search has not done with
};

/// Finds and replaces in the mode that the request's options give, and returns the document's change count. With a
/// callback each match is asked about until the user wants all replaced; without one all are replaced.
///
/// One: the first find item by the first replacement item. Many: each find item by the replacement item of its number.
/// ManySame: each find item by the first replacement item. The pairs are applied one after the other, so a later one
/// finds what earlier ones put there. Multiline: all find items as consecutive lines. No mode: both texts whole.
///
/// An item that the document's encoding cannot hold is not found; such a replacement fails the document at its first
/// match (code 1113). So does, in UTF-8 and UTF-16, a match to be replaced that begins or ends inside of a character.
///
/// A text may be given in blocks. For a Multiline request that needs a `position`: a match may go over the border, so
/// the lines from `position->line` on are to be given once more, as they then stand, at the beginning of the next
/// block. `progress` is kept alive while it takes long, and can end it.
/// @throws QVUtilsException as Request::FindFault says, or when the user cancels (code 1223); WildcardError for a
/// pattern that cannot be read. The document is then not to be saved.
template <class CharT>
uint64_t FindAndReplace(TextDocumentT<CharT>& document, Request& request, IFindAndReplaceCallback* callback,
                        SearchPosition* position = nullptr, QVUtils::Progress* progress = nullptr);

}  // namespace QVFindAndReplace
