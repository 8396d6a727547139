#include "host/app/subcommands.h"

#include <algorithm>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/rename/rename_host.h"

namespace QVHost {
namespace {

using namespace BatchRename;
using SharedSession = std::shared_ptr<BatchRenameUndo>;

constexpr std::wstring_view kSuffix = L".dat";

std::wstring TimeText(const CalendarTime& time) {
    std::wstring text;
    BatchRename::AppendNumber(text, time.year, 4);
    const struct {
        wchar_t before;
        int value;
    } parts[] = {{L'-', time.month}, {L'-', time.day}, {L' ', time.hour}, {L':', time.minute}, {L':', time.second}};
    for (const auto& part : parts) {
        text += part.before;
        BatchRename::AppendNumber(text, part.value, 2);
    }
    return text;
}

std::wstring StateText(const BatchRenameUndo& session) {
    if (session.haveRestored) return L"restored";
    return session.isUnfinished ? L"unfinished" : L"";
}

/// One line a session, newest first: name, time, number of items, state.
int List(RenameHost& host, Output& output) {
    for (const SharedSession& session : host.Journal().Sessions())
        output.Line(session->fileName + L'\t' + TimeText(session->time) + L'\t' +
                    std::to_wstring(session->entries.size()) + L" items\t" + StateText(*session));
    return ExitStatus::Done;
}

/// By its file name, with or without the ending; "last" is the newest one.
SharedSession FindSession(RenameHost& host, const std::wstring& name) {
    const std::vector<SharedSession>& sessions = host.Journal().Sessions();
    if (name == L"last" && !sessions.empty()) return sessions.front();
    std::vector<std::wstring> known;
    for (const SharedSession& session : sessions) {
        if (EqualIgnoringCase(session->fileName, name) ||
            EqualIgnoringCase(session->fileName, name + std::wstring(kSuffix)))
            return session;
        known.push_back(session->fileName);
    }
    throw UsageError(L"there is no session \"" + name + L"\"" + DidYouMean(name, known) + L" (qvhost undo lists them)");
}

int Restore(RenameHost& host, BatchRenameUndo& session) {
    const RestoreRows restore = MakeRestoreRows(session, ListFolderOnDisk);
    CRenameResultCallback results;
    const std::vector<RowOutcome> outcomes = RunRestore(session, restore, host.Environment(true), results);
    const bool isDone = host.PrintOutcomes(restore.rows, outcomes, L"restored");
    return host.IsRecorded() && isDone ? ExitStatus::Done : ExitStatus::Failed;
}

int Delete(RenameHost& host, Output& output, const SharedSession& session) {
    if (host.Journal().Delete(session)) return ExitStatus::Done;
    output.Note(L"qvhost: the session cannot be deleted: " + DescribeError(host.Journal().LastError()));
    return ExitStatus::Failed;
}

}  // namespace

int RunUndo(const HostOptions& options, HostEnvironment& environment, Output& output) {
    const std::vector<std::wstring>& words = options.operands;
    const std::wstring verb = words.empty() ? L"list" : words.front();
    const size_t wanted = verb == L"list" ? 1 : 2;
    if ((verb != L"list" && verb != L"restore" && verb != L"delete") || words.size() > wanted ||
        (wanted == 2 && words.size() != 2))
        throw UsageError(L"it goes: qvhost undo [list | restore SESSION | delete SESSION]");
    RenameHost host(options, environment, output);
    if (verb == L"list") return List(host, output);
    const SharedSession session = FindSession(host, words[1]);
    return verb == L"restore" ? Restore(host, *session) : Delete(host, output, session);
}

}  // namespace QVHost
