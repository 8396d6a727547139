#include "fileutils/sort_lines/sort_parameters.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "fileutils/ids.h"
#include "win32/text.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;
using QVLineSorter::SortRequest;
namespace SortOption = QVLineSorter::SortOption;

constexpr std::pair<const char*, uint32_t> kSortSwitches[] = {
    {Parameter::SkipLeadingSpace, SortOption::SkipLeadingSpaces},
    {Parameter::EndAtWhiteSpace, SortOption::EndAtWhiteSpace},
    {Parameter::IgnoreCase, SortOption::IgnoreCase},
    {Parameter::LanguageOrder, SortOption::LanguageOrder},
    {Parameter::NaturalNumberOrder, SortOption::NaturalNumbers},
    {Parameter::Reverse, SortOption::Reverse},
    {Parameter::Overwrite, SortOption::Overwrite},
    {Parameter::Silent, SortOption::Silent},
};

struct NamedOption {
    const wchar_t* name;
    uint32_t option;
};
constexpr NamedOption kSortBy[] = {
    {L"line", SortOption::EntireLine}, {L"substring", SortOption::Substring}, {L"item", SortOption::Item}};
constexpr NamedOption kSortAs[] = {
    {L"text", SortOption::AsText}, {L"num", SortOption::AsNumber}, {L"date", SortOption::AsDate}};

/// Reads the parameters of one call. What is not given leaves the request alone; what is given wrongly throws.
class SortParameters {
public:
    explicit SortParameters(ICustomCommandCall& call) : m_call(call) {}

    SortRequest Read() {
        SortRequest request;
        request.options =
            ReadName(Parameter::SortBy, kSortBy, 0) | ReadName(Parameter::SortAs, kSortAs, SortOption::AsText);
        for (const auto& [name, option] : kSortSwitches)
            if (m_call.HasParameter(name)) request.options |= option;
        if (m_call.HasParameter(Parameter::KeepBackup))
            request.options |= SortOption::KeepBackup;
        else
            request.options |= m_call.HasParameter(Parameter::Delete) ? SortOption::DeleteBackup : SortOption::SaveAs;
        request.saveAsName = Text(Parameter::Target).value_or(L"");

        request.keepTop = ReadNumber(Parameter::KeepTop);
        request.keepBottom = ReadNumber(Parameter::KeepBottom);
        request.lineOffset = ReadNumber(Parameter::LineOffset);
        if (request.lineOffset > 0) --request.lineOffset;  // scripts count positions from 1
        request.substringLength = ReadNumberText(Parameter::SubstringLength);
        request.itemNumber = ReadNumberText(Parameter::ItemNumber);

        const std::optional<wchar_t> endCharacter = ReadSeparator(Parameter::EndCharacter);
        const std::optional<wchar_t> itemSeparator = ReadSeparator(Parameter::ItemSeparator);
        if (endCharacter) request.options |= SortOption::EndAtCharacter;
        // A request has one separator. Both are given only by mistake; then the one that the key's kind uses counts.
        const bool wantsItem = request.Has(SortOption::Item);
        request.separator =
            (wantsItem ? itemSeparator : endCharacter).value_or((wantsItem ? endCharacter : itemSeparator).value_or(0));

        request.dateFormat = Text(Parameter::DateFormat).value_or(L"");
        if (const auto fault = QVLineSorter::CheckRequest(request))
            throw BadParameter{NameOf(fault->field), fault->reason};
        return request;
    }

private:
    static const char* NameOf(QVLineSorter::RequestField field) {
        return field == QVLineSorter::RequestField::SubstringLength ? Parameter::SubstringLength
                                                                    : Parameter::DateFormat;
    }

    std::optional<std::wstring> Text(const char* name) {
        const wchar_t* const text = m_call.HasParameter(name) ? m_call.GetTextParameter(name) : nullptr;
        return text ? std::optional<std::wstring>(text) : std::nullopt;
    }

    template <size_t count>
    uint32_t ReadName(const char* name, const NamedOption (&rows)[count], uint32_t whenAbsent) {
        const std::optional<std::wstring> text = Text(name);
        if (!text) return whenAbsent;
        std::wstring names;
        for (const NamedOption& row : rows) {
            if (*text == row.name) return row.option;
            names += (names.empty() ? L"" : L", ") + std::wstring(row.name);
        }
        throw BadParameter{name, L'"' + *text + L"\" is none of " + names};
    }

    uint32_t ReadNumber(const char* name) {
        uint32_t number = 0;
        if (m_call.HasParameter(name) && !m_call.GetNumberParameter(name, &number))
            throw BadParameter{name, L"is not a number of 0 or more"};
        return number;
    }

    uint32_t ReadNumberText(const char* name) {
        const std::optional<std::wstring> text = Text(name);
        if (!text) return 0;
        const bool isNumber = !text->empty() && std::ranges::all_of(*text, Win32::IsDigit<wchar_t>);
        if (!isNumber) throw BadParameter{name, L'"' + *text + L"\" is not a number of 0 or more"};
        const std::optional<uint32_t> number = Win32::WholeNumber<uint32_t>(*text);
        if (!number) throw BadParameter{name, L'"' + *text + L"\" is too large"};
        return *number;
    }

    std::optional<wchar_t> ReadSeparator(const char* name) {
        const std::optional<std::wstring> text = Text(name);
        if (!text) return std::nullopt;
        const std::optional<wchar_t> separator = QVLineSorter::SeparatorFromText(*text);
        if (!separator) throw BadParameter{name, L'"' + *text + L"\" is not one character (\\t stands for a tab)"};
        return separator;
    }

    ICustomCommandCall& m_call;
};

/// The parameters of one call that do not go with the others.
class SortNotes {
public:
    SortNotes(ICustomCommandCall& call, const SortRequest& request) : m_call(call), m_request(request) {}

    std::vector<std::wstring> Find() {
        const bool isSaved = Is(SortOption::SaveAs);
        NoteUnused(!isSaved, {Parameter::Target}, L"together with KEEPBACKUP or DELETE");
        NoteUnused(Is(SortOption::KeepBackup), {Parameter::Delete}, L"together with KEEPBACKUP");
        FindForKey();
        FindForOrder();
        return std::move(m_notes);
    }

private:
    bool Is(uint32_t option) const { return m_request.Has(option); }

    void FindForKey() {
        const bool isSubstring = Is(SortOption::Substring);
        const bool hasLength = m_request.substringLength > 0;
        NoteUnused(!Is(SortOption::Item), {Parameter::ItemNumber, Parameter::ItemSeparator}, L"without SORTBY=item");
        NoteUnused(!isSubstring, {Parameter::EndCharacter, Parameter::EndAtWhiteSpace}, L"without SORTBY=substring");
        // The length ends number keys of every kind.
        NoteUnused(!isSubstring && !Is(SortOption::AsNumber), {Parameter::SubstringLength},
                   L"without SORTBY=substring or SORTAS=num");
        NoteUnused(isSubstring && hasLength, {Parameter::EndAtWhiteSpace, Parameter::EndCharacter},
                   L"together with SUBSTRLEN");
        NoteUnused(isSubstring && !hasLength && Is(SortOption::EndAtWhiteSpace), {Parameter::EndCharacter},
                   L"together with ENDATWHITESPACE");
        if (!Is(SortOption::Item)) return;
        if (m_request.itemNumber == 0) Note(L"SORTBY=item without ITEM : no line has a key, and the order stays");
        if (m_request.separator == 0) Note(L"SORTBY=item without ITEMSEP : each line is one item");
    }

    void FindForOrder() {
        const bool byValue = Is(SortOption::AsNumber | SortOption::AsDate);
        NoteUnused(byValue, {Parameter::IgnoreCase, Parameter::LanguageOrder, Parameter::NaturalNumberOrder},
                   L"together with SORTAS=num or SORTAS=date");
        NoteUnused(!Is(SortOption::AsDate), {Parameter::DateFormat}, L"without SORTAS=date");
        const bool byLanguage = Is(SortOption::LanguageOrder);
        NoteUnused(!byValue && byLanguage, {Parameter::IgnoreCase}, L"together with LANGUAGEORDER");
        NoteUnused(!byValue && !byLanguage, {Parameter::NaturalNumberOrder}, L"without LANGUAGEORDER");
        if (byValue && Is(SortOption::EntireLine))
            Note(L"SORTBY=line : entire lines have no number and no date, and the order stays");
        else if (Is(SortOption::AsDate) && m_request.dateFormat.empty())
            Note(L"SORTAS=date without DATEFORMAT : no line has a date, and the order stays");
    }

    void NoteUnused(bool isUnused, std::initializer_list<const char*> names, const wchar_t* why) {
        if (!isUnused) return;
        for (const char* const name : names)
            if (m_call.HasParameter(name))
                Note(std::wstring(name, name + std::char_traits<char>::length(name)) + L" is not used " + why);
    }

    void Note(std::wstring note) { m_notes.push_back(std::move(note)); }

    ICustomCommandCall& m_call;
    const SortRequest& m_request;
    std::vector<std::wstring> m_notes;
};

}  // namespace

SortRequest ReadSortParameters(ICustomCommandCall& call) {
    return SortParameters(call).Read();
}

std::vector<std::wstring> NotesOnSortParameters(ICustomCommandCall& call, const SortRequest& request) {
    return SortNotes(call, request).Find();
}

}  // namespace FileUtils
