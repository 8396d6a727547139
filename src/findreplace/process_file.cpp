#include "findreplace/process_file.h"

#include <algorithm>
#include <new>
#include <optional>

#include "findreplace/matching.h"
#include "findreplace/text_blocks.h"
#include "textio/replace_file.h"
#include "textio/text_file.h"
#include "textio/told_streams.h"
#include "win32/code_page.h"
#include "win32/files.h"

namespace QVFindAndReplace {
namespace {

namespace ErrorCode = QVUtils::ErrorCode;
using QVUtils::EncodingKind;
using QVUtils::QVUtilsException;

/// Where the work on one file reads from and writes to.
struct Job {
    const std::wstring& source;
    const std::wstring& target;
    uint32_t options;
    Request& request;
    IFindAndReplaceCallback& callback;
    FileNotes& notes;
    QVUtils::Progress& progress;
};

bool IsAscii(const std::wstring& text) {
    return std::ranges::all_of(text, [](wchar_t unit) { return unit < 0x80; });
}

/// Looks at the blocks of an 8-bit text whether they are UTF-8 that nothing in the file calls so.
class Utf8Watch {
public:
    Utf8Watch(const Job& job, EncodingKind kind)
        : m_notes(job.notes),
          m_isOn(kind == EncodingKind::CodePage && !Win32::IsUtf8(Win32::kThreadCodePage) &&
                 !(IsAscii(job.request.GetFind()) && IsAscii(job.request.GetReplacement()))) {}

    void LookAt(std::string_view block) {
        const auto isAscii = [](char unit) { return static_cast<unsigned char>(unit) < 0x80; };
        if (!m_isOn || std::ranges::all_of(block, isAscii)) return;
        m_notes.looksLikeUtf8 = m_isOn = Win32::IsValidUtf8(block);
    }
    void LookAt(std::wstring_view) {}

private:
    FileNotes& m_notes;
    bool m_isOn;
};

QVUtils::ReplaceRequest ReplacementOf(const Job& job) {
    const bool isSaveAs = (job.options & Option::SaveAs) != 0;
    QVUtils::ReplaceRequest replace;
    replace.target = job.target;
    replace.mayOverwrite = isSaveAs && (job.options & Option::Overwrite) != 0;
    replace.keepBackup = (job.options & Option::KeepBackup) != 0;
    replace.dropBackup = (job.options & Option::DropBackup) != 0;
    return replace;
}

/// Finds and replaces in one text, block by block. Nothing is written before there is a change, and then to a file of
/// its own; so a failure at any place leaves everything as it was.
template <class CharT>
class TextProcess {
public:
    TextProcess(const Job& job, QVUtils::TextFile& file, EncodingKind kind)
        : m_job(job), m_file(file), m_document(kind), m_replacement(ReplacementOf(job)), m_watch(job, kind) {}

    int64_t Run() {
        // Whoever asks is shown lines by their number and their neighbours: that needs the whole text.
        const bool asksNobody = (m_job.options & (Option::ReplaceAll | Option::Silent)) != 0;
        IFindAndReplaceCallback* const callback = asksNobody ? nullptr : &m_job.callback;
        QVUtils::ToldDataReader reader(m_file.GetReader(), m_file.GetSize(), m_job.progress);
        m_job.progress.BeginPart(100);
        Blocks blocks(reader, MarkSize(), asksNobody ? Blocks::kBlockSize : Blocks::kWholeText, m_file.GetSize());
        const bool isOverLines = asksNobody && m_job.request.GetMode() == Mode::Multiline;
        const bool isDone = isOverLines ? ReplaceOverLines(blocks) : ReplaceInLines(blocks, callback);
        // Cancelled while over several lines: nothing is saved, yet the file counts one change and the run goes on.
        // compatibility: 4
        if (!isDone) return 1;
        if (m_replacement.HasBegun()) Finish(blocks);
        return static_cast<int64_t>(m_document.GetChangeCount());
    }

private:
    using Blocks = TextBlocks<CharT>;
    using View = typename Blocks::View;

    uint32_t MarkSize() const { return static_cast<uint32_t>(m_file.GetMarkSize()); }

    /// False when cancelled.
    bool ReplaceInLines(Blocks& blocks, IFindAndReplaceCallback* callback) {
        View block;
        // An empty text has no block, yet a request that cannot work is told so.
        bool hasBlock = blocks.Next(block);
        do {
            m_watch.LookAt(block);
            m_document.GetLines().Reset(block);
            FindAndReplace(m_document, m_job.request, callback, nullptr, &m_job.progress);
            if (m_job.callback.IsCancelled()) return false;
            if (m_document.GetChangeCount() > 0) Save(blocks, blocks.GetOffset());
            hasBlock = hasBlock && blocks.Next(block);
        } while (hasBlock);
        return true;
    }

    /// A match may go from one block to the next, so the lines at a block's end in which one could still begin are done
    /// with the next block. False when cancelled.
    bool ReplaceOverLines(Blocks& blocks) {
        std::vector<CharT> text;
        std::vector<CharT> carried;
        SearchPosition position;
        position.isLastBlock = false;
        while (!position.isLastBlock) {
            View block;
            position.isLastBlock = !blocks.Next(block);
            m_watch.LookAt(block);
            position.line = SearchPosition::kAllLines;
            const uint64_t offset = blocks.GetOffset() - carried.size() * sizeof(CharT);
            text.swap(carried);
            text.insert(text.end(), block.begin(), block.end());
            Lines<CharT>& lines = m_document.GetLines();
            lines.Reset(View(text.data(), text.size()));
            FindAndReplace<CharT>(m_document, m_job.request, nullptr, &position, &m_job.progress);
            if (m_job.callback.IsCancelled()) return false;
            if (m_document.GetChangeCount() > 0) Save(blocks, offset, position.line);
            carried.clear();
            if (position.line != SearchPosition::kAllLines) lines.CopyFrom(position.line, carried);
        }
        return true;
    }

    /// `offset`: bytes of the file before the lines that are held.
    void Save(const Blocks& blocks, uint64_t offset, uint32_t end = Lines<CharT>::kAllLines) {
        if (!m_replacement.HasBegun()) Begin(blocks, offset);
        if (m_style == QVUtils::LineBreak::None) LookAheadForBreak(blocks);
        m_document.GetLines().Save(*m_writer, m_style, end);
    }

    /// Lines may have to be added before the first break of the file is read, and get that break.
    void LookAheadForBreak(const Blocks& blocks) {
        if (m_hasLookedAhead || m_job.request.GetMode() != Mode::Multiline) return;
        if (m_document.GetLines().FindBreak() != QVUtils::LineBreak::None) return;
        m_hasLookedAhead = true;
        QVUtils::FileDataReader file(m_job.source);
        Blocks all(file, MarkSize(), Blocks::kBlockSize, file.GetFileSize());
        Lines<CharT> lines;
        for (View block; m_style == QVUtils::LineBreak::None && all.Next(block);) {
            m_job.progress.KeepAlive();
            if (all.GetOffset() < blocks.GetOffset()) continue;
            lines.Reset(block);
            m_style = lines.FindBreak();
        }
        m_writer->SetLineBreak(
            QVUtils::LineBreakBytes<CharT>(m_style == QVUtils::LineBreak::None ? QVUtils::LineBreak::Lf : m_style));
    }

    /// Opens what is written to, and writes what lies before the first block with a change.
    void Begin(const Blocks& blocks, uint64_t offset) {
        const bool isSaveAs = (m_job.options & Option::SaveAs) != 0;
        if (isSaveAs && !(m_job.options & Option::Overwrite) && Win32::Exists(m_job.target))
            throw QVUtilsException(ErrorCode::FileExists, "Target file already exists");
        m_replacement.Begin(QVUtils::OriginalOf(m_file.GetFile(), m_job.source, m_job.target));
        m_writer.emplace(m_replacement.GetWriter(), m_job.progress);
        QVUtils::WriteAll(*m_writer, blocks.GetMark().data(), blocks.GetMark().size());
        if (offset == 0) return;
        QVUtils::FileDataReader file(m_job.source);
        QVUtils::LimitedDataReader reader(file, offset);
        Blocks again(reader, MarkSize(), Blocks::kBlockSize, offset);
        Lines<CharT> lines;
        for (View block; again.Next(block);) {
            lines.Reset(block);
            lines.Save(*m_writer, m_style);
        }
        if (reader.GetLeft() > 0)
            throw QVUtilsException(ErrorCode::ReadFault, "The file was changed while it was read");
    }

    void Finish(const Blocks& blocks) {
        QVUtils::WriteAll(*m_writer, blocks.GetHalfUnit().data(), blocks.GetHalfUnit().size());
        m_file.Close();
        const uint32_t backupError = m_replacement.Commit();
        if (backupError != 0)
            m_job.callback.ReportErrorA("Unable to delete the backup (.bak) of the file", backupError);
    }

    const Job& m_job;
    QVUtils::TextFile& m_file;
    TextDocumentT<CharT> m_document;
    QVUtils::FileReplacement m_replacement;
    std::optional<QVUtils::ToldDataWriter> m_writer;
    QVUtils::LineBreak m_style = QVUtils::LineBreak::None;
    bool m_hasLookedAhead = false;
    Utf8Watch m_watch;
};

int64_t Process(const Job& job) {
    QVUtils::TextFile file(job.source);
    switch (file.GetKind()) {
        case EncodingKind::NotText:
            job.callback.ReportErrorA("File is not detected as a text file. Unsupported file format",
                                      ErrorCode::NotATextFile);
            return 0;
        case EncodingKind::Utf16: return TextProcess<WideChar>(job, file, EncodingKind::Utf16).Run();
        case EncodingKind::Utf8: return TextProcess<char>(job, file, EncodingKind::Utf8).Run();
        case EncodingKind::CodePage: break;
    }
    const bool forceUtf8 = (job.options & Option::ForceUtf8) != 0;
    return TextProcess<char>(job, file, forceUtf8 ? EncodingKind::Utf8 : EncodingKind::CodePage).Run();
}

}  // namespace

int64_t ProcessFile(const std::wstring& source, const std::wstring& target, uint32_t options, Request& request,
                    IFindAndReplaceCallback& callback, FileNotes& notes, QVUtils::TellProgress tell) {
    notes = {};
    QVUtils::Progress progress(std::move(tell));
    callback.SetCurrentFile(source.c_str());
    const auto fail = [&](const char* text, uint32_t code) {
        callback.ReportErrorA(text, code);
        return kFileFailed;
    };
    int64_t result = kFileFailed;
    try {
        result = Process({source, target, options, request, callback, notes, progress});
    } catch (const QVUtilsException& failure) {
        result = failure.GetErrorCode() == ErrorCode::Cancelled ? kFileCancelled
                                                                : fail(failure.what(), failure.GetErrorCode());
    } catch (const std::bad_alloc&) {
        result = fail("Out of memory", ErrorCode::OutOfMemory);
    } catch (const std::exception& failure) {
        result = fail(*failure.what() ? failure.what() : "Out of memory", ErrorCode::OutOfMemory);
    }
    // A replacement that was never put in is nothing to tell about.
    if (result == 0 && IsAscii(request.GetFind())) notes.looksLikeUtf8 = false;
    callback.EndOfFile();
    return result;
}

}  // namespace QVFindAndReplace
