#include "batchrename/model/name_sample.h"

#include <memory>
#include <utility>

#include "batchrename/batchrename_texts.h"
#include "batchrename/rule_context.h"

namespace BatchRename {

using Quorvane::SDK::CountedText;
using Quorvane::SDK::Words;

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

std::wstring TextOfTrial(const ItemTrial& trial, size_t rowCount, const Words& say) {
    if (!trial.error.empty()) return say(Text::ExpressionInvalid, {say.Translated(trial.error, {Text::kReasons})});
    if (trial.tried == 0) return say(Text::TypeTextToFind);
    const CountedText& count = trial.tried < rowCount ? Text::FirstNamesTried
                               : trial.tried == 1     ? Text::OneNameTried
                                                      : Text::NamesTried;
    std::wstring text = say(count, trial.matches, {trial.matches, trial.tried});
    if (trial.matches > 0) text += L"\n" + trial.before + L"\n" + trial.after;
    return text;
}

std::wstring TextOfModes(uint32_t options, const Words& say) {
    const bool isRegex = (options & RenameOption::RegularExpression) != 0;
    return say(isRegex ? Text::ModeRegex : Text::ModePlain) +
           say(isRegex || (options & RenameOption::ReplaceAll) ? Text::ModeEveryMatch : Text::ModeFirstMatch) +
           say(options & RenameOption::CaseSensitive ? Text::ModeCaseCounts : Text::ModeAnyCase) +
           say(options & RenameOption::ScopeName        ? Text::ModeNameOnly
               : options & RenameOption::ScopeExtension ? Text::ModeExtensionOnly
                                                        : Text::ModeWholeName);
}

}  // namespace BatchRename
