// text_output.h - where what becomes of a text is written. Nothing is opened before there is a change, and then it is a
// file of its own; so a failure at any place leaves everything as it was.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "findreplace/lines.h"
#include "findreplace/text_blocks.h"
#include "textio/line_splitter.h"
#include "textio/replace_file.h"
#include "textio/text_file.h"
#include "textio/told_streams.h"

namespace QVFindAndReplace {

/// The file that is read, and how what becomes of it is to be written.
struct TextTarget {
    const std::wstring& source;
    const std::wstring& target;
    uint32_t options;  // Option bits
    QVUtils::TextFile& file;
    QVUtils::Progress& progress;
    bool addsLines;  // the request can add lines, which need a break
};

template <class CharT>
class TextOutput {
public:
    using View = std::basic_string_view<CharT>;
    using Blocks = TextBlocks<CharT>;

    /// What `target` refers to must outlive the object.
    explicit TextOutput(const TextTarget& target);

    bool HasBegun() const noexcept { return m_replacement.HasBegun(); }

    /// Opens what is written to, and writes the first `unchanged` bytes of the file, the mark included.
    /// @throws QVUtilsException, also when an existing target must stay
    void Begin(uint64_t unchanged);

    /// Writes the lines before `end`.
    void Write(const Lines<CharT>& lines, uint32_t end = Lines<CharT>::kAllLines);
    /// Writes text that came of `block`, each break in the style of the file's first one. None of
    /// both begins or ends in the middle of a break.
    void Write(View text, View block);

    /// Gives the file its new content. Windows error code, 0 for success: a backup that was to be deleted is still
    /// there. @throws QVUtilsException; the file is as it was then
    uint32_t Finish(const Blocks& blocks);

private:
    uint32_t MarkSize() const { return static_cast<uint32_t>(m_target.file.GetMarkSize()); }
    void SetStyle(QVUtils::LineBreak style);
    void FindStyle(View block);
    bool HasStyleThroughout(View text) const;
    void WriteText(View text);

    const TextTarget m_target;
    QVUtils::FileReplacement m_replacement;
    std::optional<QVUtils::ToldDataWriter> m_writer;
    QVUtils::LineBreak m_style = QVUtils::LineBreak::None;  // of the file's first break, once that was seen
    bool m_hasLookedAhead = false;
    Lines<CharT> m_lines;  // of text with breaks of other kinds
};

}  // namespace QVFindAndReplace
