#include "linesorter/sort_file.h"

#include <new>
#include <optional>
#include <utility>

#include "linesorter/sort_key.h"
#include "linesorter/sort_lines.h"
#include "linesorter/sortable_lines.h"
#include "textio/replace_file.h"
#include "textio/text_file.h"
#include "win32/code_page.h"
#include "win32/files.h"

namespace QVLineSorter {
namespace {

using QVUtils::EncodingKind;
namespace ErrorCode = QVUtils::ErrorCode;

/// The separator in the file's own characters. One that is no single byte in the code page stands in no 8-bit file.
template <class CharT>
std::optional<CharT> SeparatorIn(wchar_t separator) {
    if (separator == 0) return std::nullopt;
    if constexpr (sizeof(CharT) == 2) {
        return separator;
    } else {
        const std::optional<std::string> bytes =
            Win32::ToCodePage(std::wstring_view(&separator, 1), Win32::kThreadCodePage);
        return bytes && bytes->size() == 1 ? std::optional(bytes->front()) : std::nullopt;
    }
}

/// The date format in the file's own characters. One that no key is read by may be of any kind: a request keeps it from
/// an earlier sort.
template <class CharT>
std::basic_string<CharT> DateFormatIn(const SortRequest& request) {
    const std::wstring& format = request.dateFormat;
    if (!request.Has(SortOption::AsDate)) return {};
    if constexpr (sizeof(CharT) == 2) {
        return format;
    } else {
        std::optional<std::string> bytes = Win32::ToCodePage(format, Win32::kThreadCodePage);
        if (!bytes)
            throw QVLineSorterException(ErrorCode::NoUnicodeTranslation,
                                        "The date format has characters that the file's code page does not have");
        return *std::move(bytes);
    }
}

template <class CharT>
KeyRule<CharT> KeyRuleOf(const SortRequest& request) {
    using Kind = typename KeyRule<CharT>::Kind;
    Kind kind = Kind::FromOffset;
    if (!request.Has(SortOption::EntireLine)) {
        if (request.Has(SortOption::Substring))
            kind = Kind::Substring;
        else if (request.Has(SortOption::Item))
            kind = Kind::Item;
    }
    return {.kind = kind,
            .lineOffset = request.lineOffset,
            .skipLeadingSpaces = request.Has(SortOption::SkipLeadingSpaces),
            .substringLength = request.substringLength,
            .endAtWhiteSpace = request.Has(SortOption::EndAtWhiteSpace),
            .endAtCharacter = request.Has(SortOption::EndAtCharacter),
            .separator = SeparatorIn<CharT>(request.separator),
            .itemNumber = request.itemNumber};
}

/// One file on its way from disk to disk.
class FileSorter {
public:
    FileSorter(const std::wstring& source, const std::wstring& target, const SortRequest& request,
               QVUtils::Progress& progress, SortFileResult& result)
        : m_source(source), m_target(target), m_request(request), m_progress(progress), m_result(result) {}

    void Sort() {
        if (CheckRequest(m_request))
            throw QVLineSorterException(ErrorCode::InvalidParameter, "The sort options are not valid");
        QVUtils::TextFile file(m_source);
        QVUtils::RefuseOversizedText(file.GetSize());
        switch (file.GetKind()) {
            case EncodingKind::CodePage: return SortAs<char>(file);
            case EncodingKind::Utf16: return SortAs<wchar_t>(file);
            default: throw QVLineSorterException(ErrorCode::TextFormatNotSupported, "Text format not supported");
        }
    }

private:
    template <class CharT>
    void SortAs(QVUtils::TextFile& file) {
        const KeyRule<CharT> rule = KeyRuleOf<CharT>(m_request);
        const std::basic_string<CharT> dateFormat = DateFormatIn<CharT>(m_request);
        // Asked for while the file is open, which it is not for long.
        auto original = QVUtils::OriginalOf(file.GetFile(), m_source, m_target);
        Workers workers(m_progress, ThreadsFor(file.GetSize()));
        SortableLinesData<CharT> data(file.GetReader(), file.GetSize(), workers);
        file.Close();
        m_progress.BeginPart(SortPart::KeysCut);
        m_result.linesTooShort = CutKeys(data, m_request, rule, workers);
        m_result.lines = CountSorted(data, m_request);
        m_result.linesWithoutValue = SortLines(data, m_request, dateFormat, workers);
        if (m_request.Has(SortOption::RemoveBlankLines)) RemoveBlankLines(data, m_request);
        m_progress.BeginPart(SortPart::Written);
        Save(data, std::move(original), workers);
    }

    template <class CharT>
    void Save(const SortableLinesData<CharT>& data, std::optional<Win32::FileState>&& original, Workers& workers) {
        const bool mayOverwrite = m_request.Has(SortOption::Overwrite);
        if (m_request.Has(SortOption::SaveAs) && !mayOverwrite && Win32::Exists(m_target))
            throw QVLineSorterException(ErrorCode::FileExists, "Target file already exists");
        const QVUtils::ReplaceRequest replace = {.target = m_target,
                                                 .mayOverwrite = mayOverwrite,
                                                 .keepBackup = m_request.Has(SortOption::KeepBackup),
                                                 .dropBackup = m_request.Has(SortOption::DeleteBackup)};
        m_result.backupErrorCode = QVUtils::ReplaceFileContent(
            replace, [&](QVUtils::DataWriter& writer) { WriteLines(data, writer, workers); }, std::move(original));
    }

    const std::wstring& m_source;
    const std::wstring& m_target;
    const SortRequest& m_request;
    QVUtils::Progress& m_progress;
    SortFileResult& m_result;
};

/// The text is left out when there is no memory for it: the code says that much.
SortFileResult FailureOf(uint32_t code, const char* text) noexcept {
    SortFileResult result;
    result.errorCode = code;
    try {
        result.errorText = text;
    } catch (const std::bad_alloc&) {
        result.errorText.clear();
    }
    return result;
}

}  // namespace

SortFileResult SortFile(const std::wstring& source, const std::wstring& target, const SortRequest& request,
                        QVUtils::TellProgress tell) noexcept {
    try {
        SortFileResult result;
        QVUtils::Progress progress(std::move(tell));
        FileSorter(source, target, request, progress, result).Sort();
        return result;
    } catch (const QVUtils::QVUtilsException& failure) {
        return FailureOf(failure.GetErrorCode(), failure.what());
    } catch (const std::exception& failure) {
        return FailureOf(ErrorCode::OutOfMemory, failure.what());
    }
}

}  // namespace QVLineSorter
