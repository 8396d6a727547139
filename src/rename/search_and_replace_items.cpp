#include "rename/search_and_replace_items.h"

#include <algorithm>
#include <utility>

#include "rename/rename_options.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

// An expression that explodes on one name mostly explodes on the next. After this many names an item is given up, so
// that a list of thousands is flagged at once and not after thousands of timeouts.
constexpr int kMostFaults = 8;

std::wstring Folded(std::wstring text) {
    std::ranges::transform(text, text.begin(), Win32::LowerAscii<wchar_t>);
    return text;
}

}  // namespace

ItemFault CheckRegularExpressions(const SearchAndReplaceItems& items, bool isCaseSensitive) {
    for (size_t at = 0; at < items.size(); ++at) {
        if (IsSkipped(items[at])) continue;
        try {
            const Regex compiled(items[at].find, isCaseSensitive);
        } catch (const RegexFault& fault) {
            return {static_cast<int>(at) + 1, fault.Text()};
        }
    }
    return {};
}

SearchAndReplace::SearchAndReplace(const SearchAndReplaceItems& items, uint32_t options)
    : m_isRegex((options & RenameOption::RegularExpression) != 0),
      m_isCaseSensitive((options & RenameOption::CaseSensitive) != 0),
      m_replacesAll((options & RenameOption::ReplaceAll) != 0) {
    for (const SearchAndReplaceItem& given : items) {
        if (IsSkipped(given)) continue;
        Item item;
        item.replaceWith = given.replaceWith;
        if (m_isRegex)
            item.regex.emplace(given.find, m_isCaseSensitive);
        else
            item.find = m_isCaseSensitive ? given.find : Folded(given.find);
        m_items.push_back(std::move(item));
    }
}

RuleFault SearchAndReplace::Apply(std::wstring& text) {
    RuleFault first = RuleFault::None;
    m_hasLastMatched = false;
    for (Item& item : m_items) {
        const RuleFault fault = m_isRegex ? ApplyRegex(item, text) : ApplyPlain(item, text);
        if (first == RuleFault::None) first = fault;
    }
    return first;
}

RuleFault SearchAndReplace::ApplyRegex(Item& item, std::wstring& text) {
    m_hasLastMatched = false;
    if (item.faultCount >= kMostFaults) return item.lastFault;
    const RuleFault fault = item.regex->Replace(text, item.replaceWith, m_result);
    m_hasLastMatched = item.regex->HasMatched();
    if (fault == RuleFault::None) {
        text.swap(m_result);
        return fault;
    }
    ++item.faultCount;
    item.lastFault = fault;
    return fault;
}

RuleFault SearchAndReplace::ApplyPlain(const Item& item, std::wstring& text) {
    size_t at = FindPlain(item.find, text, 0);
    m_hasLastMatched = at != std::wstring::npos;
    if (at == std::wstring::npos) return RuleFault::None;
    m_result.clear();
    size_t copied = 0;
    do {
        m_result.append(text, copied, at - copied);
        m_result += item.replaceWith;
        copied = at + item.find.size();
        if (m_result.size() > kLongestText) return RuleFault::ResultTooLong;
        at = m_replacesAll ? FindPlain(item.find, text, copied) : std::wstring::npos;
    } while (at != std::wstring::npos);
    m_result.append(text, copied);
    if (m_result.size() > kLongestText) return RuleFault::ResultTooLong;
    text.swap(m_result);
    return RuleFault::None;
}

/// Without case only A to Z are folded, as in the regular expressions: both ways of searching find the same.
size_t SearchAndReplace::FindPlain(const std::wstring& find, const std::wstring& text, size_t from) const {
    if (m_isCaseSensitive) return text.find(find, from);
    const auto found =
        std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), find.begin(), find.end(),
                    [](wchar_t unit, wchar_t folded) { return Win32::LowerAscii(unit) == folded; });
    return found == text.end() ? std::wstring::npos : static_cast<size_t>(found - text.begin());
}

}  // namespace BatchRename
