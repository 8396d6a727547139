#include "fileutils/find_replace/find_replace_preview.h"

#include <algorithm>

#include "fileutils/fileutils_texts.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "textio/qvutils_exception.h"
#include "win32/code_page.h"
#include "win32/path.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;
namespace ErrorCode = QVUtils::ErrorCode;
using QVFindAndReplace::FileCount;
using QVFindAndReplace::Request;

// Read for the note on matches that are left: more would cost a large file a second reading.
constexpr uint64_t kMostBytesLeft = uint64_t{4} * 1024 * 1024;

void LogLine(IHostServices& host, uint32_t kind, const std::wstring& line) {
    host.Log(kLogLevel, kind, L"%s", line.c_str());
}

void Note(IHostServices& host, const std::wstring& note, const std::wstring& path) {
    LogLine(host, LogKind::Success, L"[Find and Replace] - Note : " + note + L" : " + path);
}

std::wstring Counted(uint64_t number, const wchar_t* one, const wchar_t* many) {
    return std::to_wstring(number) + L" " + (number == 1 ? one : many);
}

/// The lines that would change, under the file's path, which comes with the first of them.
class ChangeLog {
public:
    ChangeLog(IHostServices& host, const std::wstring& path) : m_host(host), m_path(path) {}

    void Tell(const QVFindAndReplace::LineChange& change) {
        if (m_lines++ == 0) LogLine(m_host, LogKind::Success, L"--- " + m_path);
        const std::wstring number = std::to_wstring(change.line);
        if (change.before) LogLine(m_host, LogKind::Success, number + L"- " + *change.before);
        if (change.after) LogLine(m_host, LogKind::Success, number + L"+ " + *change.after);
    }
    uint64_t GetLines() const noexcept { return m_lines; }

private:
    IHostServices& m_host;
    const std::wstring& m_path;
    uint64_t m_lines = 0;
};

/// What writing the changes would cost, or may be wrong about them.
void TellNotes(IHostServices& host, const std::wstring& path, const Request& request, const FileCount& count) {
    if (count.looksLikeUtf8 && DependsOnEncoding(request)) NoteUtf8(host, path);
    if (count.changes == 0) return;
    if (count.hasLoneBreaks) Note(host, L"Lone carriage returns (CR) are lost when the file is written", path);
    if (count.hasMixedBreaks) Note(host, L"All line ends become the kind of the first", path);
}

}  // namespace

bool DependsOnEncoding(const Request& request) {
    const auto isAscii = [](wchar_t unit) { return unit < 0x80; };
    return !std::ranges::all_of(request.GetFind(), isAscii) || !std::ranges::all_of(request.GetReplacement(), isAscii);
}

CallResult PreviewFile(IHostServices& host, const std::wstring& path, Request& request) {
    const OwnedProgress progress(host.OpenProgress(HostText(host, Text::FindReplaceTitle), 1));
    if (progress) progress->Advance(0, path.c_str());
    ChangeLog changes(host, path);
    const auto tellPercent = [&, shown = 0u](uint32_t percent) mutable {
        if (!progress) return true;
        if (percent != shown) progress->Advance(0, (std::to_wstring(percent) + L" % " + path).c_str());
        shown = percent;
        return !progress->IsCancelled();
    };
    const FileCount count = QVFindAndReplace::CountMatches(path, request, {.goesOn = tellPercent},
                                                           [&](const auto& change) { changes.Tell(change); });
    const auto tell = [&](const std::wstring& result, uint32_t code) -> CallResult {
        LogLine(host, code == 0 ? LogKind::Success : LogKind::Failure,
                L"[Find and Replace] - Preview : " + result + L" : " + path);
        return {true, code};
    };
    if (!count.isWhole) return tell(L"Operation cancelled", ErrorCode::Cancelled);
    if (count.errorCode != 0)
        return tell(L"The file would fail: " + Win32::FromCodePage(count.error, Win32::kUtf8CodePage), count.errorCode);
    if (count.kind == QVUtils::EncodingKind::NotText) return tell(L"The file is not text and would be left alone", 0);
    const CallResult result = tell(Counted(count.changes, L"change", L"changes") + L" in " +
                                       Counted(changes.GetLines(), L"line", L"lines") + L", nothing is written",
                                   0);
    TellNotes(host, path, request, count);
    return result;
}

void NoteUtf8(IHostServices& host, const std::wstring& path) {
    Note(
        host,
        L"The file looks like UTF-8 and was read in the system's code page; with FORCEUTF8 (Force UTF8 for plain text) "
        L"it is read as UTF-8",
        path);
}

void NoteMatchesLeft(IHostServices& host, const std::wstring& path, Request& request) {
    if (!MayBeRunAgain(request)) return;
    const FileCount count = QVFindAndReplace::CountMatches(path, request, {.bytes = kMostBytesLeft});
    if (count.changes == 0) return;
    Note(host,
         (count.isWhole ? L"" : L"At least ") + Counted(count.changes, L"match", L"matches") + L" left; run again",
         path);
}

}  // namespace FileUtils
