#include "fileutils/sort_lines/sort_form.h"

#include <optional>
#include <string>

#include "fileutils/target_pattern.h"
#include "ui/controls.h"

namespace FileUtils {
namespace {

using namespace Ui;

using QVLineSorter::SortRequest;
namespace SortOption = QVLineSorter::SortOption;

constexpr uint32_t kKeyBits = SortOption::EntireLine | SortOption::Substring | SortOption::Item;
constexpr uint32_t kMethodBits = SortOption::AsText | SortOption::AsNumber | SortOption::AsDate;
constexpr uint32_t kTargetBits = SortOption::SaveAs | SortOption::KeepBackup | SortOption::DeleteBackup;
/// All that the form can show. Other bits of a stored word are of runs without a dialog, and end here.
constexpr uint32_t kFormBits = kKeyBits | kMethodBits | kTargetBits | SortOption::LanguageOrder | SortOption::Reverse |
                               SortOption::IgnoreCase | SortOption::NaturalNumbers | SortOption::RemoveDuplicates |
                               SortOption::RemoveBlankLines | SortOption::SkipLeadingSpaces |
                               SortOption::EndAtWhiteSpace;

uint32_t WithDefault(uint32_t options, uint32_t group, uint32_t otherwise) {
    return options & group ? options : options | otherwise;
}

/// Reads the fields one after the other; the first one that cannot be used gives the reason.
class FormReader {
public:
    FormReader(const SortForm& form, const SortRequest& before) : m_form(form) { m_reading.request = before; }

    SortReading Read(std::span<const std::wstring> files) {
        SortRequest& request = m_reading.request;
        request.options = OptionsOf(m_form.options);
        request.saveAsName = m_form.saveAsName;
        if (request.Has(SortOption::SaveAs)) Fail(WhyNotATarget(m_form.saveAsName, files));
        ReadNumber(m_form.keepTop, L"Start Line", request.keepTop);
        ReadNumber(m_form.keepBottom, L"End Line", request.keepBottom);
        uint32_t position = 0;
        ReadNumber(m_form.linePosition, L"Start at line position", position);
        request.lineOffset = position > 0 ? position - 1 : 0;  // users count positions from 1; 0 is as good as 1
        ReadKey(request);
        if (request.Has(SortOption::AsDate)) ReadDateFormat(request);
        Fail(FaultOfEngine(request));
        return std::move(m_reading);
    }

private:
    /// The box of natural numbers can be set only while the order is a language's, and counts only while it is not. So
    /// from the dialog it never takes effect. compatibility: 16
    static uint32_t OptionsOf(uint32_t shown) {
        uint32_t options = shown & kFormBits;
        if (options & SortOption::LanguageOrder) options &= ~(SortOption::NaturalNumbers | SortOption::IgnoreCase);
        return options;
    }

    void ReadKey(SortRequest& request) {
        // A request has one separator for both fields; the one that the key does not use is remembered if it can be.
        const std::optional<wchar_t> endCharacter = QVLineSorter::SeparatorFromText(m_form.endCharacter);
        const std::optional<wchar_t> itemSeparator = QVLineSorter::SeparatorFromText(m_form.itemSeparator);
        if (request.Has(SortOption::Item)) {
            request.separator = itemSeparator.value_or(0);
            if (!itemSeparator) Fail(L"Item Separator is one character; \\t stands for a tab.");
            ReadNumber(m_form.itemNumber, L"Item", request.itemNumber);
            if (request.itemNumber == 0) Fail(L"Item is a number of 1 or more.");
            ReadNumberLimit(request);
        } else if (request.Has(SortOption::Substring)) {
            request.separator = (endCharacter ? endCharacter : itemSeparator).value_or(0);
            if (endCharacter) request.options |= SortOption::EndAtCharacter;
            if (!endCharacter && !m_form.endCharacter.empty())
                Fail(L"End character is one character or none; \\t stands for a tab.");
            ReadNumber(m_form.substringLength, L"Substring lenght", request.substringLength);
        } else if (!request.Has(SortOption::AsText)) {
            ReadNumberLimit(request);
            // By design: the keys of all lines are equal then.
            m_reading.hint = L"Entire lines have no number and no date to sort by: choose a substring or an item.";
        }
    }

    /// The substring's length also ends the number keys of other kinds, whose field is disabled. What it shows is what
    /// counts, so that a length from an earlier sort can be seen, and be changed by way of the substring's button.
    void ReadNumberLimit(SortRequest& request) {
        if (!request.Has(SortOption::AsNumber)) return;
        request.substringLength = NumberFromText(m_form.substringLength).value_or(request.substringLength);
        if (request.substringLength > 0)
            m_reading.hint = L"Numbers are read from " + std::to_wstring(request.substringLength) +
                             L" characters at most: Substring lenght counts for them too.";
    }

    void ReadDateFormat(SortRequest& request) {
        request.dateFormat = m_form.dateFormat;
        if (m_form.dateFormat.empty()) Fail(L"Dates need a format: the button < has examples.");
    }

    static std::wstring FaultOfEngine(const SortRequest& request) {
        const std::optional<QVLineSorter::RequestFault> fault = QVLineSorter::CheckRequest(request);
        if (!fault) return {};
        const bool isLength = fault->field == QVLineSorter::RequestField::SubstringLength;
        return (isLength ? L"Substring lenght " : L"The date format ") + fault->reason + L".";
    }

    void ReadNumber(const std::wstring& text, const wchar_t* field, uint32_t& number) {
        const std::optional<uint32_t> value = NumberFromText(text);
        if (value)
            number = *value;
        else
            Fail(std::wstring(field) + L" is a number from 0 to 4294967295.");
    }

    void Fail(const std::wstring& reason) {
        if (m_reading.fault.empty()) m_reading.fault = reason;
    }

    const SortForm& m_form;
    SortReading m_reading;
};

}  // namespace

SortForm FormOf(const SortRequest& request) {
    SortForm form;
    form.options = WithDefault(request.options & kFormBits, kKeyBits, SortOption::EntireLine);
    form.options = WithDefault(form.options, kMethodBits, SortOption::AsText);
    // A target must be one: without any the files would be written over with no backup.
    form.options = WithDefault(form.options, kTargetBits, SortOption::KeepBackup);
    form.keepTop = std::to_wstring(request.keepTop);
    form.keepBottom = std::to_wstring(request.keepBottom);
    form.linePosition = std::to_wstring(uint64_t{request.lineOffset} + 1);
    form.substringLength = std::to_wstring(request.substringLength);
    form.itemNumber = std::to_wstring(request.itemNumber);
    const std::wstring separator = QVLineSorter::TextFromSeparator(request.separator);
    (request.Has(SortOption::EndAtCharacter) ? form.endCharacter : form.itemSeparator) = separator;
    form.dateFormat = request.dateFormat;
    form.saveAsName = request.saveAsName;
    return form;
}

SortEnabling EnabledFor(uint32_t options) {
    const bool isByLanguage = (options & SortOption::LanguageOrder) != 0;
    return {
        .fileName = (options & SortOption::SaveAs) != 0,
        .substring = (options & SortOption::Substring) != 0,
        .item = (options & SortOption::Item) != 0,
        .dateFormat = (options & SortOption::AsDate) != 0,
        .ignoreCase = !isByLanguage,
        .naturalNumbers = isByLanguage,
    };
}

SortReading RequestOf(const SortForm& form, const SortRequest& before, std::span<const std::wstring> files) {
    return FormReader(form, before).Read(files);
}

namespace {

using QVLineSorter::SortRequest;

constexpr wchar_t kSortSection[] = L"SortLines";
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
    for (const NumberRow& row : kNumbers) store->GetNumber(1, kSortSection, row.key, &(request.*row.field));
    // One unit more than the host is told of: the text ends there whatever the host does.
    wchar_t text[QVLineSorter::kLongestDateFormat + 2] = {};
    constexpr uint32_t kCapacity = QVLineSorter::kLongestDateFormat + 1;
    if (store->GetString(1, kSortSection, kDateFormatKey, text, kCapacity)) request.dateFormat = text;
    wchar_t separator[8] = {};
    if (store->GetString(1, kSortSection, kSeparatorKey, separator, 7))
        request.separator = QVLineSorter::SeparatorFromText(separator).value_or(0);
}

void SaveSortLinesSettings(Quorvane::SDK::ISettings* store, const SortRequest& request) {
    if (!store) return;
    for (const NumberRow& row : kNumbers) store->SetNumber(1, kSortSection, row.key, request.*row.field);
    store->SetString(1, kSortSection, kSeparatorKey, QVLineSorter::TextFromSeparator(request.separator).c_str());
    store->SetString(1, kSortSection, kDateFormatKey, request.dateFormat.c_str());
}

}  // namespace FileUtils
