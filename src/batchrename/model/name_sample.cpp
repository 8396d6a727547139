#include "batchrename/model/name_sample.h"

#include <memory>

#include "rename/rename_rule.h"

namespace BatchRename {

ItemTrial TryItem(const SearchAndReplaceItem& item, uint32_t options, const RenameItems& rows,
                  const std::function<bool()>& isTimeUp) {
    ItemTrial trial;
    if (item.find.empty()) return trial;
    RuleDefinition definition;
    definition.items = std::make_shared<const SearchAndReplaceItems>(SearchAndReplaceItems{item});
    definition.options = options & ~RenameOption::CaseMask;
    RenameRule rule;
    try {
        rule.SetRule(definition, {});
    } catch (const RegexFault& fault) {
        trial.error = fault.Text();
        return trial;
    }
    for (const auto& row : rows) {
        if (isTimeUp()) break;
        BatchRenameItem copy = *row;
        copy.state = RowState::Ready;
        rule.Compute(copy);
        ++trial.tried;
        if (copy.newName == copy.currentName || copy.fault != RuleFault::None) continue;
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
                        std::to_wstring(trial.tried) + (trial.tried == 1 ? L" name matches" : L" names match");
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
