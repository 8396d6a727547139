#include "linesorter/sort_file.h"

#include <new>
#include <optional>

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

template <class CharT>
void ExtractKeys(SortableLinesData<CharT>& data, const KeyRule<CharT>& rule) {
    for (SortableLine& line : data.Lines()) {
        const KeySpan key = FindKey(data.LineText(line), rule);
        line.keyOffset = key.offset;
        line.keyLength = key.length;
    }
}

template <class CharT>
SortableLinesData<CharT> LoadSorted(QVUtils::TextFile& file, const SortRequest& request) {
    const KeyRule<CharT> rule = KeyRuleOf<CharT>(request);
    const std::basic_string<CharT> dateFormat = DateFormatIn<CharT>(request);
    SortableLinesData<CharT> data(file.GetReader(), file.GetSize());
    file.Close();
    ExtractKeys(data, rule);
    SortLines(data, request, dateFormat);
    if (request.Has(SortOption::RemoveBlankLines)) RemoveBlankLines(data, request);
    return data;
}

template <class CharT>
uint32_t Save(const SortableLinesData<CharT>& data, const std::wstring& target, const SortRequest& request,
              std::optional<Win32::FileState>&& original) {
    const bool mayOverwrite = request.Has(SortOption::Overwrite);
    if (request.Has(SortOption::SaveAs) && !mayOverwrite && Win32::Exists(target))
        throw QVLineSorterException(ErrorCode::FileExists, "Target file already exists");
    const QVUtils::ReplaceRequest replace = {.target = target,
                                             .mayOverwrite = mayOverwrite,
                                             .keepBackup = request.Has(SortOption::KeepBackup),
                                             .dropBackup = request.Has(SortOption::DeleteBackup)};
    return QVUtils::ReplaceFileContent(
        replace, [&](QVUtils::DataWriter& writer) { WriteLines(data, writer); }, std::move(original));
}

/// Returns the error for which a backup stayed, else 0.
uint32_t SortOneFile(const std::wstring& source, const std::wstring& target, const SortRequest& request) {
    if (CheckRequest(request))
        throw QVLineSorterException(ErrorCode::InvalidParameter, "The sort options are not valid");
    QVUtils::TextFile file(source);
    QVUtils::RefuseOversizedText(file.GetSize());
    // Asked for while the file is open, which it is not for long.
    auto original = QVUtils::OriginalOf(file.GetFile(), source, target);
    switch (file.GetKind()) {
        case EncodingKind::CodePage: {
            const auto data = LoadSorted<char>(file, request);
            return Save(data, target, request, std::move(original));
        }
        case EncodingKind::Utf16: {
            const auto data = LoadSorted<wchar_t>(file, request);
            return Save(data, target, request, std::move(original));
        }
        default: throw QVLineSorterException(ErrorCode::TextFormatNotSupported, "Text format not supported");
    }
}

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

SortFileResult SortFile(const std::wstring& source, const std::wstring& target, const SortRequest& request) noexcept {
    try {
        return {.errorCode = 0, .errorText = {}, .backupErrorCode = SortOneFile(source, target, request)};
    } catch (const QVUtils::QVUtilsException& failure) {
        return FailureOf(failure.GetErrorCode(), failure.what());
    } catch (const std::exception& failure) {
        return FailureOf(ErrorCode::OutOfMemory, failure.what());
    }
}

}  // namespace QVLineSorter
