// text_document.h - a text that is being worked on: its lines, its encoding, and what has been done to it.
#pragma once

#include "findreplace/lines.h"
#include "textio/encoding.h"

namespace QVFindAndReplace {

/// `char` for 8-bit text, the wide type for UTF-16. Holds a whole file, or one block of whole lines after the other:
/// the count of changes goes on from block to block.
template <class CharT>
class TextDocumentT {
public:
    explicit TextDocumentT(QVUtils::EncodingKind kind) : m_kind(kind) {}

    QVUtils::EncodingKind GetKind() const noexcept { return m_kind; }
    Lines<CharT>& GetLines() noexcept { return m_lines; }

    uint32_t GetChangeCount() const noexcept { return m_changeCount; }
    void CountChange() noexcept { ++m_changeCount; }

    /// Set when the user wants no more questions for this document.
    bool ReplacesAll() const noexcept { return m_replacesAll; }
    void SetReplacesAll() noexcept { m_replacesAll = true; }

private:
    const QVUtils::EncodingKind m_kind;
    Lines<CharT> m_lines;
    uint32_t m_changeCount = 0;
    bool m_replacesAll = false;
};

}  // namespace QVFindAndReplace
