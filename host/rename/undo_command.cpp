#include "host/app/subcommands.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/rename/rename_host.h"
#include "win32/path.h"

namespace QVHost {
namespace {

using namespace BatchRename;
using SharedSession = std::shared_ptr<BatchRenameUndo>;

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
        if (!output.Item(
                {{"session", session->fileName},
                 {"time", TimeText(session->time)},
                 {"entries", uint64_t{session->entries.size()}},
                 {"state", session->haveRestored || session->isUnfinished ? StateText(*session) : L"recorded"}}))
            output.Line(session->fileName + L'\t' + TimeText(session->time) + L'\t' +
                        std::to_wstring(session->entries.size()) +
                        (session->entries.size() == 1 ? L" item\t" : L" items\t") + StateText(*session));
    return ExitStatus::Done;
}

/// By its file name, with or without the ending. "last" is the newest one that has not been restored, so that repeating
/// it walks back; `isAny`: the newest one when all have been.
SharedSession FindSession(RenameHost& host, const std::wstring& name, bool isAny) {
    UndoStore& journal = host.Journal();
    const auto newest = [&](bool mayBeRestored) {
        return journal.FindNewest(
            [&](const BatchRenameUndo& session) { return mayBeRestored || !session.haveRestored; });
    };
    SharedSession found = name == L"last" ? newest(false) : journal.Find(name);
    if (!found && name == L"last" && isAny) found = newest(true);
    if (found) return found;
    const std::vector<SharedSession>& sessions = journal.Sessions();
    if (name == L"last" && !sessions.empty())
        throw UsageError(L"every session has been restored (qvhost undo lists them)");
    std::vector<std::wstring> known;
    known.reserve(sessions.size());
    for (const SharedSession& session : sessions) known.push_back(session->fileName);
    throw UsageError(L"there is no session \"" + name + L"\"" + DidYouMean(name, known) + L" (qvhost undo lists them)");
}

/// `*` stands for any text and `?` for one character; letters are equal in either case.
bool Matches(std::wstring_view name, std::wstring_view pattern) {
    size_t at = 0;
    size_t part = 0;
    size_t star = std::wstring_view::npos;
    size_t afterStar = 0;
    while (at < name.size()) {
        const bool isLeft = part < pattern.size();
        if (isLeft && pattern[part] == L'*') {
            star = part++;
            afterStar = at;
        } else if (isLeft &&
                   (pattern[part] == L'?' || EqualIgnoringCase(name.substr(at, 1), pattern.substr(part, 1)))) {
            ++at;
            ++part;
        } else if (star != std::wstring_view::npos) {
            part = star + 1;
            at = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', part) == std::wstring_view::npos;
}

/// False, with a note, when nothing of the session can be read.
bool HasEntries(const BatchRenameUndo& session, Output& output) {
    if (!session.entries.empty()) return true;
    output.Note(L"qvhost: " + session.fileName + L" holds nothing that can be read");
    return false;
}

/// One line an entry: old name, new name, folder, and, of a session that did not come to its end, the name that the
/// item has as far as the record knows.
int Show(Output& output, const BatchRenameUndo& session) {
    if (!HasEntries(session, output)) return ExitStatus::Failed;
    for (const UndoEntry& entry : session.entries) {
        const std::wstring now = entry.reached.empty() ? entry.oldName : entry.reached;
        if (output.Item({{"path", Win32::JoinPath(entry.location, entry.oldName)},
                         {"newPath", Win32::JoinPath(entry.location, entry.newName)},
                         {"state", session.isUnfinished ? L"unfinished" : L"recorded"},
                         {"now", session.isUnfinished ? JsonValue(now) : JsonValue()}}))
            continue;
        std::wstring line = entry.oldName + L'\t' + entry.newName + L'\t' + entry.location;
        if (session.isUnfinished) {
            line += L"\tnow " + now;
            if (!entry.begun.empty()) line += L" or " + entry.begun;
        }
        output.Line(line);
    }
    return ExitStatus::Done;
}

/// The rows of a session that are wanted.
/// @throws UsageError when there are none
RestoreRows WantedRows(const BatchRenameUndo& session, const std::optional<std::wstring>& only) {
    RestoreRows restore = MakeRestoreRows(session, ListFolderOnDisk, FindItemOnDisk);
    if (!only) return restore;
    KeepEntries(restore, [&](size_t at) {
        const UndoEntry& entry = session.entries[at];
        return Matches(entry.oldName, *only) || Matches(entry.newName, *only);
    });
    if (restore.rows.empty()) throw UsageError(L"no name of the session, old or new, matches \"" + *only + L"\"");
    return restore;
}

int Restore(RenameHost& host, BatchRenameUndo& session, const UndoOptions& options) {
    if (!HasEntries(session, host.State().output)) return ExitStatus::Failed;
    const RestoreRows restore = WantedRows(session, options.only);
    if (options.isPreview)
        return host.PrintPlan(restore.rows, PlanNow(restore.rows, ListFolderOnDisk), L"restore", false)
                   ? ExitStatus::Done
                   : ExitStatus::Failed;
    CRenameResultCallback results;
    const std::vector<RowOutcome> outcomes = RunRestore(session, restore, host.Environment(true), results);
    bool isDone = host.PrintOutcomes(restore.rows, outcomes, L"restored", false);
    for (size_t row = 0; row < outcomes.size(); ++row)
        isDone = isDone && outcomes[row].name == restore.rows[row]->newName;
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
    const bool isList = verb == L"list";
    const bool isRestore = verb == L"restore";
    const bool isKnown = isList || isRestore || verb == L"show" || verb == L"delete";
    if (!isKnown || (isList ? words.size() > 1 : words.size() != 2))
        throw UsageError(
            L"usage: qvhost undo [list | show SESSION | restore SESSION [--preview] [--only PATTERN] | "
            L"delete SESSION]");
    if (!isRestore && (options.undo.isPreview || options.undo.only))
        throw UsageError(L"--preview and --only go with qvhost undo restore");
    RenameHost host(options, environment, output);
    if (isList) return List(host, output);
    if (verb == L"delete" && words[1] == L"last")
        if (const SharedSession newest = host.Journal().FindNewest([](const BatchRenameUndo&) { return true; }))
            return Delete(host, output, newest);
    const SharedSession session = FindSession(host, words[1], !isRestore);
    if (isRestore) return Restore(host, *session, options.undo);
    return verb == L"show" ? Show(output, *session) : Delete(host, output, session);
}

}  // namespace QVHost
