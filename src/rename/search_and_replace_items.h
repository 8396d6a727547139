// search_and_replace_items.h - the ordered find and replace pairs of a rule, and what is done with them to one text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "rename/regex.h"
#include "rename/rename_item.h"

namespace BatchRename {

struct SearchAndReplaceItem {
    std::wstring find;  // "": the item is skipped
    std::wstring replaceWith;
    bool isOn = true;  // false: skipped as well, kept to be switched on again

    bool operator==(const SearchAndReplaceItem&) const = default;
};

/// Shared by the window, the rule and the profiles; a changed list is a new one.
using SearchAndReplaceItems = std::vector<SearchAndReplaceItem>;
using SharedItems = std::shared_ptr<const SearchAndReplaceItems>;

/// What is switched off or has nothing to find does nothing.
inline bool IsSkipped(const SearchAndReplaceItem& item) {
    return !item.isOn || item.find.empty();
}

/// The first item whose find text is no regular expression.
struct ItemFault {
    int item = 0;        // counted from 1; 0: all compile
    std::wstring error;  // in words
};

/// Compiles the find text of every item that is not skipped, and keeps nothing.
ItemFault CheckRegularExpressions(const SearchAndReplaceItems& items, bool isCaseSensitive);

/// The items made ready once a rule, and applied to many names.
class SearchAndReplace {
public:
    SearchAndReplace() = default;
    /// `options`: RenameOption bits.
    /// @throws RegexFault when the find texts are regular expressions and one does not compile
    SearchAndReplace(const SearchAndReplaceItems& items, uint32_t options);

    bool IsEmpty() const { return m_items.empty(); }

    /// Applies the items in their order. An item that a guard stops leaves the text as it was before that item; the
    /// first such fault is the result.
    RuleFault Apply(std::wstring& text);
    /// Whether the last of the items that are not skipped found its text in that of the last Apply.
    bool HasLastMatched() const { return m_hasLastMatched; }

private:
    struct Item {
        std::wstring find;  // folded, unless case matters
        std::wstring replaceWith;
        std::optional<Regex> regex;
        int faultCount = 0;
        RuleFault lastFault = RuleFault::None;
    };
    // Both set m_hasLastMatched.
    RuleFault ApplyRegex(Item& item, std::wstring& text);
    RuleFault ApplyPlain(const Item& item, std::wstring& text);
    size_t FindPlain(const std::wstring& find, const std::wstring& text, size_t from) const;

    std::vector<Item> m_items;
    bool m_isRegex = false;
    bool m_isCaseSensitive = false;
    bool m_replacesAll = false;
    bool m_hasLastMatched = false;
    std::wstring m_result;  // kept between texts for its memory
};

}  // namespace BatchRename
