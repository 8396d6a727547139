// text_document.h - a loaded text file: its lines, its encoding, and what has been done to it.
#pragma once

#include "findreplace/lines.h"
#include "textio/encoding.h"
#include "textio/text_file.h"

namespace QVFindAndReplace {

/// `char` for 8-bit text, the wide type for UTF-16.
template <class CharT>
class TextDocumentT {
public:
    explicit TextDocumentT(QVUtils::EncodingKind kind) : m_kind(kind) {}

    /// Reads the whole file; its reader is at the end then. Failures: those of Lines::Load.
    void Load(QVUtils::TextFile& file) {
        m_lines.Load(file.GetReader(), file.GetSize(), static_cast<uint32_t>(file.GetMarkSize()));
    }
    void Save(QVUtils::DataWriter& writer) const { m_lines.Save(writer); }

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
