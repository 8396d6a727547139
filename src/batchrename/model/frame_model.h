// frame_model.h - what the Batch Rename window knows and decides, without a window: events come in by the On functions,
// and what is to be done goes out by IFrameActions, at once and in order. Everything is called on the window's thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "batchrename/model/preview.h"
#include "batchrename/model/row_list.h"
#include "batchrename/run/run_controller.h"

namespace BatchRename {

/// What can be used of the rule panel at the moment.
struct PanelState {
    bool isRunning = false;
    bool isRestoring = false;  // the names come from a session: the rule is not used
    bool canStart = false;
    bool canGoOn = false;  // Start takes up a run that was stopped

    bool operator==(const PanelState&) const = default;
};

/// What the user has chosen beside the rule.
struct PanelChoices {
    bool isLive = true;     // each change is previewed at once
    bool savesUndo = true;  // runs are recorded
    bool showsChangesOnly = false;
};

/// Rows of the list, by number.
struct RowRange {
    size_t first = 0;
    size_t count = 0;
};

/// What the model has done: by the window, its threads and the host. An exception leaves the model in a state from
/// which the next event goes on.
class IFrameActions {
public:
    // The threads.
    /// `delay`: milliseconds without a newer request, after which the pass begins.
    virtual void RequestPreview(PreviewRequest request, int delay) = 0;
    /// Makes all passes of former generations void.
    virtual void CancelPreview(uint64_t generation) = 0;
    /// Lets go of something large on another thread; null is nothing.
    virtual void Dispose(std::shared_ptr<const void> object) = 0;
    /// The request has no time and no journal yet. False: there is no thread for the run.
    virtual bool BeginRun(RunRequest request, bool isRecorded) = 0;
    virtual void StopRun() = 0;

    // The window.
    /// Asks yes or no; the answer is OnAnswer.
    virtual void Ask(const std::wstring& question) = 0;
    /// Dialogs and menus end as if they were cancelled.
    virtual void EndDialogs() = 0;
    virtual void Close() = 0;
    virtual void ShowStatus(const std::wstring& text) = 0;
    virtual void ShowTitle(bool isRestoring) = 0;
    virtual void ShowState(const PanelState& state) = 0;
    /// The list is taken anew from Rows(). `areInPlace`: each row stands for the one that had its number before.
    virtual void ShowRows(bool areInPlace) = 0;
    virtual void ShowOutdated(bool isOutdated) = 0;
    virtual void ShowOrder(const RowOrder& order) = 0;
    virtual void SelectRows(const std::vector<bool>& isSelected) = 0;
    virtual RowRange VisibleRows() const = 0;

    // The host.
    /// Has it collect its selection again; false when it did not answer in time.
    virtual bool CollectRows() = 0;
    /// Rows that it has handed over meanwhile come by SetRows.
    virtual void TakeRows() = 0;
    virtual void ReportRenamed(const std::vector<std::wstring>& folders) = 0;

protected:
    ~IFrameActions() = default;
};

enum class FrameState : uint8_t {
    Outdated,   // the list does not show what the rule makes of its rows, and nothing is being done about it
    Computing,  // a preview is requested
    Starting,   // the same, and Start was pressed: the run begins when the preview is there
    Ready,      // the list shows what a run would do
    Asking,     // the same, and the question whether to go on without some rows is open
    Running,
    Stopping,  // a run is under way, and when it has ended the window closes
    Done,      // a run has ended, and nothing has changed since
};

class FrameModel {
public:
    /// `rule` outlives the model, and is the last one without a fault. `now`: the time that its tags give until it
    /// changes.
    FrameModel(IFrameActions& actions, RuleDefinition& rule, const CalendarTime& now, Quorvane::SDK::Words say = {});

    FrameState State() const { return m_state; }
    const RowList& Rows() const { return m_rows; }
    bool IsRunning() const { return m_state == FrameState::Running || m_state == FrameState::Stopping; }
    /// False while a run or a dialog needs the rows as they are.
    bool CanTakeRows() const { return m_openDialogs == 0 && !IsRunning(); }
    void ShowState();

    // The user. Row marks are by row, true for the selected ones.
    void OnRuleChanged(RuleDefinition rule, const CalendarTime& now);
    void OnChoices(const PanelChoices& choices);
    /// `isSecondClick`: of a double click, whose first may have begun a run; it is not meant to stop that.
    void OnStart(bool isSecondClick);
    /// To the question of Ask.
    void OnAnswer(bool isYes);
    void OnHeader(RowKey key);
    void OnRemoveRows(const std::vector<bool>& isSelected);
    /// Takes all others out.
    void OnKeepRows(std::vector<bool> isSelected);
    void OnMoveRows(std::vector<bool> isSelected, bool isUp);
    /// Those that are not checked keep their names.
    void OnCheckRows(const std::vector<bool>& isSelected, bool isChecked);
    /// A name by hand for the rows; "" gives them the rule's again. After a run the others are left out then: the rule
    /// would be applied to them a second time.
    void OnNameRows(const std::vector<bool>& isSelected, const std::wstring& name);
    bool CanNameRows() const { return !IsRunning() && !m_session; }
    /// The list is asked for again.
    void OnResetRows();
    /// Names and folders are looked at again.
    void OnRefresh();
    void OnDialogOpened() { ++m_openDialogs; }
    void OnDialogClosed() { --m_openDialogs; }
    /// `isShutdown`: the host ends, and waits for nothing.
    void OnClose(bool isShutdown);

    // The threads.
    void OnPreview(std::shared_ptr<const Preview> preview);
    void OnRunProgress(uint32_t renameCount);
    /// Before the first rename of a run that goes on without its record: the Windows error code.
    void OnRunUnrecorded(uint32_t code);
    /// Comes again for the same run until it has returned without an exception.
    void OnRunEnd(const std::shared_ptr<const RunResult>& result);

    /// Other rows, from the host, while CanTakeRows: a restore that was being prepared is given up.
    void SetRows(RowSnapshot rows);
    /// The items of the session, to get their old names back; of some entries alone, in ascending order, if not empty.
    void LoadSession(std::shared_ptr<BatchRenameUndo> session, std::vector<size_t> entries = {});

private:
    bool IsUpToDate() const { return m_state == FrameState::Ready || m_state == FrameState::Asking; }
    /// A fault of the rule keeps no session from being restored: that does without the rule.
    bool HasRuleError() const { return !m_session && !m_ruleError.empty(); }
    void Invalidate();
    void RequestPreview(int delay, bool readsFolders = false);
    void ShowStatus(const Quorvane::SDK::OwnText& text,
                    std::initializer_list<Quorvane::SDK::TextArgument> arguments = {});
    void ShowCounts();
    void ShowProblemsFirst(bool areFirst);
    void ChangeRows(RowSnapshot rows);
    template <typename Change>
    void EditRows(const std::vector<bool>& isMarked, const Change& change);
    template <typename Change>
    void Replace(const Change& change);
    void BeginRun();
    void AddRest(RunRequest& request);

    IFrameActions& m_actions;
    Quorvane::SDK::Words m_say;
    RuleDefinition& m_rule;
    CalendarTime m_time;
    RowList m_rows;
    PanelChoices m_choices;
    FrameState m_state = FrameState::Outdated;
    int m_openDialogs = 0;      // and menus, whose loops the thread is in
    uint64_t m_generation = 0;  // of the newest preview
    std::wstring m_ruleError;   // of the rule in the panel, in words
    RowOrder m_order;
    std::shared_ptr<BatchRenameUndo> m_session;  // being restored; null: the rule is used
    std::vector<size_t> m_sessionEntries;        // those alone; empty: all
    bool m_isUnrecorded = false;                 // the run that is under way
    std::vector<uint32_t> m_rest;                // the rows of that run, if it is the rest of one that was stopped
    // What the next preview has to do as well.
    bool m_mustSort = false;
    bool m_mustLoadSession = false;
    bool m_mustReadFolders = false;
};

}  // namespace BatchRename
