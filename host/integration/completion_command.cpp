#include "host/app/subcommands.h"

#include <algorithm>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/contract/custom_commands.h"

namespace QVHost {
namespace {

using namespace Quorvane::SDK;

std::string Joined(const std::vector<OptionWords>& options) {
    std::string words;
    for (const OptionWords& option : options) words += (words.empty() ? "" : " ") + option.name;
    return words;
}

/// The options that a value follows, as a pattern.
std::string BashOptionsWithValue(const std::vector<CommandWords>& commands) {
    std::string pattern;
    for (const CommandWords& command : commands)
        for (const OptionWords& option : command.options)
            if (!option.value.empty()) pattern += (pattern.empty() ? "" : " | ") + option.name;
    return pattern;
}

/// A branch for each option that takes something: one of few words; else nothing, and so the shell offers files.
std::string BashValues(const std::vector<CommandWords>& commands) {
    std::string script;
    for (const CommandWords& command : commands)
        for (const OptionWords& option : command.options)
            if (!option.choices.empty())
                script += "    " + option.name + ") COMPREPLY=($(compgen -W '" + option.choices +
                          "' -- \"$word\")); return ;;\n";
    return script + "    " + BashOptionsWithValue(commands) + ") return ;;\n";
}

/// A branch for each subcommand: its own options, and the words that it may begin with.
std::string BashCommands(const std::vector<CommandWords>& commands) {
    std::string script;
    for (const CommandWords& command : commands)
        if (!command.name.empty())
            script += "    " + command.name + ") options='" + Joined(command.options) + "' words='" + command.choices +
                      "' ;;\n";
    return script;
}

std::string NamesOf(const std::vector<CommandWords>& commands) {
    std::string names;
    for (const CommandWords& command : commands)
        if (!command.name.empty()) names += (names.empty() ? "" : " ") + command.name;
    return names;
}

/// What `call` runs, with the keys and switches of each as its options: a key with "=", which its value follows.
std::vector<CommandWords> WordsOfCalls(const CustomCommandTable& table) {
    std::vector<CommandWords> calls;
    for (const CustomCommand* command : table.Commands()) {
        std::vector<OptionWords> keys;
        for (const CustomParameter& parameter : command->Parameters())
            keys.push_back({parameter.name + (parameter.Is(ParameterFlags::Switch) ? "" : "="),
                            {},
                            {},
                            ToUtf8(OnOneLine(parameter.description))});
        calls.push_back({command->Name(), ToUtf8(OnOneLine(command->Description())), std::move(keys), {}});
    }
    return calls;
}

/// A branch for each command that can be called: its keys and switches.
std::string BashCalls(const std::vector<CommandWords>& calls) {
    std::string script;
    for (const CommandWords& call : calls)
        script += "    'call " + call.name + "') words='" + Joined(call.options) + "' ;;\n";
    return script;
}

/// Where it finds no word the shell offers files ("-o default"), and so keeps names with blanks together. To the shell
/// an equals sign is a word of its own: it stands before or under the cursor in the value of a key or of an option.
std::string BashScript(const std::vector<CommandWords>& commands, const std::vector<CommandWords>& calls) {
    const std::string names = NamesOf(commands);
    return "# Completion of qvhost for bash. To use it: qvhost completion bash >FILE, and in ~/.bashrc: source FILE\n"
           "_qvhost() {\n"
           "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command='' first='' options='' "
           "words='' each\n"
           "  local value='' skips=''\n"
           "  if [ \"$word\" = = ]; then value=1 word=''\n"
           "  elif [ \"$before\" = = ]; then value=1 before=${COMP_WORDS[COMP_CWORD-2]}; fi\n"
           "  case \"$before\" in\n" +
           BashValues(commands) +
           "  esac\n"
           "  if [ -n \"$value\" ]; then return; fi\n"
           "  for each in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           "    if [ \"$each\" = = ]; then skips=1; continue; fi\n"
           "    if [ -n \"$skips\" ]; then skips=''; continue; fi\n"
           "    case \"$each\" in\n"
           "      " +
           BashOptionsWithValue(commands) +
           ") skips=1 ;;\n"
           "      -*) ;;\n"
           "      *) if [ -n \"$command\" ]; then first=$each; break; fi\n"
           "        case \" " +
           names +
           " \" in *\" $each \"*) command=$each ;; esac ;;\n"
           "    esac\n"
           "  done\n"
           "  case \"$command\" in\n" +
           BashCommands(commands) + "    *) words='" + names +
           "' ;;\n"
           "  esac\n"
           "  case \"$command $first\" in\n" +
           BashCalls(calls) +
           "    ?*' '?*) words='' ;;\n"
           "  esac\n"
           "  case \"$word\" in\n"
           "    -*) COMPREPLY=($(compgen -W \"$options " +
           Joined(commands.front().options) +
           "\" -- \"$word\")) ;;\n"
           "    *) COMPREPLY=($(compgen -W \"$words\" -- \"$word\")) ;;\n"
           "  esac\n"
           "  case \"${COMPREPLY[*]}\" in *=) compopt -o nospace ;; esac\n"
           "}\n"
           "complete -o default -F _qvhost qvhost qvhost.exe\n";
}

/// A text in PowerShell's plain quotes.
std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char unit : text) quoted.append(unit == '\'' ? 2 : 1, unit);
    return quoted + "'";
}

/// name = list of words and descriptions, by subcommand; '' is what goes with all of them.
std::string PowerShellTable(const std::vector<CommandWords>& commands) {
    std::string script;
    for (const CommandWords& command : commands) {
        script += "    " + Quoted(command.name) + " = @(\n";
        for (const OptionWords& option : command.options)
            script += "        ,@(" + Quoted(option.name) + ", " + Quoted(option.description) + ", " +
                      Quoted(option.choices) + ")\n";
        script += "    )\n";
    }
    return script;
}

std::string PowerShellWords(const std::vector<CommandWords>& commands) {
    std::string script;
    for (const CommandWords& command : commands)
        if (!command.name.empty())
            script += "    " + Quoted(command.name) + " = @(" + Quoted(command.description) + ", " +
                      Quoted(command.choices) + ")\n";
    return script;
}

std::string PowerShellScript(const std::vector<CommandWords>& commands, const std::vector<CommandWords>& calls) {
    return "# Completion of qvhost for PowerShell. To use it, in $PROFILE:\n"
           "#   qvhost completion powershell | Out-String | Invoke-Expression\n"
           "$qvhostOptions = @{\n" +
           PowerShellTable(commands) +
           "}\n"
           "$qvhostCommands = [ordered]@{\n" +
           PowerShellWords(commands) +
           "}\n"
           "$qvhostCalls = @{\n" +
           PowerShellTable(calls) +
           "}\n"
           "Register-ArgumentCompleter -Native -CommandName qvhost, qvhost.exe -ScriptBlock {\n"
           "    param($word, $line, $position)\n"
           "    $before = @($line.CommandElements | Where-Object { $_.Extent.EndOffset -lt $position } |\n"
           "        ForEach-Object { \"$_\" })\n"
           "    $command = $before | Where-Object { $qvhostCommands.Contains($_) } | Select-Object -First 1\n"
           "    $options = @($qvhostOptions['']) + @(if ($command) { $qvhostOptions[$command] })\n"
           "    $last = $options | Where-Object { $_ -and $_[0] -eq $before[-1] } | Select-Object -First 1\n"
           "    $call = if ($command -eq 'call') { $before | Where-Object { $qvhostCalls.Contains($_) } |\n"
           "        Select-Object -First 1 }\n"
           "    $found = @(\n"
           "        if ($last -and $last[2]) { -split $last[2] | ForEach-Object { ,@($_, $_) } }\n"
           "        elseif ($word.StartsWith('-')) { $options }\n"
           "        elseif (-not $command) { $qvhostCommands.Keys | ForEach-Object { ,@($_, $qvhostCommands[$_][0]) } "
           "}\n"
           "        elseif ($call) { $qvhostCalls[$call] }\n"
           "        elseif ($before[-1] -eq $command) { -split $qvhostCommands[$command][1] | ForEach-Object { ,@($_, "
           "$_) } }\n"
           "    )\n"
           "    $found | Where-Object { $_ -and $_[0] -and $_[0].StartsWith($word, 'OrdinalIgnoreCase') } | "
           "ForEach-Object {\n"
           "        [System.Management.Automation.CompletionResult]::new($_[0], $_[0], 'ParameterValue', $_[1])\n"
           "    }\n"
           "}\n";
}

}  // namespace

int PrintCompletion(const HostOptions& options, const CustomCommandTable& table, Output& output) {
    const std::wstring shell = options.operands.size() == 1 ? options.operands.front() : L"";
    if (shell != L"bash" && shell != L"powershell")
        throw UsageError(L"completion needs the name of a shell: bash or powershell");
    std::vector<CommandWords> commands = AllWords();
    const std::vector<CommandWords> calls = WordsOfCalls(table);
    std::ranges::find(commands, "call", &CommandWords::name)->choices = NamesOf(calls);
    output.Lines(shell == L"bash" ? BashScript(commands, calls) : PowerShellScript(commands, calls));
    return ExitStatus::Done;
}

}  // namespace QVHost
