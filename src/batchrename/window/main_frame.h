// main_frame.h - the Batch Rename window. It lives on the GUI thread and ties the pieces together: the list and the
// rule panel tell it what the user does, the preview worker and the run controller tell it what came of it. Everything
// that takes time is theirs.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "batchrename/model/preview_worker.h"
#include "batchrename/model/row_list.h"
#include "batchrename/model/window_position.h"
#include "batchrename/profiles.h"
#include "batchrename/rule_context.h"
#include "batchrename/run/run_controller.h"
#include "batchrename/window/row_list_view.h"
#include "batchrename/window/rule_panel.h"

namespace BatchRename {

/// What the window has around it. All of it outlives the window.
struct FrameSurroundings {
    Quorvane::SDK::IHostServices* services = nullptr;
    RuleContext& context;
    ProfileStore& profiles;
    const std::atomic<bool>& isClosing;                                       // the extension is being shut down
    std::function<bool()> collectRows;                                        // false: the host did not answer in time
    std::function<void()> takeRows;                                           // hands over rows that wait
    std::function<void(const std::vector<std::wstring>& folders)> onRenamed;  // what they hold has changed
};

class BatchRenameMainFrame {
public:
    explicit BatchRenameMainFrame(FrameSurroundings around);
    ~BatchRenameMainFrame();
    BatchRenameMainFrame(const BatchRenameMainFrame&) = delete;
    BatchRenameMainFrame& operator=(const BatchRenameMainFrame&) = delete;

    /// Makes the window and shows it where it was last. @throws std::system_error
    void Create();
    HWND GetWindow() const { return m_window; }
    /// The object behind a window of this class; null for null. To be asked on its thread.
    static BatchRenameMainFrame* Of(HWND window);
    /// False while a run or a dialog needs the rows as they are.
    bool CanTakeRows() const { return m_modalDepth == 0 && m_run && !m_run->IsRunning(); }
    /// Other rows, from the host: a restore that was being prepared is given up.
    void SetRows(RowSnapshot rows);
    /// A message of the thread's loop; true when it is eaten.
    bool PreTranslate(MSG& message);

private:
    /// While it lives a dialog or menu is open, whose loop the thread is in.
    class ModalScope {
    public:
        explicit ModalScope(BatchRenameMainFrame& frame) : m_frame(frame) { ++frame.m_modalDepth; }
        ~ModalScope() { --m_frame.m_modalDepth; }
        ModalScope(const ModalScope&) = delete;
        ModalScope& operator=(const ModalScope&) = delete;

    private:
        BatchRenameMainFrame& m_frame;
    };

    // The window (main_frame.cpp).
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnCreate();
    void MoveFocus(WPARAM where, bool isControl);
    void OnClose();
    void CloseWindow();
    void OnDestroy();
    void EndModalWindows();
    void Layout();
    int SplitterTop() const;
    bool OnSplitter(UINT message, LPARAM lParam);
    /// By a key: the bar goes up or down by a step.
    void MoveSplitter(bool isUp);
    /// From the list to the control of the rule that had the focus last, and back.
    void SwitchPane();
    /// `pixels` are meant at 96 to the inch.
    int Scaled(int pixels) const;
    void OnScaleChange(UINT dotsPerInch, const RECT& suggested);
    void LimitSize(MINMAXINFO& limits) const;
    void RestorePosition();
    void SavePosition() const noexcept;
    bool OnKey(const MSG& message);
    void SetStatus(const std::wstring& text);
    int AskBox(const std::wstring& text, UINT style);

    // What is done (main_frame_actions.cpp).
    void OnButton(int id);
    void OnRuleChanged();
    void InvalidatePreview();
    void RequestPreview(int delay, bool readsFolders = false);
    void OnPreview();
    /// What is wrong with the rule keeps no session from being restored: that does without the rule.
    bool HasRuleError() const;
    void ShowCounts();
    void RefreshState();
    void OnHeader(RowKey key);
    void RemoveSelectedRows();
    void MoveSelectedRows(bool isUp);
    void ChangeRows(RowSnapshot rows);
    /// Puts others in the place of the rows and what is known of them, and lets the worker end the former.
    void Replace(const std::function<void()>& change);
    void Start();
    void BeginRun();
    void OnRunEnd();
    void OpenUndoManager();
    void LoadSession(const std::shared_ptr<BatchRenameUndo>& session);
    void OpenProfiles();
    void SaveProfile();
    void ReportProfiles();
    void ResetFileList();
    const wchar_t* Text(Quorvane::SDK::TextId id) const;

    FrameSurroundings m_around;
    HWND m_window = nullptr;
    HWND m_statusBar = nullptr;
    HWND m_lastFocus = nullptr;
    RowList m_rows;
    RowListView m_list;
    std::unique_ptr<RulePanel> m_panel;
    std::unique_ptr<PreviewWorker> m_preview;
    std::unique_ptr<RunController> m_run;

    UINT m_dotsPerInch = USER_DEFAULT_SCREEN_DPI;
    HWND m_focusInRule = nullptr;
    int m_panelHeight = 0;
    int m_modalDepth = 0;
    bool m_isDragging = false;

    CalendarTime m_time;
    std::wstring m_ruleError;
    uint64_t m_generation = 0;
    RowOrder m_order;
    bool m_mustSort = false;         // the rows are not in this order yet
    bool m_mustReadFolders = false;  // a run has changed what they hold
    bool m_isUpToDate = false;       // what the list shows is what the rule makes of it
    bool m_startsWhenReady = false;  // Start was pressed before the preview was there
    bool m_isDone = false;           // nothing has changed since the last run
    bool m_closesAfterRun = false;
    ULONGLONG m_startTime = 0;
    std::shared_ptr<BatchRenameUndo> m_session;  // being restored; null: the rule is used
    bool m_mustLoad = false;                     // its rows are not made yet
};

}  // namespace BatchRename
