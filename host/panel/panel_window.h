// panel_window.h - the panel: a folder, the menus of all extensions, and a log. It is the file manager's main window as
// far as extensions can tell, and the place where the library is tried.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/app/session.h"
#include "host/panel/folder_view.h"
#include "host/panel/log_pane.h"
#include "host/panel/panel_look.h"
#include "host/panel/panel_menu.h"
#include "host/panel/panel_texts.h"
#include "host/panel/run_report.h"

#include <shellapi.h>

namespace QVHost {

class PanelWindow final : public IPanelView {
public:
    /// Makes the window, still empty and hidden, and becomes the session's panel and main window: extensions may ask
    /// for both while they start. @throws HostError where the system gives no window
    explicit PanelWindow(Session& session);
    PanelWindow(const PanelWindow&) = delete;
    PanelWindow& operator=(const PanelWindow&) = delete;
    ~PanelWindow() override;

    /// After the extensions have started: fills the window with what they registered, and shows `paths`: one folder, or
    /// the folder of the first path with all that lie in it selected. At least one.
    void Open(const std::vector<std::wstring>& paths);
    bool IsOpen() const { return m_isOpen; }
    /// Keys that belong to the panel; true when the message is dealt with.
    bool PreTranslate(MSG& message);

    Items SelectedItems() override;
    Items FocusedGroup() override;
    void ShowLine(std::wstring_view text, Tone tone) override;
    void MarkFile(const std::wstring& path, uint32_t kind) override;
    void FileRenamed(const std::wstring& before, const std::wstring& now) override;
    void FolderChanged(const std::wstring& folder) override;

private:
    /// What stands in the window once it is filled.
    struct Content {
        Content(HWND frame, Session& session, const PanelLook& look);
        HWND back;
        HWND up;
        HWND label;
        HWND address;
        FolderView list;
        LogPane log;
        HWND status;
    };

    // The window (panel_window.cpp).
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnNotification(NMHDR& header);
    void OnListKey(WORD key);
    void OnLogKey(WORD key);
    /// Away from the window, the focus is remembered; back in it, the same control has it.
    void OnActivate(bool isActive);
    void Layout() const;
    void LimitSize(MINMAXINFO& limits) const;
    void OnScaleChange(UINT dotsPerInch, const RECT& suggested);
    /// True when it was maximised.
    bool RestorePosition();
    void SavePosition() const;

    // What it does (panel_window_actions.cpp).
    void OnCommand(WORD command);
    void OnEnter();
    void OnAddress();
    void OnDrop(HDROP drop);
    void OnContextMenu(HWND control, bool isByKey, POINT place);
    void RunCommand(uint32_t id);
    std::wstring SummaryOf(const RunCounts& counts) const;
    /// That the focused line of the log names; "" for none.
    std::wstring FileOfLog() const;
    void GoToFileOfLog();
    void CopyPaths();
    /// The folder of a path and the name to select in it; the path itself when it is a folder. False when it cannot be
    /// shown.
    bool GoTo(const std::wstring& path);
    /// Opens a single path as `GoTo` does. Of several it shows the folder of the first one, and selects what lies
    /// there.
    void GoToAll(const std::vector<std::wstring>& paths);
    /// Its folder, with the item selected.
    bool GoToItem(const std::wstring& path);
    enum class Way : uint8_t { Forward, Back };  // the way back is not remembered
    bool ShowFolder(const std::wstring& folder, const std::wstring& focused = {}, Way way = Way::Forward);
    void GoUp();
    void GoBack();
    void ChooseFolder();
    void Refresh();
    void ShowStatus() const;
    void ShowAddress() const;
    std::wstring Text(PanelText text) const;
    bool IsOnOwnThread() const;

    Session& m_session;
    PanelLook m_look;
    HWND m_frame = nullptr;  // owned by the session's state
    HWND m_lastFocus = nullptr;
    RunReport m_report;  // of the running command, or the last one
    UniqueMenu m_menu;
    UniqueKeys m_keys;
    std::optional<Content> m_content;
    std::vector<std::wstring> m_before;  // folders shown earlier, the latest last
    bool m_isOpen = false;
    bool m_isBusy = false;        // a command runs, and may handle messages meanwhile
    bool m_foundNothing = false;  // the running command asked for the selection, and there was none
    mutable bool m_isStatusOld = false;
};

}  // namespace QVHost
