#include "host/app/command_line.h"

#include <algorithm>
#include <sstream>

#include <CLI/CLI.hpp>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/elevated/message_pipe.h"

namespace QVHost {
namespace {

constexpr wchar_t kServerAction[] = L"elevated-server";

/// The words that an option takes as its value, or a subcommand as its first word, where these are few; a blank stands
/// between them.
constexpr struct {
    std::string_view name;
    std::string_view words;
} kChoices[] = {
    {"--answer", "yes no ok cancel replace replace-all find-next skip-file"},
    {"--case", "lower upper name-lower name-upper extension-lower extension-upper words sentence"},
    {"--scope", "both name extension"},
    {"--sort", "natural date size none"},
    {"--on-clash", "fail number"},
    {"undo", "list show restore delete"},
    {"completion", "bash powershell"},
};

void Store(std::wstring& target, std::wstring value) {
    target = std::move(value);
}
void Store(std::optional<std::wstring>& target, std::wstring value) {
    target = std::move(value);
}
void Store(std::vector<std::wstring>& target, std::wstring value) {
    target.push_back(std::move(value));
}

/// An option with a value, which is taken as it is: the parser's own conversions read brackets, "{}" and "%%" as lists.
/// Of several values a list gets all, in order, anything else the last.
template <class Target>
CLI::Option* AddValue(CLI::App& app, const char* name, const char* typeName, Target& target, const char* description) {
    const auto take = [&target](const CLI::results_t& values) {
        for (const std::string& value : values) Store(target, Wide(value));
        return true;
    };
    return app.add_option(name, CLI::callback_t(take), description)
        ->type_name(typeName)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

std::string NotEmpty(const std::string& value) {
    return value.empty() ? "needs a value that is not empty" : "";
}

void AddOptions(CLI::App& app, HostOptions& options) {
    app.set_version_flag("--version", "qvhost " QV_VERSION, "Print the version and exit");
    AddValue(app, "--library", "FILE", options.library,
             "The library to load (default: QVUtils.dll beside this program)")
        ->check(NotEmpty);
    AddValue(app, "--config", "FOLDER", options.config, "Where settings are kept (default: per user)")->check(NotEmpty);
    AddValue(app, "--language", "FILE", options.language,
             "The texts (default: beside this program; for windows in your language)")
        ->check(NotEmpty);
    AddValue(app, "--log", "FILE", options.log, "Appends the log lines to a file as well")->check(NotEmpty);
    app.add_flag("--quiet", options.isQuiet, "No log lines on standard output");
    AddValue(
        app, "--answer", "ANSWER", options.answers,
        "Answers the next question: yes, no, cancel, ok, replace, replace-all, find-next, skip-file, or the text to "
        "choose or to enter. Repeat it for further questions; the last one repeats")
        ->check(NotEmpty);
    app.add_flag("--windows", options.asksInWindows,
                 "Asks questions in windows, and shows progress in one where there is no terminal");
    app.add_flag("--no-console", options.hasNoConsole,
                 "For shortcuts and buttons: the same without a console; a window tells what failed");
    app.add_flag("--json", options.printsJson,
                 "One JSON document instead of lines (call, command, columns, rename, undo)");
    AddValue(app, "--files-from", "FILE", options.filesFrom,
             "Further paths, one a line, UTF-8 or UTF-16; - for standard input. A call is made for each path, "
             "which stands where its arguments say {}")
        ->check(NotEmpty);
    app.add_flag("--can-elevate", options.canElevate, "The host can start an elevated second process");
    app.add_flag("--elevated", options.isElevated, "The host counts as elevated");
    app.add_flag("--column-d", options.usesColumnD, "The control-panel menu leaves out what column D excludes");
    app.add_flag("--column-e", options.usesColumnE, "The same for column E");
}

void AddRename(CLI::App& app, RenameOptions& rename) {
    AddValue(app, "--name", "TEMPLATE", rename.nameTemplate, "The new names: [N] name, [C] counter, [F] folder...");
    AddValue(app, "--extension", "TEMPLATE", rename.extensionTemplate, "The new extensions: [E] extension...");
    AddValue(app, "--counter", "START,STEP,DIGITS", rename.counter, "How [C] counts (1,1,2)");
    AddValue(app, "--case", "CASE", rename.caseName,
             "lower, upper, name-lower, name-upper, extension-lower, extension-upper, words or sentence");
    AddValue(app, "--find", "TEXT", rename.find, "Found in the new names; with its --replace, repeatable");
    AddValue(app, "--replace", "TEXT", rename.replace, "What takes its place");
    AddValue(app, "--scope", "SCOPE", rename.scope, "Where to find: both, name or extension");
    AddValue(app, "--profile", "NAME", rename.profile, "Begins with a saved rule");
    AddValue(app, "--save-profile", "NAME", rename.saveProfile, "Saves the rule");
    AddValue(app, "--time", "YYYY-MM-DDThh:mm:ss", rename.time, "What date and time tags give (now)");
    AddValue(app, "--names-from", "FILE", rename.namesFrom,
             "The new names instead of a rule, one a line, UTF-8 or UTF-16; - for standard input");
    AddValue(app, "--sort", "ORDER", rename.sort, "The order in which [C] counts: natural, date, size or none (none)");
    AddValue(app, "--on-clash", "WAY", rename.onClash, "Names that are taken or wanted twice: fail or number (fail)");
    app.add_flag("--regex", rename.isRegex, "The find texts are regular expressions");
    app.add_flag("--replace-all", rename.replacesAll, "Replaces every occurrence, not the first one alone");
    app.add_flag("--case-sensitive", rename.isCaseSensitive, "Finds in exactly this case");
    app.add_flag("--preview", rename.isPreview, "Renames nothing, shows what would be done");
    app.add_flag("--only-changes", rename.onlyChanges, "No line for what stays as it is");
    app.add_flag("--no-undo", rename.noUndo, "Records nothing for undo");
}

void AddActions(CLI::App& app, HostOptions& options) {
    const auto add = [&](const char* name, const char* description, Action action) {
        CLI::App* const sub = app.add_subcommand(name, description);
        sub->fallthrough();
        sub->callback([&options, action] { options.action = action; });
        return sub;
    };
    add("extensions", "Shows the description records", Action::Extensions);
    add("menus", "Shows the menu tree with command ids, texts and shortcuts", Action::Menus);
    add("commands", "Shows the custom commands and their parameters", Action::Commands);
    add("call", "NAME [KEY=VALUE | SWITCH]...: runs a custom command", Action::Call)
        ->add_flag("--preview", options.previewsCall,
                   "Of FindAndReplace: shows each line that would change, and writes nothing");
    add("command", "ID PATH...: runs a menu command on the selection PATH...", Action::Command);
    CLI::App* const columns =
        add("columns", "PATH...: shows the property columns of files and folders", Action::Columns);
    columns->add_flag("--csv", options.printsCsv, "Comma-separated, for other programs");
    AddRename(*add("rename", "PATH...: renames files and folders by a rule", Action::Rename), options.rename);
    CLI::App* const undo = add("undo",
                               "[list | show SESSION | restore SESSION | delete SESSION]: earlier renames; "
                               "SESSION may be \"last\"",
                               Action::Undo);
    undo->add_flag("--preview", options.undo.isPreview, "Restores nothing, shows what would be done");
    AddValue(*undo, "--only", "PATTERN", options.undo.only, "Restores the items whose old or new name matches");
    add("panel", "[FOLDER | PATH...]: shows a folder in a window with all menus, or these paths selected",
        Action::Panel);
    CLI::App* const sendTo =
        add("send-to", "Puts shortcuts into the menu \"Send to\", or takes them away", Action::SendTo);
    sendTo->add_flag("--install", options.sendTo.installs, "Makes the shortcuts");
    sendTo->add_flag("--remove", options.sendTo.removes, "Takes away those that lead here, and nothing else");
    AddValue(*sendTo, "--folder", "FOLDER", options.sendTo.folder, "Another folder (default: the user's SendTo)")
        ->check(NotEmpty);
    add("selftest", "[FOLDER]: tries on this machine what the library needs of it, in a folder of its own",
        Action::SelfTest);
    add("completion", "bash | powershell: prints a script by which that shell completes command lines",
        Action::Completion);
    CLI::App* const server =
        add(ToUtf8(kServerAction).c_str(), "The second process; started by the first", Action::ElevatedServer);
    server->group("");  // not in the help: nobody starts it by hand
    AddValue(*server, "--pipe", "NAME", options.pipe, "The pipe to serve");
    server->add_option("--extension", options.extension);
    app.require_subcommand(1);
}

bool TakesValue(const CLI::App& app, const std::string& option) {
    if (const CLI::Option* const known = app.get_option_no_throw(option)) return known->get_items_expected_min() > 0;
    const auto subcommands = app.get_subcommands([](const CLI::App*) { return true; });
    return std::ranges::any_of(subcommands, [&](const CLI::App* each) { return TakesValue(*each, option); });
}

/// The command line in parts: what the parser sees, and the operands.
struct SplitArguments {
    std::optional<std::wstring> action;
    std::vector<std::string> options;  // with their values, each in a word of its own
    std::vector<std::wstring> operands;
};

/// Operands never meet the parser: it would take one such as [a,b] for a list, and words after `--` for options once
/// it is in a subcommand. Nor does an option with "=", since the parser would take the next word for an empty value.
SplitArguments Split(const CLI::App& app, const std::vector<std::wstring>& arguments) {
    SplitArguments split;
    bool onlyOperands = false;
    for (size_t at = 0; at < arguments.size(); ++at) {
        const std::wstring& word = arguments[at];
        if (!onlyOperands && word == L"--") {
            onlyOperands = true;
        } else if (!onlyOperands && word.size() > 1 && word.front() == L'-') {
            const size_t equals = word.find(L'=');
            const bool takesValue = TakesValue(app, ToUtf8(word.substr(0, equals)));
            split.options.push_back(ToUtf8(takesValue ? word.substr(0, equals) : word));
            if (takesValue && equals != std::wstring::npos)
                split.options.push_back(ToUtf8(word.substr(equals + 1)));
            else if (takesValue && at + 1 < arguments.size())
                split.options.push_back(ToUtf8(arguments[++at]));
        } else if (!split.action) {
            split.action = word;
        } else {
            split.operands.push_back(word);
        }
    }
    return split;
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

/// This process has rights that the writer of its command line may lack: no file that the line names is opened or made.
void CheckServer(const HostOptions& options) {
    if (!IsRandomPipeName(options.pipe))
        throw UsageError(L"elevated-server needs --pipe with a name as the first process makes it");
    HostOptions allowed;
    allowed.action = options.action;
    allowed.actionName = options.actionName;
    allowed.library = options.library;
    allowed.pipe = options.pipe;
    allowed.extension = options.extension;
    if (options != allowed) throw UsageError(L"elevated-server takes --pipe, --extension and --library alone");
}

/// @throws UsageError for options that go with some subcommands alone
void CheckOptions(const HostOptions& options) {
    const auto isOneOf = [&](std::initializer_list<Action> actions) {
        return std::ranges::find(actions, options.action) != actions.end();
    };
    if (options.filesFrom && !isOneOf({Action::Call, Action::Columns, Action::Command, Action::Rename, Action::Panel}))
        throw UsageError(L"--files-from goes with call, columns, command, panel and rename alone");
    if (options.printsJson && !isOneOf({Action::Call, Action::Columns, Action::Command, Action::Rename, Action::Undo}))
        throw UsageError(L"--json goes with call, columns, command, rename and undo alone");
}

void CheckOperands(const HostOptions& options) {
    const bool takesOperands = options.action == Action::Call || options.action == Action::Command ||
                               options.action == Action::Columns || options.action == Action::Rename ||
                               options.action == Action::Undo || options.action == Action::Panel ||
                               options.action == Action::SelfTest || options.action == Action::Completion;
    if (!takesOperands && !options.operands.empty())
        throw UsageError(L"\"" + options.operands.front() + L"\" is one word too many");
    if (options.action == Action::Call && options.operands.empty())
        throw UsageError(L"call needs a name: qvhost call NAME [KEY=VALUE | SWITCH]...");
    if (options.action == Action::Command && options.operands.empty())
        throw UsageError(L"command needs an id: qvhost command ID PATH...");
    if (options.action == Action::SelfTest && options.operands.size() > 1)
        throw UsageError(L"selftest works in one folder: qvhost selftest [FOLDER]");
    if (options.action == Action::SendTo && options.sendTo.installs == options.sendTo.removes)
        throw UsageError(L"send-to needs --install or --remove");
    if (options.printsCsv && options.printsJson) throw UsageError(L"--csv and --json do not go together");
    if (options.action == Action::ElevatedServer) CheckServer(options);
}

std::string ChoicesOf(std::string_view name) {
    const auto* const found = std::ranges::find(kChoices, name, [](const auto& each) { return each.name; });
    return found == std::end(kChoices) ? std::string() : std::string(found->words);
}

std::vector<OptionWords> WordsOf(const CLI::App& app) {
    std::vector<OptionWords> words;
    for (const CLI::Option* const option : app.get_options()) {
        if (option->get_group().empty()) continue;
        const bool takesValue = option->get_items_expected_min() > 0;
        const std::string name = "--" + option->get_lnames().front();
        words.push_back({.name = name,
                         .value = takesValue ? option->get_type_name() : "",
                         .choices = ChoicesOf(name),
                         .description = option->get_description()});
    }
    return words;
}

}  // namespace

std::vector<CommandWords> AllWords() {
    HostOptions options;
    CLI::App app;
    AddOptions(app, options);
    AddActions(app, options);
    std::vector<CommandWords> words = {{.name = "", .description = "", .options = WordsOf(app), .choices = {}}};
    for (const CLI::App* const sub :
         app.get_subcommands([](const CLI::App* each) { return !each->get_group().empty(); })) {
        words.push_back({.name = sub->get_name(),
                         .description = sub->get_description(),
                         .options = WordsOf(*sub),
                         .choices = ChoicesOf(sub->get_name())});
    }
    return words;
}

HostOptions ParseCommandLine(const std::vector<std::wstring>& arguments) {
    HostOptions options;
    CLI::App app("Loads QVUtils.dll, or another library for the file manager, and runs its commands.", "qvhost");
    AddOptions(app, options);
    AddActions(app, options);
    SplitArguments split = Split(app, arguments);
    CheckAction(app, split.action);
    try {
        std::ranges::reverse(split.options);  // the parser takes them from the back
        if (split.action) split.options.push_back(ToUtf8(*split.action));
        app.parse(split.options);
    } catch (const CLI::Success& success) {
        std::ostringstream help;
        std::ostringstream unused;
        app.exit(success, help, unused);
        throw HelpText{help.str()};
    } catch (const CLI::RequiredError&) {
        throw UsageError(L"a subcommand is missing, for example: qvhost menus");
    } catch (const CLI::Error& error) {
        throw UsageError(Wide(error.what()));
    }
    options.operands = std::move(split.operands);
    options.actionName = std::move(*split.action);
    CheckOptions(options);
    CheckOperands(options);
    options.asksInWindows |= options.action == Action::Panel || options.hasNoConsole;
    return options;
}

}  // namespace QVHost
