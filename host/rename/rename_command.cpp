#include "host/app/subcommands.h"

#include <cwchar>
#include <optional>
#include <utility>

#include "batchrename/profiles.h"
#include "batchrename/rule_context.h"
#include "batchrename/run/rename_run.h"
#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/selection.h"
#include "host/rename/rename_host.h"
#include "host/rename/selected_rows.h"
#include "rename/rename_rule.h"
#include "win32/text.h"

namespace QVHost {
namespace {

using namespace BatchRename;

struct NamedBits {
    const wchar_t* name;
    uint32_t bits;
};

constexpr NamedBits kCases[] = {
    {L"lower", RenameOption::LowerBoth},
    {L"upper", RenameOption::UpperBoth},
    {L"name-lower", RenameOption::LowerName},
    {L"name-upper", RenameOption::UpperName},
    {L"extension-lower", RenameOption::LowerExtension},
    {L"extension-upper", RenameOption::UpperExtension},
    {L"words", RenameOption::CapitaliseWords},
    {L"sentence", RenameOption::Sentence},
};

constexpr NamedBits kScopes[] = {
    {L"both", RenameOption::ScopeBoth},
    {L"name", RenameOption::ScopeName},
    {L"extension", RenameOption::ScopeExtension},
};

/// @throws UsageError naming the choices
template <size_t Count>
uint32_t BitsOf(const NamedBits (&choices)[Count], const wchar_t* option, const std::wstring& name) {
    std::wstring list;
    for (const NamedBits& choice : choices) {
        if (choice.name == name) return choice.bits;
        list += (list.empty() ? L"" : L", ") + std::wstring(choice.name);
    }
    throw UsageError(std::wstring(option) + L" takes one of " + list + L", not \"" + name + L"\"");
}

/// START[,STEP[,DIGITS]]; what is left out stays as it is.
CounterSettings ReadCounter(const std::wstring& text, CounterSettings counter) {
    int32_t* const fields[] = {&counter.start, &counter.step, &counter.digits};
    std::wstring_view rest = text;
    for (int32_t* const field : fields) {
        const size_t end = std::min(rest.find(L','), rest.size());
        const std::optional<int32_t> number = Win32::WholeNumber<int32_t>(rest.substr(0, end));
        if (!number) break;
        *field = *number;
        if (end == rest.size()) return counter;
        rest.remove_prefix(end + 1);
    }
    throw UsageError(L"--counter takes START,STEP,DIGITS, three numbers of 32 bits, not \"" + text + L"\"");
}

/// YYYY-MM-DDThh:mm:ss
CalendarTime ReadTime(const std::wstring& text) {
    CalendarTime time;
    int length = 0;
    const int count = std::swscanf(text.c_str(), L"%4d-%2d-%2dT%2d:%2d:%2d%n", &time.year, &time.month, &time.day,
                                   &time.hour, &time.minute, &time.second, &length);
    const bool isRead = count == 6 && static_cast<size_t>(length) == text.size();
    // Seconds and back: what comes back otherwise is no date.
    const CalendarTime known = TimeOfSeconds(SecondsOf(time));
    time.dayOfWeek = known.dayOfWeek;
    if (!isRead || time != known) throw UsageError(L"--time takes YYYY-MM-DDThh:mm:ss, not \"" + text + L"\"");
    return time;
}

const RenameProfile& FindProfile(const ProfileStore& profiles, const std::wstring& name) {
    if (const RenameProfile* const profile = profiles.Find(name)) return *profile;
    std::vector<std::wstring> known;
    for (const RenameProfile& profile : profiles.Profiles()) known.push_back(profile.name);
    throw UsageError(L"there is no profile \"" + name + L"\"" + DidYouMean(name, known));
}

SharedItems PairItems(const RenameOptions& options) {
    if (options.find.size() != options.replace.size())
        throw UsageError(L"each --find needs its --replace, even if that is empty");
    SearchAndReplaceItems items;
    for (size_t at = 0; at < options.find.size(); ++at) items.push_back({options.find[at], options.replace[at]});
    return std::make_shared<const SearchAndReplaceItems>(std::move(items));
}

/// The rule of the command line: the profile's, or the plain one, with everything that is given in its place.
RuleDefinition MakeRule(const RenameOptions& options, const ProfileStore& profiles) {
    RuleDefinition rule;
    if (options.profile) rule = RuleOf(FindProfile(profiles, *options.profile));
    if (options.nameTemplate) rule.nameTemplate = *options.nameTemplate;
    if (options.extensionTemplate) rule.extensionTemplate = *options.extensionTemplate;
    if (options.counter) rule.counter = ReadCounter(*options.counter, rule.counter);
    if (options.caseName)
        rule.options = (rule.options & ~RenameOption::CaseMask) | BitsOf(kCases, L"--case", *options.caseName);
    if (!options.find.empty() || !options.replace.empty()) rule.items = PairItems(options);
    if (options.isRegex) rule.options |= RenameOption::RegularExpression;
    if (options.replacesAll) rule.options |= RenameOption::ReplaceAll;
    if (options.isCaseSensitive) rule.options |= RenameOption::CaseSensitive;
    if (options.scope)
        rule.options = (rule.options & ~RenameOption::ScopeMask) | BitsOf(kScopes, L"--scope", *options.scope);
    else if ((rule.options & RenameOption::ScopeMask) == 0)
        rule.options |= RenameOption::ScopeBoth;
    return rule;
}

/// @throws UsageError
void CheckItems(const RuleDefinition& rule) {
    if (!rule.items || (rule.options & RenameOption::RegularExpression) == 0) return;
    const ItemFault fault = CheckRegularExpressions(*rule.items, (rule.options & RenameOption::CaseSensitive) != 0);
    if (fault.item != 0)
        throw UsageError(L"the find text \"" + (*rule.items)[static_cast<size_t>(fault.item) - 1].find +
                         L"\" is no regular expression: " + fault.error);
}

/// False when the profile is not on disk; the log says why.
bool SaveProfile(ProfileStore& profiles, const std::wstring& name, const RuleDefinition& rule) {
    if (name.empty()) throw UsageError(L"--save-profile needs a name");
    const RenameProfile profile = ProfileOf(name, rule);
    std::vector<const std::wstring*> texts = {&profile.name, &profile.nameTemplate, &profile.extensionTemplate};
    for (const SearchAndReplaceItem& item : profile.items) texts.insert(texts.end(), {&item.find, &item.replaceWith});
    for (const std::wstring* text : texts)
        if (text->size() > kLongestProfileText)
            throw UsageError(L"a profile's texts have at most " + std::to_wstring(kLongestProfileText) +
                             L" characters");
    profiles.Set(profile);
    return profiles.Save() && profiles.WasWritten();
}

/// @throws UsageError for what belongs to a rule, when the names are given
void CheckNamesAlone(const RenameOptions& options) {
    const bool hasRule = options.nameTemplate || options.extensionTemplate || options.counter || options.caseName ||
                         !options.find.empty() || !options.replace.empty() || options.profile || options.saveProfile;
    if (options.namesFrom && hasRule)
        throw UsageError(L"--names-from gives the names themselves; no rule goes with it");
}

}  // namespace

int RunRename(const HostOptions& options, HostEnvironment& environment, Output& output) {
    const RenameOptions& given = options.rename;
    CheckNamesAlone(given);
    RenameHost host(options, environment, output);
    ProfileStore profiles;
    profiles.Load(&host.Services());
    const RuleDefinition definition = MakeRule(given, profiles);
    const CalendarTime now = LocalTimeNow();
    const CalendarTime timeOfSetting = given.time ? ReadTime(*given.time) : now;
    CheckItems(definition);
    SelectedRows selection;
    ForEachSelectedPath(options.operands, options.filesFrom, environment.in,
                        [&](const std::wstring& /*given*/, const std::wstring& full) { selection.Add(full); });
    if (selection.Count() == 0 && !given.saveProfile)
        throw UsageError(L"rename needs files: qvhost rename PATH... [options]");

    bool isDone = !given.saveProfile || SaveProfile(profiles, *given.saveProfile, definition);
    RenameRule rule(&host);
    rule.SetRule(definition, timeOfSetting);
    const bool isPlain =
        !output.IsCollecting() && !given.namesFrom && !given.sort && !given.onClash && !given.onlyChanges;
    if (given.isPreview && isPlain) {
        isDone = PrintPreview(selection, rule, host) && isDone;
    } else if (given.isPreview) {
        const RenameItems rows = MakeRows(selection, rule, given, environment.in);
        isDone = host.PrintPlan(rows, PlanNow(rows, ListFolderOnDisk), L"rename", given.onlyChanges) && isDone;
    } else {
        const RenameItems rows = MakeRows(selection, rule, given, environment.in);
        CRenameResultCallback results;
        const std::vector<RowOutcome> outcomes = RunRenames(rows, now, host.Environment(!given.noUndo), results);
        isDone = host.PrintOutcomes(rows, outcomes, L"renamed", given.onlyChanges) && isDone;
        isDone = host.IsRecorded() && isDone;
    }
    return isDone ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace QVHost
