#include "findreplace/match_count.h"

#include <algorithm>
#include <new>

#include "findreplace/matching.h"
#include "findreplace/text_blocks.h"
#include "textio/text_file.h"
#include "win32/code_page.h"

namespace QVFindAndReplace {
namespace {

namespace ErrorCode = QVUtils::ErrorCode;
using QVUtils::EncodingKind;
using QVUtils::QVUtilsException;

constexpr size_t kUnitsBefore = 60;  // of a long line, shown before the first difference
constexpr size_t kUnitsShown = 240;  // and in all
constexpr wchar_t kEllipsis = L'\u2026';

/// Gives the text up to a bound, and then nothing more. Lets go of the file at its end: a run that replaces it need
/// not wait for the last block's count.
class BoundedReader final : public QVUtils::DataReader {
public:
    BoundedReader(QVUtils::DataReader& reader, const CountBounds& bounds, uint64_t size, FileCount& count)
        : m_reader(reader), m_bounds(bounds), m_size(size), m_count(count) {}

    bool GoesOn() const {
        const uint64_t percent = m_size == 0 ? 0 : std::min<uint64_t>(100, m_count.bytes * 100 / m_size);
        return !m_bounds.goesOn || m_bounds.goesOn(static_cast<uint32_t>(percent));
    }

    uint32_t Read(void* buffer, uint32_t size, uint32_t& bytesRead) override {
        bytesRead = 0;
        if (!GoesOn()) m_count.isWhole = false;
        if (m_count.isWhole) ReadSome(buffer, size, bytesRead);
        if (bytesRead == 0) m_reader.Close();
        return 1;
    }
    void Close() override { m_reader.Close(); }

private:
    void ReadSome(void* buffer, uint32_t size, uint32_t& bytesRead) {
        const uint64_t left = m_bounds.bytes - m_count.bytes;
        if (left > 0) {
            m_reader.Read(buffer, static_cast<uint32_t>(std::min<uint64_t>(size, left)), bytesRead);
            m_count.bytes += bytesRead;
            return;
        }
        uint8_t more = 0;
        uint32_t isMore = 0;
        m_reader.Read(&more, 1, isMore);
        m_count.isWhole = isMore == 0;
    }

    QVUtils::DataReader& m_reader;
    const CountBounds& m_bounds;
    const uint64_t m_size;  // bytes of the file
    FileCount& m_count;
};

std::wstring Decoded(std::wstring_view text, EncodingKind) {
    return std::wstring(text);
}
std::wstring Decoded(std::string_view text, EncodingKind kind) {
    return Win32::FromCodePage(text, kind == EncodingKind::Utf8 ? Win32::kUtf8CodePage : Win32::kThreadCodePage);
}

/// `line` from `from` on, as much as is shown of it.
template <class CharT>
std::wstring Shown(std::basic_string_view<CharT> line, size_t from, EncodingKind kind) {
    const auto whole = [&](size_t at) {
        while (at > 0 && at < line.size() && CutsCharacter(line.substr(0, at), line.substr(at))) --at;
        return std::min(at, line.size());
    };
    const size_t begin = whole(from);
    const size_t end = line.size() - begin > kUnitsShown ? whole(begin + kUnitsShown) : line.size();
    std::wstring text = Decoded(line.substr(begin, end - begin), kind);
    if (begin > 0) text.insert(text.begin(), kEllipsis);
    if (end < line.size()) text += kEllipsis;
    return text;
}

template <class CharT>
class TextCount {
public:
    TextCount(QVUtils::TextFile& file, Request& request, const TellChange& tell, FileCount& count)
        : m_file(file), m_request(request), m_tell(tell), m_count(count), m_document(count.kind) {}

    void Run(const CountBounds& bounds) {
        BoundedReader reader(m_file.GetReader(), bounds, m_file.GetSize(), m_count);
        if (bounds.goesOn) m_progress = QVUtils::Progress([&](uint32_t) { return reader.GoesOn(); });
        const bool isOverLines = m_request.GetMode() == Mode::Multiline;
        TextBlocks<CharT> blocks(reader, static_cast<uint32_t>(m_file.GetMarkSize()),
                                 isOverLines ? TextBlocks<CharT>::kWholeText : TextBlocks<CharT>::kBlockSize,
                                 std::min(m_file.GetSize(), bounds.bytes));
        View block;
        // An empty text has no block, yet a request that cannot work is told so.
        bool hasBlock = blocks.Next(block);
        do {
            LookAt(block);
            m_document.GetLines().Reset(block);
            m_count.changes = FindAndReplace<CharT>(m_document, m_request, nullptr, nullptr, &m_progress);
            if (m_tell) Tell();
            hasBlock = hasBlock && blocks.Next(block);
        } while (hasBlock);
    }

private:
    using View = std::basic_string_view<CharT>;

    void LookAt(View block) {
        // The line that a bound cuts may end in the middle of a character, or of a break.
        if (!m_count.isWhole) block = block.substr(0, block.rfind(CharT('\n')) + 1);
        LookForUtf8(block);
        const CharT* const end = block.data() + block.size();
        for (const CharT* at = block.data(); at != end && !(m_count.hasLoneBreaks && m_count.hasMixedBreaks);) {
            const auto line = QVUtils::FindLineEnd(at, end);
            m_count.hasLoneBreaks |= line.lineBreak == QVUtils::LineBreak::None && !line.atEndOfData;
            if (line.lineBreak != QVUtils::LineBreak::None) {
                if (m_firstBreak == QVUtils::LineBreak::None) m_firstBreak = line.lineBreak;
                m_count.hasMixedBreaks |= line.lineBreak != m_firstBreak;
            }
            at = line.nextLine;
        }
    }

    void LookForUtf8(std::wstring_view) {}
    void LookForUtf8(std::string_view block) {
        const auto isAscii = [](char unit) { return static_cast<unsigned char>(unit) < 0x80; };
        if (!m_mayBeUtf8 || std::ranges::all_of(block, isAscii)) return;
        m_count.looksLikeUtf8 = m_mayBeUtf8 = Win32::IsValidUtf8(block);
    }

    void Tell() {
        const Lines<CharT>& lines = m_document.GetLines();
        for (uint32_t line = 0; line < lines.GetCount(); ++line) {
            const auto& record = lines.GetRecord(line);
            const uint64_t number = m_linesBefore + line + 1;
            const View before(record.text, record.length);
            if (record.isRemoved)
                m_tell({number, Shown(before, 0, m_count.kind), {}});
            else if (record.edited && lines.GetLine(line) != before)
                TellEdited(number, before, lines.GetLine(line));
            if (!record.hasInsertedLines) continue;
            for (const auto& text : lines.GetInserted(line)) m_tell({number, {}, Shown(View(text), 0, m_count.kind)});
        }
        m_linesBefore += lines.GetCount();
    }

    void TellEdited(uint64_t number, View before, View after) {
        const auto difference = std::ranges::mismatch(before, after).in1 - before.begin();
        const auto at = static_cast<size_t>(difference);
        const bool fits = std::max(before.size(), after.size()) <= kUnitsShown;
        const size_t from = fits || at < kUnitsBefore ? 0 : at - kUnitsBefore;
        m_tell({number, Shown(before, from, m_count.kind), Shown(after, from, m_count.kind)});
    }

    QVUtils::TextFile& m_file;
    Request& m_request;
    const TellChange& m_tell;
    FileCount& m_count;
    TextDocumentT<CharT> m_document;
    QVUtils::Progress m_progress;  // only carries the wish to stop, into long lines too
    uint64_t m_linesBefore = 0;
    QVUtils::LineBreak m_firstBreak = QVUtils::LineBreak::None;
    bool m_mayBeUtf8 = m_count.kind == EncodingKind::CodePage && !Win32::IsUtf8(Win32::kThreadCodePage);
};

void Count(const std::wstring& path, Request& request, const CountBounds& bounds, const TellChange& tell,
           FileCount& count) {
    QVUtils::TextFile file(path);
    count.kind = file.GetKind();
    if (count.kind == EncodingKind::NotText) return;
    if (count.kind == EncodingKind::CodePage && (request.GetOptions() & Option::ForceUtf8))
        count.kind = EncodingKind::Utf8;
    if (count.kind == EncodingKind::Utf16)
        TextCount<WideChar>(file, request, tell, count).Run(bounds);
    else
        TextCount<char>(file, request, tell, count).Run(bounds);
}

}  // namespace

FileCount CountMatches(const std::wstring& path, Request& request, const CountBounds& bounds, const TellChange& tell) {
    FileCount count;
    const auto fail = [&](const char* text, uint32_t code) {
        count.changes = 0;
        count.errorCode = code;
        count.error = text;
    };
    try {
        Count(path, request, bounds, tell, count);
    } catch (const QVUtilsException& failure) {
        if (failure.GetErrorCode() == ErrorCode::Cancelled)
            count.isWhole = false;
        else
            fail(failure.what(), failure.GetErrorCode());
    } catch (const std::bad_alloc&) {
        fail("Out of memory", ErrorCode::OutOfMemory);
    } catch (const std::exception& failure) {
        fail(failure.what(), ErrorCode::OutOfMemory);
    }
    return count;
}

bool MayBeRunAgain(Request& request) {
    const Mode mode = request.GetMode();
    WideString text;
    for (const Converted<WideChar>& item : request.GetItems(EncodingKind::Utf16, WideChar()).replacement) {
        text += item.value_or(WideString()) + WideChar('\n');
        if (mode == Mode::One || mode == Mode::ManySame) break;  // the others are not put in
    }
    if (text.empty()) text = WideChar('\n');  // nothing is put in, and wildcards find nothing too
    TextDocumentT<WideChar> document(EncodingKind::Utf16);
    document.GetLines().Reset(text);
    try {
        return FindAndReplace<WideChar>(document, request, nullptr) == 0;
    } catch (const QVUtilsException&) {
        return false;  // a match that cuts a character of the replacement is one
    }
}

}  // namespace QVFindAndReplace
