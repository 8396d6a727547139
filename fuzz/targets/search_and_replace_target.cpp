// The find and replace pairs of a rename rule: expressions that explode or nest end in a fault, never in the process.
#include "rename/search_and_replace_items.h"

#include "fuzz/input.h"
#include "rename/rename_options.h"

namespace QVFuzz {
namespace {

using namespace BatchRename;

/// Plain search, case counts, one item.
std::wstring ReplacedPlainly(std::wstring text, const SearchAndReplaceItem& item, bool replacesAll) {
    for (size_t at = text.find(item.find); at != std::wstring::npos; at = text.find(item.find, at)) {
        text.replace(at, item.find.size(), item.replaceWith);
        at += item.replaceWith.size();
        if (!replacesAll) break;
    }
    return text;
}

}  // namespace

void RunSearchAndReplace(Bytes bytes) {
    if (bytes.size() > 2048) return;
    Input input(bytes);
    const uint8_t shape = input.Byte();
    uint32_t options = 0;
    if (shape & 1) options |= RenameOption::RegularExpression;
    if (shape & 2) options |= RenameOption::CaseSensitive;
    if (shape & 4) options |= RenameOption::ReplaceAll;
    std::wstring name = Widened<wchar_t>(input.Text());
    SearchAndReplaceItems items;
    while (!input.IsAtEnd() && items.size() < 6)
        items.push_back({Widened<wchar_t>(input.Text()), Widened<wchar_t>(input.Text())});
    const ItemFault fault = CheckRegularExpressions(items, (shape & 2) != 0);
    Require(fault.item >= 0 && fault.item <= static_cast<int>(items.size()), "a fault names its item");
    Require((fault.item == 0) == fault.error.empty(), "a fault has a text");
    if ((shape & 1) && fault.item != 0) return;
    SearchAndReplace search(items, options);
    std::wstring expected = name;
    if (!(shape & 1) && (shape & 2))
        for (const auto& item : items)
            if (!item.find.empty()) expected = ReplacedPlainly(expected, item, (shape & 4) != 0);
    const RuleFault given = search.Apply(name);
    Require(name.size() <= kLongestText, "no name grows beyond all limits");
    if (!(shape & 1) && (shape & 2) && given == RuleFault::None)
        Require(name == expected, "plain search is what the plain way gives");
}

}  // namespace QVFuzz
