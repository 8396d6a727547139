#include "linesorter/sort_request.h"

#include "linesorter/date_key.h"
#include "win32/text.h"

namespace QVLineSorter {

std::optional<RequestFault> CheckRequest(const SortRequest& request) {
    if (request.Has(SortOption::AsNumber) && request.substringLength > kLongestNumberText)
        return RequestFault{RequestField::SubstringLength, L"is above 63, the longest number key"};
    if (!request.Has(SortOption::AsDate)) return std::nullopt;
    if (request.dateFormat.size() > kLongestDateFormat)
        return RequestFault{RequestField::DateFormat, L"is longer than 127 characters"};
    if (const wchar_t conversion = FindUnsupportedConversion(request.dateFormat))
        return RequestFault{RequestField::DateFormat,
                            std::wstring(L"uses %") + conversion + L", which is not supported"};
    return std::nullopt;
}

std::optional<wchar_t> SeparatorFromText(std::wstring_view text) {
    if (text == L"\\t") return L'\t';
    if (text.size() != 1) return std::nullopt;
    return Win32::IsSurrogate(text[0]) ? std::nullopt : std::optional(text[0]);
}

std::wstring TextFromSeparator(wchar_t separator) {
    if (separator == 0) return {};
    return separator == L'\t' ? std::wstring(L"\\t") : std::wstring(1, separator);
}

}  // namespace QVLineSorter
