#include "findreplace/process_file.h"

#include <algorithm>
#include <new>
#include <optional>

#include "findreplace/matching.h"
#include "findreplace/passing_lines.h"
#include "findreplace/passing_pairs.h"
#include "findreplace/text_blocks.h"
#include "findreplace/text_output.h"
#include "textio/text_file.h"
#include "textio/told_streams.h"
#include "win32/code_page.h"

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
    bool IsOn() const noexcept { return m_isOn; }

private:
    FileNotes& m_notes;
    bool m_isOn;
};

/// Finds and replaces in one text, block by block.
template <class CharT>
class TextProcess {
public:
    TextProcess(const Job& job, QVUtils::TextFile& file, EncodingKind kind)
        : m_job(job),
          m_file(file),
          m_document(kind),
          m_output({job.source, job.target, job.options, file, job.progress, job.request.GetMode() == Mode::Multiline}),
          m_watch(job, kind) {}

    int64_t Run() {
        // A callback that asks shows lines by their number and their neighbours: that needs the whole text.
        const bool asksNobody = (m_job.options & (Option::ReplaceAll | Option::Silent)) != 0;
        if (asksNobody) m_pairs = PassingPairs<CharT>::Make(m_job.request, m_document.GetKind());
        if (asksNobody) m_passingLines = PassingLines<CharT>::Make(m_job.request, m_document.GetKind());
        QVUtils::ToldDataReader reader(m_file.GetReader(), m_file.GetSize(), m_job.progress);
        m_job.progress.BeginPart(100);
        // Fewer calls of the system for what only passes; a small file needs no larger buffer.
        const bool isLong = asksNobody && m_file.GetSize() > Blocks::kBlockSize;
        Blocks blocks(reader, static_cast<uint32_t>(m_file.GetMarkSize()),
                      asksNobody ? Blocks::kBlockSize : Blocks::kWholeText, m_file.GetSize(),
                      m_pairs && !m_watch.IsOn() ? Blocks::Cut::AnywhereInLongLines : Blocks::Cut::AfterLines,
                      isLong ? static_cast<uint32_t>(Blocks::kBlockSize) : Blocks::kChunkSize);
        // Cancelled while over several lines: nothing is saved, yet the file counts one change and the run goes on.
        // compatibility: 4
        if (!Replace(blocks, asksNobody)) return 1;
        if (m_output.HasBegun()) Finish(blocks);
        return static_cast<int64_t>(m_document.GetChangeCount());
    }

private:
    using Blocks = TextBlocks<CharT>;
    using View = typename Blocks::View;

    /// False when cancelled.
    bool Replace(Blocks& blocks, bool asksNobody) {
        if (m_pairs) return ReplacePassing(blocks, *m_pairs, [&] { return blocks.EndsLine(); });
        if (m_passingLines) return ReplacePassing(blocks, *m_passingLines, [&] { return blocks.IsAtEnd(); });
        if (asksNobody && m_job.request.GetMode() == Mode::Multiline) return ReplaceOverLines(blocks);
        return ReplaceInLines(blocks, asksNobody ? nullptr : &m_job.callback);
    }

    /// Without a table of lines.
    template <class Passing, class Ends>
    bool ReplacePassing(Blocks& blocks, Passing& passing, Ends&& ends) {
        uint64_t unchanged = m_file.GetMarkSize();
        for (bool hasBlock = true; hasBlock;) {
            View block;
            hasBlock = blocks.Next(block);
            // What is given once more may begin inside of a character, and has been looked at.
            m_watch.LookAt(block.substr(passing.GetLeft()));
            uint64_t changes = 0;
            const View text = passing.Replace(block, ends(), changes);
            blocks.GiveBack(passing.GetLeft());
            m_document.CountChanges(changes);
            if (m_job.callback.IsCancelled()) return false;
            if (m_document.GetChangeCount() > 0 && !m_output.HasBegun()) m_output.Begin(unchanged);
            if (m_output.HasBegun()) m_output.Write(text, block);
            unchanged += text.size() * sizeof(CharT);
        }
        return true;
    }

    bool ReplaceInLines(Blocks& blocks, IFindAndReplaceCallback* callback) {
        View block;
        // An empty text has no block, yet a request that cannot work is told so.
        bool hasBlock = blocks.Next(block);
        do {
            m_watch.LookAt(block);
            m_document.GetLines().Reset(block);
            FindAndReplace(m_document, m_job.request, callback, nullptr, &m_job.progress);
            if (m_job.callback.IsCancelled()) return false;
            Save(blocks.GetOffset());
            hasBlock = hasBlock && blocks.Next(block);
        } while (hasBlock);
        return true;
    }

    /// A match may go from one block to the next, so the lines at a block's end in which one could still begin are done
    /// with the next block.
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
            Save(offset, position.line);
            carried.clear();
            if (position.line != SearchPosition::kAllLines) lines.CopyFrom(position.line, carried);
        }
        return true;
    }

    /// `offset`: bytes of the file before the lines that are held.
    void Save(uint64_t offset, uint32_t end = Lines<CharT>::kAllLines) {
        if (m_document.GetChangeCount() == 0) return;
        if (!m_output.HasBegun()) m_output.Begin(std::max<uint64_t>(offset, m_file.GetMarkSize()));
        m_output.Write(m_document.GetLines(), end);
    }

    void Finish(const Blocks& blocks) {
        const uint32_t backupError = m_output.Finish(blocks);
        if (backupError != 0)
            m_job.callback.ReportErrorA("Unable to delete the backup (.bak) of the file", backupError);
    }

    const Job& m_job;
    QVUtils::TextFile& m_file;
    TextDocumentT<CharT> m_document;
    std::optional<PassingPairs<CharT>> m_pairs;
    std::optional<PassingLines<CharT>> m_passingLines;
    TextOutput<CharT> m_output;
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
