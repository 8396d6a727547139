#include "host/app/run.h"

#include <algorithm>

#include "host/app/command_line.h"
#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/selection.h"
#include "host/app/session.h"
#include "host/app/subcommands.h"
#include "win32/target_name.h"

namespace QVHost {
namespace {

constexpr std::wstring_view kPathPlace = L"{}";  // in the arguments of a call that is made for each path

/// The status of a command that was `isDone`, with everything that counts against it.
int StatusOf(HostState& state, bool isDone) {
    const bool isSaved = state.settings.Save();
    const bool isLogged = state.log.Flush();
    state.failedCount += state.loggedFailures.exchange(0);
    return isDone && state.failedCount == 0 && isSaved && isLogged ? ExitStatus::Done : ExitStatus::Failed;
}

const CustomCommand& FindCustomCommand(const CustomCommandTable& table, const std::wstring& name) {
    if (const CustomCommand* command = table.Find(name)) return *command;
    std::vector<std::wstring> known;
    for (const CustomCommand* command : table.Commands()) known.push_back(Wide(command->Name()));
    throw UsageError(L"there is no custom command \"" + name + L"\"" + DidYouMean(name, known) +
                     L" (qvhost commands lists them)");
}

/// An extension may say by the code alone, or not at all, that it has done nothing; a person wants to know why.
void TellNotDone(HostState& state, const CustomCommand& command, const CustomCommandCall& call) {
    const std::wstring name = L"qvhost: " + Wide(command.Name());
    const std::vector<std::wstring> missing = call.MissingParameters();
    for (const std::wstring& parameter : missing)
        state.output.Note(std::wstring(name).append(L" needs ").append(parameter));
    if (!missing.empty()) return;
    const std::wstring reason =
        call.ResultCode() == 0 ? L" was not done and gives no reason; it got " : L" was not done; it got ";
    state.output.Note(name + reason + call.Describe());
    if (call.ResultCode() != ERROR_ACCESS_DENIED) return;
    if (state.isElevated)
        state.output.Note(L"qvhost: this host counts as elevated, and starts no elevated process");
    else if (!state.canElevate)
        state.output.Note(L"qvhost: this host starts an elevated process only with --can-elevate");
}

/// One call with the arguments as they are, for the `path` of a list, if there is one.
/// @throws UsageError for arguments that the command does not take
bool CallOnce(Session& session, const CustomCommand& command, const std::vector<std::wstring>& arguments,
              bool isPreview, const std::wstring& path = {}) {
    HostState& state = session.State();
    CustomCommandCall call(command);
    if (isPreview) call.SetPreview();
    for (const std::wstring& argument : arguments) call.SetArgument(argument);

    Quorvane::SDK::IPluginInterface* const extension = session.Extensions()[command.Extension()]->Commands();
    const bool handled = extension && extension->OnCustomCommand(&call) != 0;
    state.failedCount += state.loggedFailures.exchange(0);
    if (!call.ResultText().empty()) state.output.Note(L"[result] " + call.ResultText());
    if (call.ResultCode() != 0) state.output.Note(L"[result] " + DescribeError(call.ResultCode()));
    if (!handled) TellNotDone(state, command, call);
    state.output.Result(call.ResultCode(), call.ResultText());
    const bool isDone = handled && call.ResultCode() == 0;
    if (path.empty()) return isDone;
    // What a command says in its result may be no more than the code again.
    const std::wstring reason = call.ResultCode() == 0 ? call.ResultText() : DescribeError(call.ResultCode());
    state.output.Item(ItemFields(path, L"", isDone ? L"done" : L"failed", call.ResultCode(), isDone ? L"" : reason));
    return isDone;
}

/// `arguments` with the path in the place of each {}.
std::vector<std::wstring> ArgumentsFor(std::vector<std::wstring> arguments, const std::wstring& path) {
    for (std::wstring& argument : arguments)
        for (size_t at = 0; (at = argument.find(kPathPlace, at)) != std::wstring::npos; at += path.size())
            argument.replace(at, kPathPlace.size(), path);
    return arguments;
}

/// Each call knows its own file alone. That several would be written to one target is seen here, before the first call.
void RefuseSharedTarget(const std::vector<std::wstring>& arguments, const std::vector<std::wstring>& paths) {
    constexpr std::wstring_view kTarget = L"TARGET=";
    // Then each file is its own target, and the library notes that TARGET is not used.
    const auto staysInPlace = [](const std::wstring& text) { return text == L"KEEPBACKUP" || text == L"DELETE"; };
    if (std::ranges::any_of(arguments, staysInPlace)) return;
    for (const std::wstring& argument : arguments) {
        if (!argument.starts_with(kTarget) || argument.find(kPathPlace) != std::wstring::npos) continue;
        const std::wstring shared = Win32::FindSharedTarget(argument.substr(kTarget.size()), paths);
        if (!shared.empty())
            throw UsageError(L"several files of the list would be written to " + shared +
                             L"; in TARGET a * stands for each file's name, as in TARGET=*_new.*");
    }
}

int RunCall(Session& session, const HostOptions& options, std::istream& in) {
    const CustomCommand& command = FindCustomCommand(session.State().customCommands, options.operands.front());
    const std::vector<std::wstring> arguments(options.operands.begin() + 1, options.operands.end());
    if (!options.filesFrom)
        return StatusOf(session.State(), CallOnce(session, command, arguments, options.previewsCall));
    if (std::ranges::none_of(arguments, [](const auto& text) { return text.find(kPathPlace) != text.npos; }))
        throw UsageError(L"with --files-from the place of each path is marked by {}, as in FILE={}");
    bool isDone = true;
    HostState& state = session.State();
    state.reportsCalls = true;
    const std::vector<std::wstring> paths = SelectedPaths({}, options.filesFrom, in);
    RefuseSharedTarget(arguments, paths);
    state.progressWatch.all = static_cast<uint32_t>(paths.size());
    for (const std::wstring& path : paths) {
        if (IsStopped(state.progressWatch)) break;
        isDone &= CallOnce(session, command, ArgumentsFor(arguments, path), options.previewsCall, path);
        ++state.progressWatch.begun;
    }
    return StatusOf(state, isDone);
}

void Select(HostState& state, const std::vector<std::wstring>& given, const std::optional<std::wstring>& listFile,
            std::istream& in) {
    for (std::wstring& path : SelectedPaths(given, listFile, in))
        state.selection.push_back(state.files.MakeItem(std::move(path)));
}

int RunColumns(Session& session, const HostOptions& options, std::istream& in) {
    HostState& state = session.State();
    Select(state, options.operands, options.filesFrom, in);
    if (state.selection.empty()) throw UsageError(L"columns needs files: qvhost columns PATH...");
    const ColumnFormat format = options.printsCsv    ? ColumnFormat::Csv
                                : options.printsJson ? ColumnFormat::Items
                                                     : ColumnFormat::Table;
    PrintColumns(state.output, state.columns, state.selection, format, [&] { return IsStopped(state.progressWatch); });
    return ExitStatus::Done;
}

int RunCommand(Session& session, const HostOptions& options, std::istream& in) {
    HostState& state = session.State();
    uint32_t id = 0;
    if (!ParseNumber(options.operands.front(), id))
        throw UsageError(L"\"" + options.operands.front() + L"\" is no command id (qvhost menus lists them)");
    Select(state, {options.operands.begin() + 1, options.operands.end()}, options.filesFrom, in);
    const bool handled = session.RunCommand(id);
    // An extension may have opened a window that works by itself: this command ends with it.
    PumpWhile(session, [&] { return HasWindowsOfOtherThreads() && !IsStopped(state.progressWatch); });
    session.ShutdownExtensions();  // a window that is closed only now has settings to keep
    if (!handled)
        state.output.Note(L"qvhost: no extension handles the command " + std::to_wstring(id) +
                          L" (qvhost menus lists them)");
    return StatusOf(state, handled);
}

int Run(const HostOptions& options, HostEnvironment& environment, Output& output) {
    if (options.action == Action::Rename) return RunRename(options, environment, output);
    if (options.action == Action::Undo) return RunUndo(options, environment, output);
    if (options.action == Action::ElevatedServer) return RunElevatedServer(options, environment);
    if (options.action == Action::SendTo) return RunSendTo(options, environment, output);
    if (options.action == Action::SelfTest) return RunSelfTest(options, environment, output);
    Session session(options, environment, output);
    if (options.action == Action::Extensions) {
        PrintExtensions(output, session.Library().Extensions());
        return ExitStatus::Done;
    }
    if (options.action == Action::Panel) return RunPanel(session, options, environment.in);
    session.StartExtensions();
    switch (options.action) {
        case Action::Call: return RunCall(session, options, environment.in);
        case Action::Command: return RunCommand(session, options, environment.in);
        case Action::Columns: return RunColumns(session, options, environment.in);
        case Action::Completion: return PrintCompletion(options, session.State().customCommands, output);
        case Action::Menus: PrintMenus(output, session.State().menus); return ExitStatus::Done;
        default: PrintCustomCommands(output, session.State().customCommands); return ExitStatus::Done;
    }
}

/// Runs what the arguments say. The exit status, apart from a stop and from output that cannot be written.
int RunAndTell(const std::vector<std::wstring>& arguments, HostEnvironment& environment, Output& output,
               Report& report) {
    try {
        const HostOptions options = ParseCommandLine(arguments);
        output.CollectIn(options.printsJson ? &report : nullptr);
        const bool hasName = options.action == Action::Call || options.action == Action::Command ||
                             (options.action == Action::Undo && !options.operands.empty());
        report.SetCommand(options.actionName, hasName ? options.operands.front() : L"");
        return Run(options, environment, output);
    } catch (const HelpText& help) {
        output.CollectIn(nullptr);
        output.Line(Wide(help.text.substr(0, help.text.find_last_not_of('\n') + 1)));
        return ExitStatus::Done;
    } catch (const UsageError& error) {
        output.Note(L"qvhost: " + Wide(error.what()));
        output.Note(L"qvhost: for help: qvhost --help");
        return ExitStatus::WrongUse;
    } catch (const std::exception& error) {
        output.Note(L"qvhost: " + Wide(error.what()));
        return ExitStatus::Failed;
    }
}

}  // namespace

int RunQvHost(const std::vector<std::wstring>& arguments, HostEnvironment& environment) {
    Output output(environment.out, environment.error, environment.outIsTerminal);
    Report report;
    // Looked for by itself: who asks for a document gets one for a command line too that makes no sense.
    if (std::ranges::find(arguments, L"--json") != arguments.end()) output.CollectIn(&report);
    int status = RunAndTell(arguments, environment, output, report);
    // Here for every subcommand: what was left out need not show in what a command says of itself.
    if (IsStopped(environment.progressWatch)) {
        output.Note(L"qvhost: the run was stopped");
        status = std::max<int>(status, ExitStatus::Failed);
    }
    if (output.IsCollecting()) {
        output.CollectIn(nullptr);
        output.Lines(report.Text(status));
    }
    return output.Flush() ? status : std::max<int>(status, ExitStatus::Failed);
}

}  // namespace QVHost
