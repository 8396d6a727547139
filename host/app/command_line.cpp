#include "host/app/command_line.h"

#include <algorithm>
#include <sstream>

#include <CLI/CLI.hpp>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/nearest_name.h"

namespace QVHost {
namespace {

/// The options that take a value: their value is known by its place and may itself begin with `-`.
constexpr std::wstring_view kValueOptions[] = {L"--library", L"--config",     L"--language", L"--log",
                                               L"--answer",  L"--files-from", L"--pipe",     L"--extension"};

constexpr wchar_t kServerAction[] = L"elevated-server";

/// The options of `rename` that take a value. Their values never meet the option parser: an empty one, and one that
/// looks like an option or a list, are names and templates like any other.
struct RenameValueOption {
    const wchar_t* name;
    std::optional<std::wstring> RenameOptions::*single;  // the last one counts
    std::vector<std::wstring> RenameOptions::*list;      // or: all, in order
    const char* typeName;
    const char* description;
};
constexpr RenameValueOption kRenameValueOptions[] = {
    {L"--name", &RenameOptions::nameTemplate, nullptr, "TEMPLATE",
     "The new names: [N] name, [C] counter, [F] folder..."},
    {L"--extension", &RenameOptions::extensionTemplate, nullptr, "TEMPLATE", "The new extensions: [E] extension..."},
    {L"--counter", &RenameOptions::counter, nullptr, "START,STEP,DIGITS", "How [C] counts (1,1,2)"},
    {L"--case", &RenameOptions::caseName, nullptr, "CASE",
     "lower, upper, name-lower, name-upper, extension-lower, extension-upper, words or sentence"},
    {L"--find", nullptr, &RenameOptions::find, "TEXT", "Found in the new names; with its --replace, repeatable"},
    {L"--replace", nullptr, &RenameOptions::replace, "TEXT", "What takes its place"},
    {L"--scope", &RenameOptions::scope, nullptr, "SCOPE", "Where to find: both, name or extension"},
    {L"--profile", &RenameOptions::profile, nullptr, "NAME", "Begins with a saved rule"},
    {L"--save-profile", &RenameOptions::saveProfile, nullptr, "NAME", "Saves the rule"},
    {L"--time", &RenameOptions::time, nullptr, "YYYY-MM-DDThh:mm:ss", "What date and time tags give (now)"},
};

/// The command line in parts: what the option parser sees, and the rest, which it never gets to interpret.
struct SplitArguments {
    std::vector<std::string> options;
    RenameOptions rename;
    bool hasRenameValues = false;
    std::optional<std::wstring> action;
    std::vector<std::wstring> operands;
};

/// Takes the word at `at`, and its value behind it or behind its "=", when it is such an option.
bool TakeRenameValue(const std::vector<std::wstring>& arguments, size_t& at, SplitArguments& split) {
    const std::wstring& word = arguments[at];
    const size_t equals = word.find(L'=');
    const auto option =
        std::ranges::find(kRenameValueOptions, std::wstring_view(word).substr(0, equals), &RenameValueOption::name);
    if (option == std::end(kRenameValueOptions)) return false;
    if (equals == std::wstring::npos && at + 1 == arguments.size()) throw UsageError(word + L" needs a value");
    std::wstring value = equals == std::wstring::npos ? arguments[++at] : word.substr(equals + 1);
    if (option->single)
        split.rename.*option->single = std::move(value);
    else
        (split.rename.*option->list).push_back(std::move(value));
    split.hasRenameValues = true;
    return true;
}

SplitArguments Split(const std::vector<std::wstring>& arguments) {
    SplitArguments split;
    // The elevated server has an --extension of its own.
    const bool isRename = std::ranges::find(arguments, L"rename") != arguments.end();
    bool onlyOperands = false;
    for (size_t at = 0; at < arguments.size(); ++at) {
        const std::wstring& word = arguments[at];
        const bool isOption = !onlyOperands && word.size() > 1 && word.front() == L'-';
        if (isOption && word == L"--") {
            onlyOperands = true;
        } else if (isOption && isRename && TakeRenameValue(arguments, at, split)) {
            continue;
        } else if (isOption && std::ranges::find(kValueOptions, word) != std::end(kValueOptions)) {
            if (at + 1 == arguments.size()) throw UsageError(word + L" needs a value");
            if (arguments[++at].empty()) throw UsageError(word + L" needs a value that is not empty");
            split.options.push_back(ToUtf8(word + L"=" + arguments[at]));
        } else if (isOption) {
            split.options.push_back(ToUtf8(word));
        } else if (!split.action) {
            split.action = word;
            split.options.push_back(ToUtf8(word));
        } else {
            split.operands.push_back(word);
        }
    }
    return split;
}

std::wstring Wide(const std::string& text) {
    return FromUtf8(text).value_or(L"");
}

/// What the option parser fills; texts are UTF-8.
struct RawOptions {
    std::string library, config, language, log, filesFrom, pipe;
    std::vector<std::string> answers;
};

void AddOptions(CLI::App& app, RawOptions& raw, HostOptions& options) {
    app.set_version_flag("--version", "qvhost " QV_VERSION, "Print the version and exit");
    app.add_option("--library", raw.library, "The library to load (default: QVUtils.dll beside this program)")
        ->type_name("FILE")
        ->take_last();
    app.add_option("--config", raw.config, "Where settings are kept (default: per user)")
        ->type_name("FOLDER")
        ->take_last();
    app.add_option("--language", raw.language, "The texts (default: qvhost-english.txt beside this program)")
        ->type_name("FILE")
        ->take_last();
    app.add_option("--log", raw.log, "Appends the log lines to a file as well")->type_name("FILE")->take_last();
    app.add_flag("--quiet", options.isQuiet, "No log lines on standard output");
    // A list that takes no extra words: only so is an answer such as [a,b] one answer.
    app.add_option("--answer", raw.answers,
                   "Answers the next question: yes, no, cancel, ok, replace, replace-all, find-next, or the text to "
                   "choose or to enter. Repeat it for further questions; the last one repeats")
        ->type_name("ANSWER")
        ->allow_extra_args(false);
    app.add_flag("--windows", options.asksInWindows,
                 "Asks questions in windows, and shows progress in one where there is no terminal");
    app.add_option("--files-from", raw.filesFrom,
                   "Further paths, one a line, UTF-8; - for standard input. A call is made for each path, "
                   "which stands where its arguments say {}")
        ->type_name("FILE")
        ->take_last();
    app.add_flag("--can-elevate", options.canElevate, "The host can start an elevated second process");
    app.add_flag("--elevated", options.isElevated, "The host counts as elevated");
    app.add_flag("--column-d", options.usesColumnD, "The control-panel menu leaves out what column D excludes");
    app.add_flag("--column-e", options.usesColumnE, "The same for column E");
}

void AddRename(CLI::App& app, RenameOptions& rename) {
    // For the help alone: these never get here.
    for (const RenameValueOption& option : kRenameValueOptions)
        app.add_option(ToUtf8(option.name), option.description)->type_name(option.typeName);
    app.add_flag("--regex", rename.isRegex, "The find texts are regular expressions");
    app.add_flag("--replace-all", rename.replacesAll, "Replaces every occurrence, not the first one alone");
    app.add_flag("--case-sensitive", rename.isCaseSensitive, "Finds in exactly this case");
    app.add_flag("--preview", rename.isPreview, "Renames nothing, shows what would be done");
    app.add_flag("--no-undo", rename.noUndo, "Records nothing for undo");
}

void AddActions(CLI::App& app, RawOptions& raw, HostOptions& options) {
    const auto add = [&](const char* name, const char* description, Action action) {
        CLI::App* const sub = app.add_subcommand(name, description);
        sub->fallthrough();
        sub->callback([&options, action] { options.action = action; });
        return sub;
    };
    add("extensions", "Shows the description records", Action::Extensions);
    add("menus", "Shows the menu tree with command ids, texts and shortcuts", Action::Menus);
    add("commands", "Shows the custom commands and their parameters", Action::Commands);
    add("call", "NAME [KEY=VALUE | SWITCH]...: runs a custom command", Action::Call);
    add("command", "ID PATH...: runs a menu command on the selection PATH...", Action::Command);
    CLI::App* const columns =
        add("columns", "PATH...: shows the property columns of files and folders", Action::Columns);
    CLI::Option* const csv = columns->add_flag("--csv", options.printsCsv, "Comma-separated, for other programs");
    columns->add_flag("--json", options.printsJson, "The same as JSON")->excludes(csv);
    AddRename(*add("rename", "PATH...: renames files and folders by a rule", Action::Rename), options.rename);
    add("undo", "[list | restore SESSION | delete SESSION]: earlier renames; SESSION may be \"last\"", Action::Undo);
    add("panel", "[FOLDER]: shows a folder in a window with the menus of all extensions", Action::Panel);
    CLI::App* const server =
        add(ToUtf8(kServerAction).c_str(), "The second process; started by the first", Action::ElevatedServer);
    server->group("");  // not in the help: nobody starts it by hand
    server->add_option("--pipe", raw.pipe);
    server->add_option("--extension", options.extension);
    app.require_subcommand(1);
}

/// @throws UsageError for an action that there is not; the parser would only miss one
void CheckAction(const CLI::App& app, const std::optional<std::wstring>& action) {
    if (!action) return;
    std::vector<std::wstring> known;
    for (const CLI::App* const sub :
         app.get_subcommands([](const CLI::App* each) { return !each->get_group().empty(); }))
        known.push_back(Wide(sub->get_name()));
    if (std::ranges::find(known, *action) == known.end() && *action != kServerAction)
        throw UsageError(L"there is no \"" + *action + L"\"" + DidYouMean(*action, known));
}

void CheckOperands(const HostOptions& options) {
    const bool takesOperands = options.action == Action::Call || options.action == Action::Command ||
                               options.action == Action::Columns || options.action == Action::Rename ||
                               options.action == Action::Undo || options.action == Action::Panel;
    if (!takesOperands && !options.operands.empty())
        throw UsageError(L"\"" + options.operands.front() + L"\" is one word too many");
    if (options.action == Action::Call && options.operands.empty())
        throw UsageError(L"call needs a name: qvhost call NAME [KEY=VALUE | SWITCH]...");
    if (options.action == Action::Command && options.operands.empty())
        throw UsageError(L"command needs an id: qvhost command ID PATH...");
    if (options.action == Action::Panel && options.operands.size() > 1)
        throw UsageError(L"panel shows one folder: qvhost panel [FOLDER]");
    if (options.action == Action::ElevatedServer && options.pipe.empty())
        throw UsageError(L"elevated-server needs --pipe");
}

}  // namespace

HostOptions ParseCommandLine(const std::vector<std::wstring>& arguments) {
    SplitArguments split = Split(arguments);
    HostOptions options;
    RawOptions raw;
    CLI::App app("Loads QVUtils.dll, or another library for the file manager, and runs its commands.", "qvhost");
    AddOptions(app, raw, options);
    AddActions(app, raw, options);
    CheckAction(app, split.action);
    try {
        std::ranges::reverse(split.options);  // the parser takes them from the back
        app.parse(split.options);
    } catch (const CLI::Success& success) {
        std::ostringstream help;
        std::ostringstream unused;
        app.exit(success, help, unused);
        throw HelpText{help.str()};
    } catch (const CLI::RequiredError&) {
        throw UsageError(L"it needs to be said what to do, for example: qvhost menus");
    } catch (const CLI::Error& error) {
        throw UsageError(Wide(error.what()));
    }
    if (split.hasRenameValues && options.action != Action::Rename)
        throw UsageError(L"there are options here that go with rename alone");
    // The parser has filled in the switches, the split the values.
    for (const RenameValueOption& option : kRenameValueOptions) {
        if (option.single)
            options.rename.*option.single = std::move(split.rename.*option.single);
        else
            options.rename.*option.list = std::move(split.rename.*option.list);
    }
    options.operands = std::move(split.operands);
    options.library = Wide(raw.library);
    options.config = Wide(raw.config);
    options.language = Wide(raw.language);
    options.log = Wide(raw.log);
    options.pipe = Wide(raw.pipe);
    if (!raw.filesFrom.empty()) options.filesFrom = Wide(raw.filesFrom);
    for (const std::string& answer : raw.answers) options.answers.push_back(Wide(answer));
    CheckOperands(options);
    if (options.action == Action::Panel) options.asksInWindows = true;
    return options;
}

}  // namespace QVHost
