// main_frame_actions.cpp - what the window does: rule, preview, run, profiles, sessions, rows.
#include <algorithm>
#include <system_error>
#include <utility>

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/dialogs/popup_menus.h"
#include "batchrename/dialogs/save_profile_dlg.h"
#include "batchrename/dialogs/undo_manager_dlg.h"
#include "batchrename/local_time.h"
#include "batchrename/model/rows_after_run.h"
#include "batchrename/window/frame_messages.h"
#include "batchrename/window/main_frame.h"

namespace BatchRename {
namespace {

constexpr int kTypingPause = 150;              // milliseconds behind the last key
constexpr size_t kRowsWorthASneakPeek = 2000;  // fewer are there at once: showing part of them would only flicker

std::wstring ErrorOf(const RuleDefinition& rule) {
    if (!(rule.options & RenameOption::RegularExpression) || !rule.items) return {};
    const ItemFault fault = CheckRegularExpressions(*rule.items, (rule.options & RenameOption::CaseSensitive) != 0);
    if (fault.item == 0) return {};
    return L"Expression " + std::to_wstring(fault.item) + L" is not valid: " + fault.error;
}

}  // namespace

const wchar_t* BatchRenameMainFrame::Text(Quorvane::SDK::TextId id) const {
    const wchar_t* const text =
        m_around.services ? m_around.services->GetModuleText(m_around.context.hostValue, id) : nullptr;
    return text ? text : L"";
}

void BatchRenameMainFrame::OnButton(int id) {
    switch (id) {
        case IDC_START: return Start();
        case IDC_UNDO: return OpenUndoManager();
        case IDC_PROFILES: return OpenProfiles();
        case IDC_RESET_LIST: return ResetFileList();
        case IDC_CLOSE: PostMessageW(m_window, WM_CLOSE, 0, 0); return;
        case IDC_LIVE_PREVIEW:
            if (m_panel->IsLive() && !m_isUpToDate && !m_isDone) RequestPreview(0);
            return;
        case IDC_CHANGES_ONLY: m_rows.ShowChangesOnly(m_panel->ShowsChangesOnly()); return m_list.Refresh();
        default: return;
    }
}

// --- rule and preview

void BatchRenameMainFrame::OnRuleChanged() {
    RuleDefinition rule = m_panel->Rule();
    m_ruleError = ErrorOf(rule);
    if (!m_ruleError.empty()) {
        // The rule as it was before stays, and so do the names that it gave.
        SetStatus(m_ruleError);
        return RefreshState();
    }
    m_around.context.rule = std::move(rule);
    m_time = LocalTimeNow();
    m_isDone = false;
    InvalidatePreview();
    if (m_panel->IsLive()) RequestPreview(kTypingPause);
}

void BatchRenameMainFrame::InvalidatePreview() {
    m_preview->Cancel(++m_generation);
    m_isUpToDate = false;
    m_startsWhenReady = false;
    if (!m_panel->IsLive()) m_list.ShowOutdated(true);
    ShowCounts();
    RefreshState();
}

void BatchRenameMainFrame::RequestPreview(int delay, bool readsFolders) {
    PreviewRequest request;
    request.generation = ++m_generation;
    request.rows = m_rows.Rows();
    request.rule = m_around.context.rule;
    request.time = m_time;
    request.readsFolders = std::exchange(m_mustReadFolders, false) || readsFolders;
    if (m_mustSort) request.order = m_order;
    if (m_mustLoad) request.session = m_session;
    const bool isFiltered = m_panel->ShowsChangesOnly();
    if (request.rows->size() >= kRowsWorthASneakPeek && !isFiltered) {
        const RowListView::Range visible = m_list.VisibleRows();
        request.firstVisible = visible.first;
        request.visibleCount = visible.count;
    }
    m_isUpToDate = false;
    m_preview->Request(std::move(request), delay);
    RefreshState();
}

void BatchRenameMainFrame::OnPreview() {
    std::shared_ptr<const Preview> preview = m_preview->Take();
    if (!preview || preview->generation != m_generation) return m_preview->Dispose(std::move(preview));
    if (!preview->error.empty()) {
        m_startsWhenReady = false;
        return SetStatus(preview->error);
    }
    const bool isComplete = preview->IsComplete();
    Replace([&] { m_rows.SetPreview(std::move(preview)); });
    m_isUpToDate = isComplete;  // only now: Replace may have had no memory, and left the former names
    if (m_isUpToDate) {
        m_mustSort = false;
        m_mustLoad = false;
        m_list.ShowOutdated(false);
    }
    m_list.Refresh();
    ShowCounts();
    RefreshState();
    if (m_isUpToDate && std::exchange(m_startsWhenReady, false)) Start();
}

bool BatchRenameMainFrame::HasRuleError() const {
    return !m_session && !m_ruleError.empty();
}

void BatchRenameMainFrame::ShowCounts() {
    if (HasRuleError()) return SetStatus(m_ruleError);
    if (m_rows.Rows()->empty()) return SetStatus(m_mustLoad ? L"Looking for the files of the session..." : L"No files");
    if (m_isUpToDate) return SetStatus(TextOfCounts(m_rows.Counts(), m_session != nullptr));
    SetStatus(m_panel->IsLive() ? L"Computing the new names..." : L"The new names are not up to date.");
}

void BatchRenameMainFrame::RefreshState() {
    PanelState state;
    state.isRunning = m_run->IsRunning();
    state.isRestoring = m_session != nullptr;
    const bool hasWork = m_isUpToDate ? m_rows.Counts().changes > 0 : !m_rows.Rows()->empty();
    state.canStart = hasWork && !m_isDone && !HasRuleError();
    m_panel->SetState(state);
}

// --- rows

void BatchRenameMainFrame::SetRows(RowSnapshot rows) {
    m_session.reset();
    m_mustLoad = false;
    m_mustSort = false;
    m_order = {};
    m_list.ShowOrder(m_order);
    SetWindowTextW(m_window, kFrameTitle);
    ChangeRows(std::move(rows));
}

void BatchRenameMainFrame::ChangeRows(RowSnapshot rows) {
    Replace([&] { m_rows.SetRows(std::move(rows)); });
    m_list.Refresh();
    m_isDone = false;
    InvalidatePreview();
    // Also where the preview is switched off: the rows themselves are what is looked at now.
    RequestPreview(0, true);
}

void BatchRenameMainFrame::Replace(const std::function<void()>& change) {
    std::shared_ptr<const void> former[] = {m_rows.CurrentPreview(), m_rows.Outcomes(), m_rows.Rows()};
    change();
    for (auto& object : former) m_preview->Dispose(std::move(object));
}

void BatchRenameMainFrame::OnHeader(RowKey key) {
    if (m_run->IsRunning() || m_isDone) return;
    m_order = NextOrder(m_order, key);
    m_mustSort = true;
    m_list.ShowOrder(m_order);
    // Sorted by what is shown: only the preview has the new names.
    const auto& preview = m_rows.CurrentPreview();
    if (key == RowKey::NewName && m_isUpToDate) {
        RowSnapshot named = std::make_shared<const RenameItems>(preview->computed);
        m_rows.SetRows(std::move(named));
        m_list.Refresh(true);
    }
    RequestPreview(0);
}

void BatchRenameMainFrame::RemoveSelectedRows() {
    // What a session renamed is restored whole: its record would be wrong about the rest.
    if (m_run->IsRunning() || m_session) return;
    const std::vector<bool> isSelected = m_list.SelectedRows();
    const auto first = std::ranges::find(isSelected, true);
    if (first == isSelected.end()) return;
    const auto place = static_cast<size_t>(first - isSelected.begin());
    ChangeRows(std::make_shared<const RenameItems>(WithoutRows(*m_rows.Rows(), isSelected)));
    std::vector<bool> next(m_rows.Rows()->size(), false);
    if (!next.empty()) next[std::min(place, next.size() - 1)] = true;
    m_list.Select(next);
}

void BatchRenameMainFrame::MoveSelectedRows(bool isUp) {
    if (m_run->IsRunning() || m_isDone) return;
    std::vector<bool> isSelected = m_list.SelectedRows();
    if (std::ranges::find(isSelected, true) == isSelected.end()) return;
    m_order = {};
    m_mustSort = false;
    m_list.ShowOrder(m_order);
    ChangeRows(std::make_shared<const RenameItems>(MoveRows(*m_rows.Rows(), isSelected, isUp)));
    m_list.Select(isSelected);
}

void BatchRenameMainFrame::ResetFileList() {
    if (m_run->IsRunning()) return;
    SetRows(std::make_shared<const RenameItems>());
    SetStatus(L"Asking for the selected files...");
    if (m_around.collectRows())
        m_around.takeRows();
    else
        SetStatus(L"The file manager did not answer in time.");
}

// --- run

void BatchRenameMainFrame::Start() {
    if (m_run->IsRunning()) {
        // The second half of a double click on Start is not meant to stop.
        if (GetTickCount64() - m_startTime > GetDoubleClickTime()) m_run->Stop();
        return;
    }
    const bool isAsking =
        m_modalDepth > 0;  // a second click that was on its way before the question disabled the button
    if (isAsking || m_isDone || HasRuleError() || m_rows.Rows()->empty()) return;
    if (!m_isUpToDate) {
        m_startsWhenReady = true;
        if (m_panel->IsLive()) return;  // it is on its way
        RequestPreview(0);
        m_startsWhenReady = true;
        return;
    }
    const RowCounts counts = m_rows.Counts();
    if (counts.changes == 0) return;
    if (counts.problems > 0) {
        const uint64_t generation = m_generation;
        const int answer = AskBox(QuestionBeforeRun(counts), MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2);
        m_around.takeRows();
        if (answer != IDYES || generation != m_generation || m_around.isClosing) return;
    }
    BeginRun();
}

void BatchRenameMainFrame::BeginRun() {
    RunRequest request;
    request.time = LocalTimeNow();
    request.session = m_session;
    if (m_session || m_panel->SavesUndo()) request.journal = &m_around.context.undo;
    request.rows.reserve(m_rows.Rows()->size());
    for (const auto& row : m_rows.CurrentPreview()->computed) {
        request.rows.push_back(std::make_shared<BatchRenameItem>(*row));
        if (m_session) request.entries.push_back(row->hostOrder);
    }
    m_around.context.isStopped = m_around.isClosing.load();
    m_startTime = GetTickCount64();
    try {
        m_run->Start(std::move(request));
    } catch (const std::system_error&) {
        return SetStatus(L"The run could not be started; the system has no thread for it.");
    }
    m_isDone = true;
    SetStatus(m_session ? L"Restoring..." : L"Renaming...");
    RefreshState();
}

void BatchRenameMainFrame::OnRunEnd() {
    const std::shared_ptr<const RunResult> result = m_run->Take();
    if (result && !result->outcomes.empty()) m_around.onRenamed(FoldersOf(result->rows));
    if (m_closesAfterRun) return OnClose();
    if (!result) return RefreshState();
    m_preview->Cancel(++m_generation);
    m_isUpToDate = false;
    m_mustReadFolders = true;
    if (result->outcomes.empty()) {
        m_rows.ForgetPreview();
    } else {
        Replace([&] {
            m_rows.SetOutcomes(std::make_shared<const RenameItems>(RowsAfterRun(result->rows, result->outcomes)),
                               result, m_session != nullptr);
        });
    }
    m_list.Refresh(true);
    SetStatus(TextAfterRun(result->error, result->counts, m_session != nullptr));
    RefreshState();
    m_around.takeRows();
}

// --- sessions and profiles

void BatchRenameMainFrame::OpenUndoManager() {
    std::shared_ptr<BatchRenameUndo> session;
    {
        const ModalScope scope(*this);
        session = BatchRenameUndoManagerDlg(m_around.context.undo).Show(m_window);
    }
    m_around.takeRows();
    if (session && !m_around.isClosing) LoadSession(session);
}

void BatchRenameMainFrame::LoadSession(const std::shared_ptr<BatchRenameUndo>& session) {
    SetRows(std::make_shared<const RenameItems>());
    m_session = session;
    m_mustLoad = true;
    SetWindowTextW(m_window, kRestoreTitle);
    RequestPreview(0, true);
    ShowCounts();
}

void BatchRenameMainFrame::OpenProfiles() {
    std::optional<ProfileChoice> choice;
    {
        const ModalScope scope(*this);
        choice = PickProfile(m_window, m_panel->Button(IDC_PROFILES), m_around.profiles.Profiles(),
                             [this](Quorvane::SDK::TextId id) { return Text(id); });
    }
    if (!choice || m_around.isClosing) return;
    if (choice->action == ProfileAction::SaveAs) return SaveProfile();
    if (choice->action == ProfileAction::Load) {
        m_panel->SetRule(RuleOf(choice->profile));
        return OnRuleChanged();
    }
    const std::wstring& name = choice->profile.name;
    const std::wstring question = L"Delete the profile \"" + name + L"\"?";
    if (AskBox(question, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) != IDYES) return;
    m_around.profiles.Delete(name);
    ReportProfiles();
}

void BatchRenameMainFrame::SaveProfile() {
    std::optional<std::wstring> name;
    {
        const ModalScope scope(*this);
        name = SaveProfileDlg(m_around.profiles.Profiles()).Show(m_window);
    }
    if (!name || m_around.isClosing) return;
    m_around.profiles.Set(ProfileOf(*name, m_panel->Rule()));
    ReportProfiles();
}

void BatchRenameMainFrame::ReportProfiles() {
    if (m_around.profiles.Save() && m_around.profiles.WasWritten()) return SetStatus(L"The profiles are saved.");
    AskBox(L"The profiles could not be written; the log says why. They are kept until the file manager ends.",
           MB_OK | MB_ICONWARNING);
}

}  // namespace BatchRename
