#include "rename/rename_rule.h"

#include <algorithm>
#include <utility>

#include "win32/file_name.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

/// Turns what no name may hold into "_": for values that come from elsewhere, which their user did not type. "\r\n" is
/// left: the rule takes line breaks out of the whole name.
void CleanForName(std::wstring& value) {
    for (size_t at = 0; at < value.size(); ++at) {
        const bool isLineBreak = value[at] == L'\r' && at + 1 < value.size() && value[at + 1] == L'\n';
        if (isLineBreak)
            ++at;
        else if (Win32::IsForbiddenInNames(value[at]))
            value[at] = L'_';
    }
}

constexpr size_t kLongestFolderText = 4096;  // units

/// Counters wrap at the ends of their range.
int32_t Advanced(int32_t value, int32_t step) {
    return static_cast<int32_t>(static_cast<uint32_t>(value) + static_cast<uint32_t>(step));
}

/// Cuts a name at its last dot. A folder, and a name that ends in a dot, have no extension: so the default templates
/// give back every name as it was.
std::pair<std::wstring_view, std::wstring_view> BaseAndExtension(const BatchRenameItem& row) {
    const std::wstring_view name = row.currentName;
    const size_t dot = row.isFolder ? std::wstring_view::npos : name.rfind(L'.');
    if (dot == std::wstring_view::npos || dot + 1 == name.size()) return {name, {}};
    return {name.substr(0, dot), name.substr(dot + 1)};
}

void RemoveLineBreaks(std::wstring& text) {
    for (size_t at = text.find(L"\r\n"); at != std::wstring::npos; at = text.find(L"\r\n", at)) text.erase(at, 2);
}

void Lower(std::wstring& text) {
    std::ranges::transform(text, text.begin(), Win32::LowerAscii<wchar_t>);
}

void Upper(std::wstring& text) {
    std::ranges::transform(text, text.begin(), Win32::UpperAscii<wchar_t>);
}

void CapitaliseWords(std::wstring& name) {
    bool isWordStart = true;
    for (wchar_t& unit : name) {
        unit = isWordStart ? Win32::UpperWide(unit) : Win32::LowerWide(unit);
        isWordStart = unit == L' ' || unit == L'.' || unit == L'_';
    }
}

/// Applies the lowest case bit of `options` (RenameOption) to a new name and extension. The plain conversions change
/// only the letters A to Z, the first letters of CapitaliseWords and Sentence and the lowering of CapitaliseWords all
/// letters.
/// compatibility: 25
void ApplyCase(std::wstring& name, std::wstring& extension, uint32_t options) {
    const uint32_t choice = options & RenameOption::CaseMask;
    switch (choice & (0u - choice)) {  // the lowest bit alone
        case RenameOption::LowerBoth:
            Lower(name);
            Lower(extension);
            break;
        case RenameOption::UpperBoth:
            Upper(name);
            Upper(extension);
            break;
        case RenameOption::LowerName: Lower(name); break;
        case RenameOption::UpperName: Upper(name); break;
        case RenameOption::LowerExtension: Lower(extension); break;
        case RenameOption::UpperExtension: Upper(extension); break;
        case RenameOption::CapitaliseWords: CapitaliseWords(name); break;
        case RenameOption::Sentence:
            Lower(name);
            if (!name.empty()) name.front() = Win32::UpperWide(name.front());
            break;
        default: break;
    }
}

}  // namespace

RenameRule::RenameRule(IPropertySource* properties) : m_properties(properties) {
    SetRule({}, {});
}

bool RenameRule::SetRule(const RuleDefinition& definition, const CalendarTime& now) {
    SearchAndReplace search;
    if (definition.items) search = SearchAndReplace(*definition.items, definition.options);
    m_nameTokens = CompileTemplate(definition.nameTemplate, m_properties != nullptr);
    m_extensionTokens = CompileTemplate(definition.extensionTemplate, m_properties != nullptr);
    m_search = std::move(search);
    m_options = definition.options;
    m_counterSettings = definition.counter;
    m_counter = definition.counter.start;
    m_time = now;
    return true;
}

bool RenameRule::Compute(BatchRenameItem& row) {
    if (row.isLeftOut) {
        row.newName = row.currentName;
        row.fault = RuleFault::None;
        return true;
    }
    if (row.state == RowState::Restore) return true;
    std::tie(m_base, m_extension) = BaseAndExtension(row);
    m_fault = RuleFault::None;
    m_hasLastPairMatched = false;
    m_newBase.clear();
    m_newExtension.clear();
    for (Token& token : m_nameTokens) AppendToken(token, row, m_newBase);
    if (!row.isFolder)
        for (Token& token : m_extensionTokens) AppendToken(token, row, m_newExtension);
    if (m_options & RenameOption::CaseMask) ApplyCase(m_newBase, m_newExtension, m_options);
    if (!m_search.IsEmpty()) {
        const auto apply = [&](std::wstring& text) {
            const RuleFault fault = m_search.Apply(text);
            if (m_fault == RuleFault::None) m_fault = fault;
            m_hasLastPairMatched = m_hasLastPairMatched || m_search.HasLastMatched();
        };
        if (m_options & (RenameOption::ScopeBoth | RenameOption::ScopeName)) apply(m_newBase);
        // A folder never gets an extension, not even from an expression that finds the empty text.
        const bool hasExtension = !row.isFolder;
        if (hasExtension && m_options & (RenameOption::ScopeBoth | RenameOption::ScopeExtension)) apply(m_newExtension);
    }
    if (!m_newExtension.empty()) {
        m_newBase += L'.';
        m_newBase += m_newExtension;
    }
    RemoveLineBreaks(m_newBase);
    const bool isByHand = !row.ownName.empty();
    row.newName = isByHand ? row.ownName : m_newBase;
    row.fault = isByHand ? RuleFault::None : m_fault;
    m_base = {};
    m_extension = {};
    return true;
}

bool RenameRule::UsesCounter() const {
    const auto counts = [](const Token& token) { return token.kind == TokenKind::Counter; };
    return std::ranges::any_of(m_nameTokens, counts) || std::ranges::any_of(m_extensionTokens, counts);
}

void RenameRule::AppendToken(Token& token, const BatchRenameItem& row, std::wstring& text) {
    switch (token.kind) {
        case TokenKind::Literal: text += token.text; break;
        case TokenKind::Name: text += SelectPart(m_base, token); break;
        case TokenKind::Extension: text += SelectPart(m_extension, token); break;
        case TokenKind::Folder:
            text += SelectPart(FolderNameOf(row.location).substr(0, kLongestFolderText), token);
            break;
        case TokenKind::Counter: AppendCounter(token, text); break;
        case TokenKind::Year: {
            // Two digits are meant as such: 5 for the year 2005 would sort after 16.
            const bool isShort = token.length == 2 && m_time.year > 1000;
            AppendNumber(text, isShort ? m_time.year % 100 : m_time.year, isShort ? 2 : 0);
            break;
        }
        case TokenKind::Month: AppendNumber(text, m_time.month, token.length); break;
        case TokenKind::Day: AppendNumber(text, m_time.day, token.length); break;
        case TokenKind::Hour: AppendNumber(text, m_time.hour, token.length); break;
        case TokenKind::Minute: AppendNumber(text, m_time.minute, token.length); break;
        case TokenKind::Second: AppendNumber(text, m_time.second, token.length); break;
        case TokenKind::Property: AppendProperty(token, row, text); break;
    }
}

void RenameRule::AppendCounter(Token& token, std::wstring& text) {
    if (token.IsRuleCounter()) {
        AppendNumber(text, m_counter, m_counterSettings.digits);
        m_counter = Advanced(m_counter, m_counterSettings.step);
    } else {
        AppendNumber(text, token.start, token.length);
        token.start = Advanced(token.start, token.end);
    }
}

void RenameRule::AppendProperty(const Token& token, const BatchRenameItem& row, std::wstring& text) {
    if (!m_properties || token.text.empty()) return;
    std::wstring value;
    if (!m_properties->GetProperty(row, token.text, token.extraText, value)) m_fault = RuleFault::UnknownProperty;
    CleanForName(value);
    text += SelectPart(value, token);
}

std::wstring_view FolderNameOf(std::wstring_view location) {
    while (location.ends_with(L'\\') || location.ends_with(L'/') || location.ends_with(L':')) location.remove_suffix(1);
    const size_t separator = location.find_last_of(L"\\/");
    return separator == std::wstring_view::npos ? location : location.substr(separator + 1);
}

std::wstring DescribeRuleFault(RuleFault fault) {
    switch (fault) {
        case RuleFault::None: return {};
        case RuleFault::TooComplex: return L"a regular expression takes too long on this name";
        case RuleFault::TooDeep: return L"a regular expression needs too much memory on this name";
        case RuleFault::ResultTooLong: return L"a replacement makes the name endless";
        case RuleFault::UnknownProperty: return L"the template asks for a property that is not known";
    }
    return {};
}

}  // namespace BatchRename
