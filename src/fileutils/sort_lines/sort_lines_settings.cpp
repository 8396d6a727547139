#include "fileutils/sort_lines/sort_lines_settings.h"

#include <string>

namespace FileUtils {
namespace {

using QVLineSorter::SortRequest;

constexpr wchar_t kSection[] = L"SortLines";
constexpr wchar_t kSeparatorKey[] = L"CharMatch";
constexpr wchar_t kDateFormatKey[] = L"MatchFilter";

struct NumberRow {
    const wchar_t* key;
    uint32_t SortRequest::*field;
};
constexpr NumberRow kNumbers[] = {
    {L"KeepLinesTop", &SortRequest::keepTop},  {L"KeepLinesBottom", &SortRequest::keepBottom},
    {L"LineOffset", &SortRequest::lineOffset}, {L"SubStringLen", &SortRequest::substringLength},
    {L"LineItem", &SortRequest::itemNumber},   {L"Options", &SortRequest::options},
};

}  // namespace

void LoadSortLinesSettings(Quorvane::SDK::ISettings* store, SortRequest& request) {
    if (!store) return;
    for (const NumberRow& row : kNumbers) store->GetNumber(1, kSection, row.key, &(request.*row.field));
    // One unit more than the host is told of: the text ends there whatever the host does.
    wchar_t text[QVLineSorter::kLongestDateFormat + 2] = {};
    constexpr uint32_t kCapacity = QVLineSorter::kLongestDateFormat + 1;
    if (store->GetString(1, kSection, kDateFormatKey, text, kCapacity)) request.dateFormat = text;
    wchar_t separator[8] = {};
    if (store->GetString(1, kSection, kSeparatorKey, separator, 7))
        request.separator = QVLineSorter::SeparatorFromText(separator).value_or(0);
}

void SaveSortLinesSettings(Quorvane::SDK::ISettings* store, const SortRequest& request) {
    if (!store) return;
    for (const NumberRow& row : kNumbers) store->SetNumber(1, kSection, row.key, request.*row.field);
    store->SetString(1, kSection, kSeparatorKey, QVLineSorter::TextFromSeparator(request.separator).c_str());
    store->SetString(1, kSection, kDateFormatKey, request.dateFormat.c_str());
}

}  // namespace FileUtils
