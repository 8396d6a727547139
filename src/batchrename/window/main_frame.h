// main_frame.h - the Batch Rename window. It lives on the GUI thread, paints and forwards: the list and the rule panel
// tell it what the user does, the preview worker and the run controller what came of it; what follows is the model's
// decision, and everything that takes time is done on their threads.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "batchrename/model/frame_model.h"
#include "batchrename/model/preview_worker.h"
#include "batchrename/profiles.h"
#include "batchrename/rule_context.h"
#include "batchrename/run/run_controller.h"
#include "batchrename/window/pane_listener.h"
#include "batchrename/window/row_list_view.h"
#include "batchrename/window/rule_panel.h"
#include "win32/windows.h"

namespace BatchRename {

namespace FrameMessage {
inline constexpr UINT PreviewReady = WM_APP + 1;
inline constexpr UINT RunProgress = WM_APP + 2;  // first value: renames so far
inline constexpr UINT RunEnded = WM_APP + 3;
inline constexpr UINT RunUnrecorded = WM_APP + 4;  // first value: Windows error code
}  // namespace FrameMessage

inline constexpr wchar_t kFrameClass[] = L"QVBatchRenameFrame";
inline constexpr wchar_t kFrameTitle[] = L"Quorvane - BatchRename";
inline constexpr wchar_t kRestoreTitle[] = L"Quorvane - BatchRename - Restore names";

/// What the thread around the window does for it.
class IFrameHost {
public:
    /// Has the host collect its selection again; false when it did not answer in time.
    virtual bool CollectRows() = 0;
    /// Hands over rows that wait, when the window can take them.
    virtual void TakeRows() = 0;
    /// What these folders hold has changed.
    virtual void ReportRenamed(const std::vector<std::wstring>& folders) = 0;

protected:
    ~IFrameHost() = default;
};

/// All of it outlives the window.
struct FrameEnvironment {
    Quorvane::SDK::IHostServices* services = nullptr;
    RuleContext& context;
    ProfileStore& profiles;
    const std::atomic<bool>& isClosing;  // the extension is being shut down
    IFrameHost& host;
};

class BatchRenameMainFrame final : private IFrameActions, private IPaneListener {
public:
    explicit BatchRenameMainFrame(const FrameEnvironment& environment);
    ~BatchRenameMainFrame();
    BatchRenameMainFrame(const BatchRenameMainFrame&) = delete;
    BatchRenameMainFrame& operator=(const BatchRenameMainFrame&) = delete;

    /// Makes the window and shows it where it was last. @throws std::system_error
    void Create();
    HWND GetWindow() const { return m_window; }
    /// The object of a window of this class; null for null. To be called on its thread.
    static BatchRenameMainFrame* FromWindow(HWND window);
    bool CanTakeRows() const { return m_model.CanTakeRows(); }
    void SetRows(RowSnapshot rows) { m_model.SetRows(std::move(rows)); }
    /// A message of the thread's loop; true when it is eaten.
    bool PreTranslate(MSG& message);

private:
    // The window (main_frame.cpp).
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnCreate();
    void MoveFocus(WPARAM where, bool isControl);
    void CloseWindow();
    void OnDestroy();
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
    void OnColours();
    void OpenGuide();
    void OnRunEnd(bool isAgain);
    void RestorePosition();
    void SavePosition() const noexcept;
    bool OnKey(const MSG& message);

    // What the model has done (main_frame_actions.cpp).
    void RequestPreview(PreviewRequest request, int delay) override;
    void CancelPreview(uint64_t generation) override { m_preview->Cancel(generation); }
    void Dispose(std::shared_ptr<const void> object) override { m_preview->Dispose(std::move(object)); }
    bool BeginRun(RunRequest request, bool isRecorded) override;
    void StopRun() override { m_run->Stop(); }
    void Ask(const std::wstring& question) override;
    void EndDialogs() override;
    void Close() override { CloseWindow(); }
    void ShowStatus(const std::wstring& text) override;
    void ShowTitle(bool isRestoring) override;
    void ShowState(const PanelState& state) override { m_panel->SetState(state); }
    void ShowRows(bool areInPlace) override { m_list.Refresh(areInPlace); }
    void ShowOutdated(bool isOutdated) override { m_list.ShowOutdated(isOutdated); }
    void ShowOrder(const RowOrder& order) override { m_list.ShowOrder(order); }
    void SelectRows(const std::vector<bool>& isSelected) override { m_list.Select(isSelected); }
    RowRange VisibleRows() const override { return m_list.VisibleRows(); }
    bool CollectRows() override { return m_environment.host.CollectRows(); }
    void TakeRows() override { m_environment.host.TakeRows(); }
    void ReportRenamed(const std::vector<std::wstring>& folders) override { m_environment.host.ReportRenamed(folders); }

    // What the panes tell (main_frame_actions.cpp).
    void OnRuleChanged() override;
    void OnButton(int id) override;
    void OnHeader(RowKey key) override { m_model.OnHeader(key); }
    void OnRows(RowAction action, const std::vector<bool>& isMarked) override;
    void OnName(const std::vector<bool>& isMarked, const std::wstring& name) override {
        m_model.OnNameRows(isMarked, name);
    }
    bool CanChangeRows() const override { return !m_model.IsRunning(); }
    bool CanNameRows() const override { return m_model.CanNameRows(); }
    RowSnapshot Rows() const override { return m_model.Rows().Rows(); }
    std::vector<std::wstring> PropertyNames() const override;
    Ui::DialogHost DialogHostFor(WORD dialog) const override;
    /// Rows that the host hands over meanwhile are taken afterwards.
    void RunModal(const std::function<void()>& body) override;

    int AskBox(const std::wstring& text, UINT style);
    void OpenFolderOf(const std::vector<bool>& isMarked);
    void OpenUndoManager();
    void OpenProfiles();
    void SaveProfile();
    void ReportProfiles();
    const wchar_t* Text(Quorvane::SDK::TextId id) const;
    Ui::HostTexts Texts() const {
        return [this](Quorvane::SDK::TextId id) { return Text(id); };
    }
    std::wstring Say(const Quorvane::SDK::OwnText& text,
                     std::initializer_list<Quorvane::SDK::TextArgument> arguments = {}) const {
        return Quorvane::SDK::Words(Texts())(text, arguments);
    }

    FrameEnvironment m_environment;
    FrameModel m_model;
    HWND m_window = nullptr;
    HWND m_statusBar = nullptr;
    HWND m_lastFocus = nullptr;
    RowListView m_list;
    std::unique_ptr<RulePanel> m_panel;
    std::unique_ptr<PreviewWorker> m_preview;
    std::unique_ptr<RunController> m_run;

    UINT m_dotsPerInch = USER_DEFAULT_SCREEN_DPI;
    HWND m_focusInRule = nullptr;
    int m_panelHeight = 0;   // as it is, in pixels
    int m_wishedHeight = 0;  // as the user had it last, where the window gives as much
    bool m_isDragging = false;
    ULONGLONG m_startTime = 0;  // of the last run, in milliseconds
};

}  // namespace BatchRename
