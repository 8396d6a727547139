#include "findreplace/text_output.h"

#include "findreplace/request.h"
#include "textio/byte_search.h"
#include "win32/files.h"

namespace QVFindAndReplace {

namespace ErrorCode = QVUtils::ErrorCode;
using QVUtils::LineBreak;
using QVUtils::QVUtilsException;

namespace {

QVUtils::ReplaceRequest ReplacementOf(const TextTarget& target) {
    const bool isSaveAs = (target.options & Option::SaveAs) != 0;
    QVUtils::ReplaceRequest replace;
    replace.target = target.target;
    replace.mayOverwrite = isSaveAs && (target.options & Option::Overwrite) != 0;
    replace.keepBackup = (target.options & Option::KeepBackup) != 0;
    replace.dropBackup = (target.options & Option::DropBackup) != 0;
    return replace;
}

/// The first break that is written; None when the text has none.
template <class CharT>
LineBreak FirstBreakIn(std::basic_string_view<CharT> text) {
    const CharT* at = text.data();
    for (const CharT* const end = at + text.size(); at != end;) {
        const auto line = QVUtils::FindLineEnd(at, end);
        if (line.lineBreak != LineBreak::None) return line.lineBreak;
        at = line.nextLine;
    }
    return LineBreak::None;
}

}  // namespace

template <class CharT>
TextOutput<CharT>::TextOutput(const TextTarget& target) : m_target(target), m_replacement(ReplacementOf(target)) {}

template <class CharT>
void TextOutput<CharT>::Begin(uint64_t unchanged) {
    const bool isSaveAs = (m_target.options & Option::SaveAs) != 0;
    if (isSaveAs && !(m_target.options & Option::Overwrite) && Win32::Exists(m_target.target))
        throw QVUtilsException(ErrorCode::FileExists, "Target file already exists");
    m_replacement.Begin(QVUtils::OriginalOf(m_target.file.GetFile(), m_target.source, m_target.target));
    m_writer.emplace(m_replacement.GetWriter(), m_target.progress);
    if (unchanged == 0) return;
    QVUtils::FileDataReader file(m_target.source);
    QVUtils::LimitedDataReader reader(file, unchanged);
    Blocks again(reader, MarkSize(), Blocks::kBlockSize, unchanged, Blocks::Cut::AnywhereInLongLines);
    View block;
    bool hasBlock = again.Next(block);
    QVUtils::WriteAll(*m_writer, again.GetMark().data(), again.GetMark().size());
    for (; hasBlock; hasBlock = again.Next(block)) WriteText(block);
    if (reader.GetLeft() > 0) throw QVUtilsException(ErrorCode::ReadFault, "The file was changed while it was read");
}

template <class CharT>
void TextOutput<CharT>::Write(const Lines<CharT>& lines, uint32_t end) {
    FindStyle(lines.GetText());
    lines.Save(*m_writer, m_style, end);
}

template <class CharT>
void TextOutput<CharT>::Write(View text, View block) {
    FindStyle(block);
    WriteText(text);
}

template <class CharT>
void TextOutput<CharT>::SetStyle(LineBreak style) {
    m_style = style;
    m_writer->SetLineBreak(QVUtils::LineBreakBytes<CharT>(style == LineBreak::None ? LineBreak::Lf : style));
}

/// Lines may have to be added before the first break of the file is read, and get that break: then it is looked for in
/// what follows.
template <class CharT>
void TextOutput<CharT>::FindStyle(View block) {
    if (m_style != LineBreak::None) return;
    SetStyle(FirstBreakIn(block));
    if (m_style != LineBreak::None || !m_target.addsLines || m_hasLookedAhead) return;
    m_hasLookedAhead = true;
    QVUtils::FileDataReader file(m_target.source);
    Blocks all(file, MarkSize(), Blocks::kBlockSize, file.GetFileSize(), Blocks::Cut::AnywhereInLongLines);
    for (View next; m_style == LineBreak::None && all.Next(next);) {
        m_target.progress.KeepAlive();
        SetStyle(FirstBreakIn(next));
    }
}

template <class CharT>
bool TextOutput<CharT>::HasStyleThroughout(View text) const {
    const CharT* const end = text.data() + text.size();
    if (m_style == LineBreak::CrLf) return QVUtils::HasOnlyCrLf(text.data(), end);
    return QVUtils::FindUnit(text.data(), end, CharT('\r')) == end;
}

template <class CharT>
void TextOutput<CharT>::WriteText(View text) {
    if (m_style == LineBreak::None) SetStyle(FirstBreakIn(text));
    if (HasStyleThroughout(text)) {
        QVUtils::WriteAll(*m_writer, text.data(), text.size() * sizeof(CharT));
    } else {
        m_lines.Reset(text);
        m_lines.Save(*m_writer, m_style);
    }
}

template <class CharT>
uint32_t TextOutput<CharT>::Finish(const Blocks& blocks) {
    QVUtils::WriteAll(*m_writer, blocks.GetHalfUnit().data(), blocks.GetHalfUnit().size());
    m_target.file.Close();
    return m_replacement.Commit();
}

template class TextOutput<char>;
template class TextOutput<WideChar>;

}  // namespace QVFindAndReplace
