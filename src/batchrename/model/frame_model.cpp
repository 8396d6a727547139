#include "batchrename/model/frame_model.h"

#include <algorithm>
#include <new>
#include <utility>

#include "batchrename/batchrename_texts.h"
#include "rename/rename_options.h"

namespace BatchRename {

using Quorvane::SDK::Words;

namespace {

constexpr int kTypingPause = 150;                // milliseconds after the last key
constexpr size_t kRowsWorthShowingEarly = 2000;  // fewer are there at once: showing part of them would only flicker

std::wstring ErrorOf(const RuleDefinition& rule, const Words& say) {
    if (!(rule.options & RenameOption::RegularExpression) || !rule.items) return {};
    const ItemFault fault = CheckRegularExpressions(*rule.items, (rule.options & RenameOption::CaseSensitive) != 0);
    if (fault.item == 0) return {};
    return say(Text::ExpressionOfPairInvalid, {fault.item, Reason(fault.error, say)});
}

}  // namespace

FrameModel::FrameModel(IFrameActions& actions, RuleDefinition& rule, const CalendarTime& now, Words say)
    : m_actions(actions), m_say(std::move(say)), m_rule(rule), m_time(now), m_rows(m_say) {}

void FrameModel::ShowState() {
    PanelState state;
    state.isRunning = IsRunning();
    state.isRestoring = m_session != nullptr;
    const bool hasWork = IsUpToDate() ? m_rows.Counts().changes > 0 : !m_rows.Rows()->empty();
    state.canGoOn = m_state == FrameState::Done && m_rows.Counts().notBegun > 0;
    state.canStart = state.canGoOn || (hasWork && !IsRunning() && m_state != FrameState::Done && !HasRuleError());
    m_actions.ShowState(state);
}

void FrameModel::ShowStatus(const Quorvane::SDK::OwnText& text,
                            std::initializer_list<Quorvane::SDK::TextArgument> arguments) {
    m_actions.ShowStatus(m_say(text, arguments));
}

void FrameModel::ShowCounts() {
    if (HasRuleError()) return m_actions.ShowStatus(m_ruleError);
    if (m_rows.Rows()->empty()) return ShowStatus(m_mustLoadSession ? Text::LookingForSession : Text::NoFiles);
    if (IsUpToDate()) return m_actions.ShowStatus(TextOfCounts(m_rows.Counts(), m_session != nullptr, m_say));
    ShowStatus(m_choices.isLive ? Text::Computing : Text::OutOfDate);
}

// --- rule and preview

void FrameModel::OnRuleChanged(RuleDefinition rule, const CalendarTime& now) {
    m_ruleError = ErrorOf(rule, m_say);
    if (!m_ruleError.empty()) {
        // The rule as it was before stays, and so do the names that it gave.
        m_actions.ShowStatus(m_ruleError);
        return ShowState();
    }
    m_rule = std::move(rule);
    m_time = now;
    if (IsRunning()) return;  // the run has rows of its own
    Invalidate();
    if (m_choices.isLive) RequestPreview(kTypingPause);
}

void FrameModel::OnChoices(const PanelChoices& choices) {
    const PanelChoices former = std::exchange(m_choices, choices);
    if (choices.showsChangesOnly != former.showsChangesOnly) {
        m_rows.ShowChangesOnly(choices.showsChangesOnly);
        m_actions.ShowRows(false);
    }
    const bool becomesLive = choices.isLive && !former.isLive;
    if (becomesLive && !IsUpToDate() && !IsRunning() && m_state != FrameState::Done) RequestPreview(0);
}

void FrameModel::OnRefresh() {
    if (!IsRunning() && m_state != FrameState::Done) RequestPreview(0, true);
}

void FrameModel::Invalidate() {
    m_state = FrameState::Outdated;
    m_actions.CancelPreview(++m_generation);
    if (!m_choices.isLive) m_actions.ShowOutdated(true);
    ShowCounts();
    ShowState();
}

void FrameModel::RequestPreview(int delay, bool readsFolders) {
    // Outdated until the request is made: when memory runs out before, Start makes another.
    const FrameState next = m_state == FrameState::Starting ? FrameState::Starting : FrameState::Computing;
    m_state = FrameState::Outdated;
    m_mustReadFolders = m_mustReadFolders || readsFolders;
    PreviewRequest request;
    request.generation = ++m_generation;
    request.rows = m_rows.Rows();
    request.rule = m_rule;
    request.time = m_time;
    request.readsFolders = m_mustReadFolders;
    if (m_mustSort) request.order = m_order;
    if (m_mustLoadSession) {
        request.session = m_session;
        request.entries = m_sessionEntries;
    }
    if (request.rows->size() >= kRowsWorthShowingEarly && !m_choices.showsChangesOnly && !m_rows.AreProblemsFirst()) {
        const RowRange visible = m_actions.VisibleRows();
        request.firstVisible = visible.first;
        request.visibleCount = visible.count;
    }
    m_actions.RequestPreview(std::move(request), delay);
    m_state = next;
    m_mustReadFolders = false;
    ShowState();
}

void FrameModel::OnPreview(std::shared_ptr<const Preview> preview) {
    if (!preview || preview->generation != m_generation || IsRunning()) return m_actions.Dispose(std::move(preview));
    const FrameState before = m_state;
    const bool isComplete = preview->IsComplete();
    // Until the names are taken over: there may be no memory for that, and no other preview is on its way.
    if (isComplete || !preview->error.empty()) m_state = FrameState::Outdated;
    if (!preview->error.empty()) return m_actions.ShowStatus(Reason(preview->error, m_say));
    Replace([&] { m_rows.SetPreview(std::move(preview)); });
    if (isComplete) {
        m_state = FrameState::Ready;
        m_mustSort = false;
        m_mustLoadSession = false;
        m_actions.ShowOutdated(false);
    }
    m_actions.ShowRows(false);
    ShowCounts();
    ShowState();
    if (isComplete && before == FrameState::Starting) OnStart(false);
}

// --- rows

void FrameModel::SetRows(RowSnapshot rows) {
    m_session.reset();
    m_mustLoadSession = false;
    m_mustSort = false;
    m_order = {};
    m_rows.ShowProblemsFirst(false);
    m_actions.ShowOrder(m_order);
    m_actions.ShowTitle(false);
    ChangeRows(std::move(rows));
}

void FrameModel::ChangeRows(RowSnapshot rows) {
    m_state = FrameState::Outdated;
    Replace([&] { m_rows.SetRows(std::move(rows)); });
    m_actions.ShowRows(false);
    Invalidate();
    // Also where the preview is switched off: the rows themselves are what is looked at now.
    RequestPreview(0, true);
}

/// Puts others in the place of the rows and what is known of them, and lets another thread end the former.
template <typename Change>
void FrameModel::Replace(const Change& change) {
    std::shared_ptr<const void> former[] = {m_rows.CurrentPreview(), m_rows.Outcomes(), m_rows.Rows()};
    change();
    for (auto& object : former) m_actions.Dispose(std::move(object));
}

void FrameModel::OnHeader(RowKey key) {
    if (key == RowKey::Problems) return ShowProblemsFirst(!m_rows.AreProblemsFirst());
    if (IsRunning() || m_state == FrameState::Done) return;
    if (m_rows.AreProblemsFirst()) ShowProblemsFirst(false);
    m_order = NextOrder(m_order, key);
    m_mustSort = true;
    m_actions.ShowOrder(m_order);
    // Sorted by what is shown: only the preview has the new names, but for those of a session.
    if (key == RowKey::NewName && IsUpToDate() && !m_session) {
        RowSnapshot named = std::make_shared<const RenameItems>(m_rows.CurrentPreview()->computed);
        m_state = FrameState::Outdated;
        m_rows.SetRows(std::move(named));
        m_actions.ShowRows(true);
    }
    RequestPreview(0);
}

void FrameModel::ShowProblemsFirst(bool areFirst) {
    m_rows.ShowProblemsFirst(areFirst);
    m_actions.ShowOrder(areFirst ? RowOrder{RowKey::Problems} : m_order);
    m_actions.ShowRows(false);
}

void FrameModel::OnRemoveRows(const std::vector<bool>& isSelected) {
    if (IsRunning()) return;
    const auto first = std::ranges::find(isSelected, true);
    if (first == isSelected.end()) return;
    const auto place = static_cast<size_t>(first - isSelected.begin());
    ChangeRows(std::make_shared<const RenameItems>(WithoutRows(*m_rows.Rows(), isSelected)));
    std::vector<bool> next(m_rows.Rows()->size(), false);
    if (!next.empty()) next[std::min(place, next.size() - 1)] = true;
    m_actions.SelectRows(next);
}

void FrameModel::OnKeepRows(std::vector<bool> isSelected) {
    if (std::ranges::find(isSelected, true) == isSelected.end()) return;
    isSelected.flip();
    OnRemoveRows(isSelected);
    m_actions.SelectRows(std::vector<bool>(m_rows.Rows()->size(), true));
}

/// Puts changed copies in the place of the marked rows.
template <typename Change>
void FrameModel::EditRows(const std::vector<bool>& isMarked, const Change& change) {
    RenameItems rows = *m_rows.Rows();
    bool isChanged = false;
    for (size_t row = 0; row < rows.size(); ++row) {
        if (!isMarked[row]) continue;
        const auto copy = std::make_shared<BatchRenameItem>(*rows[row]);
        if (!change(row, *copy)) continue;
        rows[row] = copy;
        isChanged = true;
    }
    if (!isChanged) return;
    m_state = FrameState::Outdated;
    Replace([&] { m_rows.SetEdited(std::make_shared<const RenameItems>(std::move(rows))); });
    m_actions.ShowRows(true);
    Invalidate();
    RequestPreview(0);
}

void FrameModel::OnCheckRows(const std::vector<bool>& isSelected, bool isChecked) {
    if (IsRunning()) return;
    EditRows(isSelected,
             [&](size_t, BatchRenameItem& item) { return std::exchange(item.isLeftOut, !isChecked) == isChecked; });
}

void FrameModel::OnNameRows(const std::vector<bool>& isSelected, const std::wstring& name) {
    if (!CanNameRows()) return;
    std::vector<bool> isMarked = isSelected;
    if (m_state == FrameState::Done) isMarked.assign(isSelected.size(), true);
    EditRows(isMarked, [&](size_t row, BatchRenameItem& item) {
        if (m_state == FrameState::Done) item.isLeftOut = !isSelected[row];
        if (isSelected[row]) item.ownName = name;
        return true;
    });
}

void FrameModel::OnMoveRows(std::vector<bool> isSelected, bool isUp) {
    if (IsRunning() || m_state == FrameState::Done) return;
    if (std::ranges::find(isSelected, true) == isSelected.end()) return;
    // Where a row goes would not be seen.
    if (m_rows.AreProblemsFirst()) return ShowStatus(Text::ProblemsFirst);
    m_order = {};
    m_mustSort = false;
    m_actions.ShowOrder(m_order);
    ChangeRows(std::make_shared<const RenameItems>(MoveRows(*m_rows.Rows(), isSelected, isUp)));
    m_actions.SelectRows(isSelected);
}

void FrameModel::OnResetRows() {
    if (IsRunning()) return;
    ShowStatus(Text::AskingForFiles);
    if (m_actions.CollectRows()) return m_actions.TakeRows();
    // It may show a dialog; its answer is taken whenever it comes.
    ShowStatus(Text::NoAnswerYet);
}

void FrameModel::LoadSession(std::shared_ptr<BatchRenameUndo> session, std::vector<size_t> entries) {
    if (IsRunning()) return;
    SetRows(std::make_shared<const RenameItems>());
    m_session = std::move(session);
    m_sessionEntries = std::move(entries);
    m_mustLoadSession = true;
    m_actions.ShowTitle(true);
    RequestPreview(0, true);
    ShowCounts();
}

// --- run

void FrameModel::OnStart(bool isSecondClick) {
    if (IsRunning()) {
        if (!isSecondClick) m_actions.StopRun();
        return;
    }
    // While a dialog is open: a second click that was on its way before the question disabled the button.
    if (m_openDialogs > 0) return;
    if (m_state == FrameState::Done && m_rows.Counts().notBegun > 0 && !isSecondClick) return BeginRun();
    if (m_state == FrameState::Done || HasRuleError() || m_rows.Rows()->empty()) return;
    if (m_state == FrameState::Outdated) RequestPreview(0);
    if (!IsUpToDate()) {
        m_state = FrameState::Starting;
        return;
    }
    const RowCounts& counts = m_rows.Counts();
    if (counts.changes == 0) return;
    if (counts.problems == 0) return BeginRun();
    m_state = FrameState::Asking;
    m_actions.Ask(QuestionBeforeRun(counts, m_say));
}

void FrameModel::OnAnswer(bool isYes) {
    if (m_state != FrameState::Asking) return;  // something has changed since: other names are computed
    m_state = FrameState::Ready;
    if (isYes) BeginRun();
}

void FrameModel::BeginRun() {
    RunRequest request;
    m_isUnrecorded = false;
    m_rest.clear();
    request.session = m_session;
    request.rows.reserve(m_rows.Rows()->size());
    if (m_state == FrameState::Done)
        AddRest(request);
    else
        for (const auto& row : m_rows.CurrentPreview()->computed)
            request.rows.push_back(std::make_shared<BatchRenameItem>(*row));
    if (m_session)
        for (const auto& row : request.rows) request.entries.push_back(row->hostOrder);
    if (!m_actions.BeginRun(std::move(request), m_session || m_choices.savesUndo))
        return ShowStatus(Text::RunNotStarted);
    m_state = FrameState::Running;
    ShowStatus(m_session ? Text::Restoring : Text::Renaming);
    ShowState();
}

/// The rows that a run was stopped before, with the names that it was to give them: their numbers go on.
void FrameModel::AddRest(RunRequest& request) {
    const RunResult& stopped = *m_rows.Outcomes();
    for (uint32_t row = 0; row < stopped.outcomes.size(); ++row) {
        if (!stopped.outcomes[row].isNotBegun) continue;
        const auto copy = std::make_shared<BatchRenameItem>(*(*m_rows.Rows())[row]);
        copy->newName = stopped.rows[row]->newName;
        copy->identity = stopped.rows[row]->identity;
        if (m_session) copy->state = RowState::Restore;
        request.rows.push_back(copy);
        m_rest.push_back(row);
    }
}

void FrameModel::OnRunProgress(uint32_t renameCount) {
    if (!IsRunning()) return;
    const std::wstring text = m_say(m_session ? Text::RestoringSome : Text::RenamingSome,
                                    {renameCount, m_rest.empty() ? m_rows.Counts().changes : m_rest.size()});
    m_actions.ShowStatus(m_isUnrecorded ? m_say(Text::WithoutUndo, {text}) : text);
}

void FrameModel::OnRunUnrecorded(uint32_t code) {
    if (!IsRunning()) return;
    m_isUnrecorded = true;
    ShowStatus(Text::Unrecorded, {code});
}

void FrameModel::OnRunEnd(const std::shared_ptr<const RunResult>& result) {
    const bool isClosing = m_state == FrameState::Stopping;
    if (!result) return;
    // First of all: whatever fails below, nothing waits for a run that is over.
    m_state = FrameState::Done;
    try {
        if (!result->outcomes.empty()) m_actions.ReportRenamed(FoldersOf(result->rows));
    } catch (const std::bad_alloc&) {
        if (!isClosing) throw;
    }
    if (isClosing) return m_actions.Close();
    m_actions.CancelPreview(++m_generation);
    m_mustReadFolders = true;
    if (!result->outcomes.empty())
        Replace([&] {
            const auto whole = m_rest.empty() ? result : WithRest(*m_rows.Outcomes(), *result, m_rest);
            m_rows.SetOutcomes(std::make_shared<const RenameItems>(RowsAfterRun(whole->rows, whole->outcomes)), whole,
                               m_session != nullptr);
        });
    else if (m_rest.empty())
        m_rows.ForgetPreview();
    m_actions.ShowRows(true);
    m_actions.ShowStatus(TextAfterRun(result->error, result->counts, m_session != nullptr, m_say));
    ShowState();
    m_actions.TakeRows();
}

void FrameModel::OnClose(bool isShutdown) {
    if (m_openDialogs > 0) {
        // The dialog's code is still on this thread's stack and needs the window: the dialog ends first. A shutdown
        // follows with a quit message, after which the window goes too.
        if (isShutdown) m_actions.EndDialogs();
        return;
    }
    if (!IsRunning() || isShutdown) return m_actions.Close();
    m_state = FrameState::Stopping;
    m_actions.StopRun();
    ShowStatus(Text::Stopping);
}

}  // namespace BatchRename
