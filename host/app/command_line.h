// command_line.h - from the words of the command line to the options of a run. Opens no file and runs nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace QVHost {

enum class Action {
    Extensions,
    Menus,
    Commands,
    Call,
    Command,
    Columns,
    Rename,
    Undo,
    Panel,
    SendTo,
    SelfTest,
    Completion,
    ElevatedServer
};

/// What `rename` is given, as texts: what they mean is the command's to say. Nothing for what is not given.
struct RenameOptions {
    std::optional<std::wstring> nameTemplate;
    std::optional<std::wstring> extensionTemplate;
    std::optional<std::wstring> counter;
    std::optional<std::wstring> caseName;
    std::vector<std::wstring> find;
    std::vector<std::wstring> replace;
    std::optional<std::wstring> scope;
    std::optional<std::wstring> profile;
    std::optional<std::wstring> saveProfile;
    std::optional<std::wstring> time;
    std::optional<std::wstring> namesFrom;
    std::optional<std::wstring> sort;
    std::optional<std::wstring> onClash;
    bool isRegex = false;
    bool replacesAll = false;
    bool isCaseSensitive = false;
    bool isPreview = false;
    bool onlyChanges = false;
    bool noUndo = false;

    bool operator==(const RenameOptions&) const = default;
};

/// The same for `undo restore`.
struct UndoOptions {
    std::optional<std::wstring> only;
    bool isPreview = false;

    bool operator==(const UndoOptions&) const = default;
};

/// The same for `send-to`.
struct SendToOptions {
    std::wstring folder;  // "": the user's own
    bool installs = false;
    bool removes = false;

    bool operator==(const SendToOptions&) const = default;
};

struct HostOptions {
    Action action = Action::Extensions;
    std::wstring actionName;             // as people type it
    std::vector<std::wstring> operands;  // what stands after the action's name, as given
    std::wstring library;                // "": beside the program; so are the next two
    std::wstring config;
    std::wstring language;
    std::wstring log;  // "": none
    std::optional<std::wstring> filesFrom;
    std::vector<std::wstring> answers;
    bool isQuiet = false;
    bool asksInWindows = false;
    bool hasNoConsole = false;  // and so asks in windows
    bool printsJson = false;
    bool canElevate = false;
    bool isElevated = false;
    bool usesColumnD = false;
    bool usesColumnE = false;
    bool printsCsv = false;     // of `columns`
    bool previewsCall = false;  // of `call`
    RenameOptions rename;
    UndoOptions undo;
    SendToOptions sendTo;
    std::wstring pipe;  // these two: of an elevated second process only
    uint32_t extension = 0;

    bool operator==(const HostOptions&) const = default;
};

/// Nothing is to be run: the text is for standard output.
struct HelpText {
    std::string text;
};

/// `arguments` without the program's name.
///
/// Options may stand before or after the action. Everything else after the action is an operand and taken as it is:
/// blanks, brackets, commas and further equals signs mean nothing here. After `--` even words that begin with `-` are
/// operands.
/// @throws UsageError
/// @throws HelpText for --help and --version
HostOptions ParseCommandLine(const std::vector<std::wstring>& arguments);

/// An option as people type it.
struct OptionWords {
    std::string name;     // with its dashes
    std::string value;    // what it takes ("FILE"); "" for a switch
    std::string choices;  // where the value is one of few words: these, with a blank between them
    std::string description;
};

/// What there is to type: everything that ParseCommandLine knows and the help shows.
struct CommandWords {
    std::string name;  // "": the options that go with every subcommand
    std::string description;
    std::vector<OptionWords> options;
    std::string choices;  // of its first word, where that is one of few
};
std::vector<CommandWords> AllWords();

}  // namespace QVHost
