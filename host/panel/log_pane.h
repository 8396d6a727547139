// log_pane.h - the panel's lower list: what commands have reported, failures standing out. Lines may come from any
// thread.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "host/contract/panel_view.h"
#include "host/panel/panel_look.h"

#include <commctrl.h>

namespace QVHost {

class LogPane {
public:
    /// `parent` gets the message `linesMessage` when lines have come. `hint` is shown while there is no line.
    LogPane(HWND parent, int id, UINT linesMessage, const PanelLook& look, std::wstring hint);

    HWND Window() const { return m_list; }
    /// On any thread.
    void Add(std::wstring_view text, Tone tone);
    /// All lines that ever came, on any thread: what it grows by during a command is what the command has said.
    size_t CountOfAdded();
    /// On the window's thread: shows the lines that have come, the last one in view.
    void TakeLines();
    void Clear();
    /// The selected lines go to the clipboard; all, when none is selected.
    void Copy() const;
    void SelectAll();
    /// "" when there is none.
    std::wstring FocusedLine() const;
    /// On the screen, for a menu that a key opens.
    POINT PlaceOfFocused() const;
    /// The look has another scale than `from`, dots per inch.
    void Rescale(UINT from);

    /// A notification of the list; true when `result` answers it.
    bool OnNotification(NMHDR& header, LRESULT& result);

private:
    struct Line {
        std::wstring text;
        Tone tone;
    };
    void TakeFocus();
    void Widen(const std::wstring& text);
    LRESULT OnCustomDraw(NMLVCUSTOMDRAW& draw) const;

    HWND m_parent;
    UINT m_linesMessage;
    const PanelLook& m_look;
    std::wstring m_hint;
    HWND m_list;
    std::vector<Line> m_lines;
    int m_width = 0;  // pixels of the column
    std::mutex m_mutex;
    std::vector<Line> m_newLines;
    size_t m_added = 0;
};

}  // namespace QVHost
