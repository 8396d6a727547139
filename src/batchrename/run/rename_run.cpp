#include "batchrename/run/rename_run.h"

#include <algorithm>
#include <limits>

#include "batchrename/batchrename_texts.h"
#include "win32/error_text.h"
#include "win32/file_name.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

constexpr size_t kNoEntry = std::numeric_limits<size_t>::max();
constexpr uint32_t kNotRecorded = ERROR_WRITE_FAULT;  // the code of a row whose step the record does not take

/// The system's text for an error, or its number.
std::wstring DescribeCode(uint32_t code) {
    std::wstring text = Win32::SystemErrorText(code);
    while (!text.empty() && (text.back() <= L' ' || text.back() == L'.')) text.pop_back();
    const std::wstring number = L"error " + std::to_wstring(code);
    return text.empty() ? number : number + L": " + text;
}

std::wstring NotRecorded(uint32_t code) {
    return L"it could not be recorded for undo: " + DescribeCode(code);
}

/// One run: the plan, and how far it is.
class Run {
public:
    Run(const RenameItems& rows, const RunEnvironment& environment, UndoProgress progress, std::vector<size_t> entries,
        RenamePlan plan)
        : m_rows(rows),
          m_environment(environment),
          m_progress(std::move(progress)),
          m_isRecorded(static_cast<bool>(m_progress)),
          m_entries(std::move(entries)),
          m_plan(std::move(plan)),
          m_outcomes(rows.size()) {}

    std::vector<RowOutcome> CarryOut() {
        for (size_t row = 0; row < m_rows.size(); ++row) EnterVerdict(row);
        for (const StepGroup& group : m_plan.groups) {
            if (group.IsRing())
                RenameRing(group);
            else
                RenameChain(group);
        }
        m_progress.Close();
        return std::move(m_outcomes);
    }

    /// Renames nothing, because the journal answers with this error.
    std::vector<RowOutcome> Refuse(uint32_t code) {
        for (size_t row = 0; row < m_rows.size(); ++row) {
            EnterVerdict(row);
            if (m_plan.rows[row].verdict == RowVerdict::Rename) Fail(row, code, NotRecorded(code));
        }
        return std::move(m_outcomes);
    }

private:
    /// A rename as the host gets it, with the texts that the record points to.
    struct Move {
        size_t row;
        std::wstring path;
        std::wstring to;
        std::wstring aside;
    };

    /// Listens to the host while it carries out moves: records each before it begins, stops at the first failure.
    class Listener final : public IRenameResultCallback {
    public:
        Listener(Run& run, const std::vector<Move>& moves, bool mayStop, bool isReturn = false)
            : m_run(run), m_moves(moves), m_mayStop(mayStop), m_isReturn(isReturn) {}

        bool OnRenameStarting(uint32_t number) override {
            if (number >= m_moves.size() || (m_mayStop && m_run.IsStopped())) return false;
            if (m_run.RecordStep(m_moves[number]) || m_isReturn || !m_run.m_environment.needsRecord) return true;
            m_code = kNotRecorded;
            return false;
        }
        bool OnRenameResult(uint32_t number, uint32_t code) override {
            if (number != m_doneCount || number >= m_moves.size()) return false;
            const Move& move = m_moves[number];
            m_code = code;
            if (code != RenameResult::Renamed) {
                m_run.RecordFailedStep(move);
                return false;
            }
            m_run.m_outcomes[move.row].name = move.to;
            if (m_run.m_environment.onStep) m_run.m_environment.onStep();
            ++m_doneCount;
            return true;
        }

        size_t DoneCount() const { return m_doneCount; }
        uint32_t Code() const { return m_code; }  // of the last move begun

    private:
        Run& m_run;
        const std::vector<Move>& m_moves;
        bool m_mayStop;
        bool m_isReturn;  // of a ring that failed: goes on whatever can be recorded
        size_t m_doneCount = 0;
        uint32_t m_code = RenameResult::Renamed;
    };

    bool IsStopped() const { return m_environment.isStopped && m_environment.isStopped->load(); }

    /// False when it should be recorded and cannot.
    bool RecordStep(const Move& move) { return !m_isRecorded || m_progress.Step(m_entries[move.row], move.to); }
    void RecordFailedStep(const Move& move) {
        if (m_isRecorded) m_progress.FailedStep(m_entries[move.row]);
    }

    void EnterVerdict(size_t row) {
        const RowPlan& plan = m_plan.rows[row];
        RowOutcome& outcome = m_outcomes[row];
        outcome.name = m_rows[row]->currentName;
        if (plan.verdict != RowVerdict::Rename) outcome.reason = DescribeRowPlan(*m_rows[row], plan);
        if (plan.verdict == RowVerdict::Ignored) outcome.code = RenameResult::Ignored;
        if (plan.verdict == RowVerdict::Failed) outcome.code = plan.code;
    }

    Move MoveOf(size_t row, const std::wstring& from, const std::wstring& to) const {
        const BatchRenameItem& item = *m_rows[row];
        const bool isVerbatim = Win32::IsVerbatimName(from) || Win32::IsVerbatimName(to);
        return {row, Win32::JoinPath(isVerbatim ? Win32::VerbatimPath(item.location) : item.location, from), to,
                TemporaryNameFor(item.location, item.currentName, 0)};
    }

    std::vector<Move> MovesOf(const StepGroup& group) const {
        static const std::wstring kNone;
        const std::wstring& aside = group.IsRing() ? m_plan.temporaryNames[group.ring] : kNone;
        std::vector<Move> moves;
        for (size_t at = group.first; at < group.first + group.count; ++at) {
            const RenameStep& step = m_plan.steps[at];
            const BatchRenameItem& item = *m_rows[step.row];
            moves.push_back(MoveOf(step.row, step.kind == StepKind::FromAside ? aside : item.currentName,
                                   step.kind == StepKind::Aside ? aside : item.newName));
        }
        return moves;
    }

    void HandOver(const std::vector<Move>& moves, Listener& listener) {
        std::vector<RenameRowInfo> infos;
        infos.reserve(moves.size());
        for (const Move& move : moves)
            infos.push_back(
                {static_cast<uint32_t>(infos.size()), 0, move.path.c_str(), move.to.c_str(), move.aside.c_str()});
        m_environment.host.RenameRows(infos.data(), static_cast<uint32_t>(infos.size()), &listener);
    }

    void RenameChain(const StepGroup& group) {
        const std::vector<Move> moves = MovesOf(group);
        Listener listener(*this, moves, true);
        HandOver(moves, listener);
        for (size_t at = listener.DoneCount(); at < moves.size(); ++at) {
            if (listener.Code() == RenameResult::Renamed)
                NotBegun(moves[at].row);
            else if (at == listener.DoneCount())
                Fail(moves[at].row, listener.Code(), Describe(listener.Code()));
            else
                Fail(moves[at].row, ERROR_ALREADY_EXISTS, WaitedFor(moves[listener.DoneCount()].row));
        }
    }

    void RenameRing(const StepGroup& group) {
        const std::vector<Move> moves = MovesOf(group);
        if (IsStopped()) {
            for (const Move& move : moves) NotBegun(move.row);
            return;
        }
        Listener listener(*this, moves, false);
        HandOver(moves, listener);
        const size_t doneCount = listener.DoneCount();
        if (doneCount == moves.size()) return;
        const size_t failedRow = moves[doneCount].row;
        const uint32_t code = listener.Code() == RenameResult::Renamed ? ERROR_CANCELLED : listener.Code();
        PutBack(group, doneCount);
        for (const Move& move : moves) {
            RowOutcome& outcome = m_outcomes[move.row];
            if (outcome.name == m_rows[move.row]->newName)
                continue;  // could not be put back: it is renamed, and says so
            std::wstring reason = move.row == failedRow ? Describe(code) : WaitedFor(failedRow);
            if (outcome.name != m_rows[move.row]->currentName) reason += L"; it is now named \"" + outcome.name + L"\"";
            Fail(move.row, move.row == failedRow ? code : ERROR_ALREADY_EXISTS, std::move(reason));
        }
    }

    /// Undoes the first steps of a ring, the last one first. A step that cannot be undone leaves its item where it is;
    /// the others are tried all the same, since no step can overwrite anything.
    void PutBack(const StepGroup& group, size_t doneCount) {
        for (size_t at = doneCount; at-- > 0;) {
            const RenameStep& step = m_plan.steps[group.first + at];
            const std::wstring& now = m_outcomes[step.row].name;
            const std::vector<Move> back = {MoveOf(step.row, now, m_rows[step.row]->currentName)};
            Listener listener(*this, back, false, true);
            HandOver(back, listener);
        }
    }

    void NotBegun(size_t row) {
        m_outcomes[row].code = RenameResult::Ignored;
        m_outcomes[row].reason = L"the run was stopped before";
        m_outcomes[row].isNotBegun = true;
    }

    void Fail(size_t row, uint32_t code, std::wstring reason) {
        m_outcomes[row].code = code;
        m_outcomes[row].reason = std::move(reason);
    }

    std::wstring Describe(uint32_t code) const {
        if (code != kNotRecorded || !m_environment.journal) return DescribeCode(code);
        return NotRecorded(m_environment.journal->LastError());
    }

    std::wstring WaitedFor(size_t row) const {
        return L"it waited for \"" + m_rows[row]->currentName + L"\", which could not be renamed";
    }

    const RenameItems& m_rows;
    const RunEnvironment& m_environment;
    UndoProgress m_progress;
    bool m_isRecorded;
    std::vector<size_t> m_entries;  // of the undo session, by row
    RenamePlan m_plan;
    std::vector<RowOutcome> m_outcomes;
};

bool IsPlanned(const RenamePlan& plan, size_t row) {
    return plan.rows[row].verdict == RowVerdict::Rename;
}

/// One result for each row, and its state code.
void Report(const RenameItems& rows, const std::vector<RowOutcome>& outcomes, CRenameResultCallback& results) {
    for (size_t row = 0; row < rows.size(); ++row) {
        const uint32_t code = outcomes[row].code;
        rows[row]->state = code == RenameResult::Renamed   ? RowState::Renamed
                           : code == RenameResult::Ignored ? RowState::Ignored
                                                           : RowState::Failed;
        results.OnRenameResult(static_cast<uint32_t>(row), code);
    }
}

/// The session of what was done: the rows that were renamed, and those that a ring left under another name.
void KeepWhatWasRenamed(BatchRenameUndo& session, const RenameItems& rows, const std::vector<size_t>& entries,
                        const std::vector<RowOutcome>& outcomes) {
    std::vector<UndoEntry> renamed;
    for (size_t row = 0; row < rows.size(); ++row) {
        if (entries[row] == kNoEntry || outcomes[row].name == rows[row]->currentName) continue;
        renamed.push_back(std::move(session.entries[entries[row]]));
        renamed.back().newName = outcomes[row].name;
    }
    session.entries = std::move(renamed);
    session.isUnfinished = false;
}

/// Where each item of a session is when its restore begins: where its row says, and an item without a row where the
/// session left it.
void EnterPositions(BatchRenameUndo& session, const RestoreRows& restore) {
    if (!session.isUnfinished)
        for (UndoEntry& entry : session.entries) entry.reached = session.haveRestored ? entry.oldName : entry.newName;
    session.isUnfinished = true;
    for (size_t row = 0; row < restore.rows.size(); ++row) {
        UndoEntry& entry = session.entries[restore.entries[row]];
        entry.reached = restore.rows[row]->currentName;
        entry.begun.clear();
    }
}

/// Is every item under its old name, one with a row as that turned out, one without as the session has it?
bool IsHome(const BatchRenameUndo& session) {
    return std::ranges::all_of(session.entries, [](const UndoEntry& entry) {
        return entry.begun.empty() && (entry.reached.empty() || entry.reached == entry.oldName);
    });
}

}  // namespace

FolderNames ListFolderOnDisk(const std::wstring& folder) {
    FolderNames result;
    result.folder = folder;
    result.error = Win32::ListFolder(folder, [&](std::wstring_view name, const ItemIdentity& item) {
        result.names.Add(name);
        result.items.push_back(item);
    });
    if (std::ranges::find(result.items, uint64_t{0}, &ItemIdentity::index) != result.items.end()) result.items.clear();
    return result;
}

std::wstring FindItemOnDisk(const ItemIdentity& item, const std::wstring& folder) {
    return Win32::FindItem(folder, item);
}

RenamePlan PlanNow(const RenameItems& rows, const ListFolder& list) {
    std::vector<FolderNames> folders;
    for (const std::wstring& folder : FoldersOf(rows)) folders.push_back(list(folder));
    return PlanRenames(rows, folders);
}

std::vector<RowOutcome> RunRenames(const RenameItems& rows, const CalendarTime& time, const RunEnvironment& environment,
                                   CRenameResultCallback& results) {
    RenamePlan plan = PlanNow(rows, environment.list);
    RenameItems planned;
    std::vector<ItemIdentity> identities;
    std::vector<size_t> entries(rows.size(), kNoEntry);
    for (size_t row = 0; row < rows.size(); ++row) {
        if (!IsPlanned(plan, row)) continue;
        entries[row] = planned.size();
        planned.push_back(rows[row]);
        identities.push_back(plan.identities.empty() ? ItemIdentity() : plan.identities[row]);
    }
    std::shared_ptr<BatchRenameUndo> session;
    UndoProgress progress;
    if (environment.journal && !planned.empty()) {
        session = std::make_shared<BatchRenameUndo>(RecordSession(planned, false, time));
        for (size_t entry = 0; entry < planned.size(); ++entry) session->entries[entry].identity = identities[entry];
        progress = environment.journal->Begin(session);
    }
    const bool isRecorded = static_cast<bool>(progress);
    const bool isRefused = session && !isRecorded && environment.needsRecord;
    if (session && !isRecorded && environment.onUnrecorded) environment.onUnrecorded(environment.journal->LastError());
    Run run(rows, environment, std::move(progress), entries, std::move(plan));
    std::vector<RowOutcome> outcomes = isRefused ? run.Refuse(environment.journal->LastError()) : run.CarryOut();
    Report(rows, outcomes, results);
    if (!isRecorded) return outcomes;
    KeepWhatWasRenamed(*session, rows, entries, outcomes);
    if (session->entries.empty())
        environment.journal->Delete(session);
    else
        environment.journal->Write(*session);
    return outcomes;
}

std::vector<RowOutcome> RunRestore(BatchRenameUndo& session, const RestoreRows& restore, const RunEnvironment& given,
                                   CRenameResultCallback& results) {
    RunEnvironment environment = given;
    environment.needsRecord = environment.journal != nullptr;
    RenamePlan plan = PlanNow(restore.rows, environment.list);
    BatchRenameUndo after = session;
    EnterPositions(after, restore);
    const bool changesNames = !plan.steps.empty();
    UndoProgress progress;
    if (changesNames && environment.journal) progress = environment.journal->BeginRestore(after);
    const bool isRefused = changesNames && environment.needsRecord && !progress;
    Run run(restore.rows, environment, std::move(progress), restore.entries, std::move(plan));
    std::vector<RowOutcome> outcomes = isRefused ? run.Refuse(environment.journal->LastError()) : run.CarryOut();
    Report(restore.rows, outcomes, results);
    for (size_t row = 0; row < restore.rows.size(); ++row)
        after.entries[restore.entries[row]].reached = outcomes[row].name;
    const bool isComplete = results.FailedCount() == 0 && IsHome(after);
    const bool isNews = changesNames ? !isRefused : isComplete && !session.haveRestored && !session.entries.empty();
    if (!isNews) return outcomes;
    // What was restored in part is kept as it stands: the names alone would not tell what is done.
    after.isUnfinished = !isComplete;
    after.haveRestored = isComplete;
    session = std::move(after);
    if (environment.journal) environment.journal->Write(session);
    return outcomes;
}

std::wstring RunStatusText(const CRenameResultCallback& results, bool isRestore, const Words& say) {
    std::wstring text;
    const auto add = [&](uint32_t count, const OwnText& word) {
        if (count == 0) return;
        if (!text.empty()) text += L", ";
        text += say(word, {count});
    };
    add(results.DoneCount(), isRestore ? Text::CountRestored : Text::CountRenamed);
    add(results.IgnoredCount(), Text::CountIgnored);
    add(results.FailedCount(), Text::CountFailed);
    return text;
}

}  // namespace BatchRename
