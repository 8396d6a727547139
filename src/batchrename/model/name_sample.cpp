#include "batchrename/model/name_sample.h"

#include <memory>
#include <utility>

#include "batchrename/rule_context.h"

namespace BatchRename {
namespace {

/// The pairs before the one at `place`, and this one. A fault of another pair is told of in its own dialog: without it
/// this one can be tried all the same.
SearchAndReplaceItems ItemsUpTo(const RuleDefinition& rule, size_t place) {
    const auto end = rule.items->begin() + static_cast<std::ptrdiff_t>(place);
    SearchAndReplaceItems items(rule.items->begin(), end);
    const bool isRegex = (rule.options & RenameOption::RegularExpression) != 0;
    const bool isCaseSensitive = (rule.options & RenameOption::CaseSensitive) != 0;
    if (isRegex && CheckRegularExpressions(items, isCaseSensitive).item != 0) items.clear();
    items.push_back(*end);
    items.back().isOn = true;
    return items;
}

}  // namespace

ItemTrial TryItem(const RuleDefinition& rule, size_t place, const RenameItems& rows,
                  const std::function<bool()>& isTimeUp) {
    ItemTrial trial;
    if ((*rule.items)[place].find.empty()) return trial;
    RuleDefinition definition = rule;
    definition.items = std::make_shared<const SearchAndReplaceItems>(ItemsUpTo(rule, place));
    RenameRule tried;
    try {
        tried.SetRule(definition, LocalTimeNow());
    } catch (const RegexFault& fault) {
        trial.error = fault.Text();
        return trial;
    }
    for (const auto& row : rows) {
        if (isTimeUp()) break;
        BatchRenameItem copy = *row;
        copy.state = RowState::Ready;
        tried.Compute(copy);
        ++trial.tried;
        if (!tried.HasLastPairMatched()) continue;
        if (trial.matches++ > 0) continue;
        trial.before = copy.currentName;
        trial.after = copy.newName;
    }
    return trial;
}

std::wstring TextOfTrial(const ItemTrial& trial, size_t rowCount) {
    if (!trial.error.empty()) return L"The expression is not valid: " + trial.error;
    if (trial.tried == 0) return L"Type the text to find.";
    const bool isPart = trial.tried < rowCount;
    std::wstring text = std::to_wstring(trial.matches) + (isPart ? L" of the first " : L" of ") +
                        std::to_wstring(trial.tried) + (trial.tried == 1 ? L" name" : L" names") +
                        (trial.tried == 1 || trial.matches == 1 ? L" matches" : L" match");
    if (trial.matches > 0) text += L"\n" + trial.before + L"\n" + trial.after;
    return text;
}

std::wstring TextOfModes(uint32_t options) {
    const bool isRegex = (options & RenameOption::RegularExpression) != 0;
    std::wstring text = isRegex ? L"Regular expression" : L"Plain text";
    text += isRegex || (options & RenameOption::ReplaceAll) ? L", every match" : L", first match";
    text += options & RenameOption::CaseSensitive ? L", case counts" : L", any case";
    if (options & RenameOption::ScopeName) return text + L", name only";
    return text + (options & RenameOption::ScopeExtension ? L", extension only" : L", name and extension");
}

}  // namespace BatchRename
