#include "host/command_line.h"

#include <algorithm>
#include <sstream>

#include <CLI/CLI.hpp>

#include "host/host_error.h"
#include "host/text.h"

namespace QVHost {
namespace {

/// The options that take a value: their value is known by its place and may itself begin with `-`.
constexpr std::wstring_view kValueOptions[] = {L"--library", L"--config",     L"--language", L"--log",
                                               L"--answer",  L"--files-from", L"--pipe",     L"--extension"};

/// The command line in two: what the option parser sees, and the operands, which it never gets to interpret.
struct SplitArguments {
    std::vector<std::string> options;
    std::vector<std::wstring> operands;
};

SplitArguments Split(const std::vector<std::wstring>& arguments) {
    SplitArguments split;
    bool hasAction = false;
    bool onlyOperands = false;
    for (size_t at = 0; at < arguments.size(); ++at) {
        const std::wstring& word = arguments[at];
        const bool isOption = !onlyOperands && word.size() > 1 && word.front() == L'-';
        if (isOption && word == L"--") {
            onlyOperands = true;
        } else if (isOption && std::ranges::find(kValueOptions, word) != std::end(kValueOptions)) {
            if (at + 1 == arguments.size()) throw UsageError(word + L" needs a value");
            split.options.push_back(ToUtf8(word + L"=" + arguments[++at]));
        } else if (isOption) {
            split.options.push_back(ToUtf8(word));
        } else if (!hasAction) {
            hasAction = true;
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
    app.add_option("--files-from", raw.filesFrom, "Further paths, one a line, UTF-8; - for standard input")
        ->type_name("FILE")
        ->take_last();
    app.add_flag("--can-elevate", options.canElevate, "The host can start an elevated second process");
    app.add_flag("--elevated", options.isElevated, "The host counts as elevated");
    app.add_flag("--column-d", options.usesColumnD, "The control-panel menu leaves out what column D excludes");
    app.add_flag("--column-e", options.usesColumnE, "The same for column E");
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
    CLI::App* const server = add("elevated-server", "The second process; started by the first", Action::ElevatedServer);
    server->group("");  // not in the help: nobody starts it by hand
    server->add_option("--pipe", raw.pipe);
    server->add_option("--extension", options.extension);
    app.require_subcommand(1);
}

void CheckOperands(const HostOptions& options) {
    const bool takesOperands = options.action == Action::Call || options.action == Action::Command;
    if (!takesOperands && !options.operands.empty())
        throw UsageError(L"\"" + options.operands.front() + L"\" is one word too many");
    if (options.action == Action::Call && options.operands.empty())
        throw UsageError(L"call needs a name: qvhost call NAME [KEY=VALUE | SWITCH]...");
    if (options.action == Action::Command && options.operands.empty())
        throw UsageError(L"command needs an id: qvhost command ID PATH...");
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
    try {
        std::ranges::reverse(split.options);  // the parser takes them from the back
        app.parse(split.options);
    } catch (const CLI::Success& success) {
        std::ostringstream help;
        std::ostringstream unused;
        app.exit(success, help, unused);
        throw HelpText{help.str()};
    } catch (const CLI::Error& error) {
        throw UsageError(Wide(error.what()));
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
    return options;
}

}  // namespace QVHost
