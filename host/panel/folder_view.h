// folder_view.h - the panel's list: what a folder holds, in columns, with the selection and the marks of the last
// command. It changes no file.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "host/app/column_values.h"
#include "host/contract/language.h"
#include "host/contract/panel_view.h"
#include "host/panel/folder_rows.h"
#include "host/panel/panel_look.h"
#include "host/panel/panel_menu.h"
#include "host/panel/property_worker.h"

#include <commctrl.h>

namespace QVHost {

class FolderView {
public:
    struct Parts {
        const ColumnValues& columns;
        FileObjects& files;
        LanguageTexts& texts;
        const PanelLook& look;
    };
    /// `parent` gets the message `answersMessage` when property values have come.
    FolderView(HWND parent, int id, UINT answersMessage, const Parts& parts);

    HWND Window() const { return m_list; }
    /// "" for the list of drives.
    const std::wstring& Folder() const { return m_folder; }
    size_t Count() const { return m_rows.size(); }
    size_t CountOfSelected() const;
    uint64_t SizeOfSelected() const;  // bytes of the files

    /// Shows another folder, with the row of this name focused when there is one. Windows error code; a folder that
    /// cannot be read leaves everything as it was.
    uint32_t Open(const std::wstring& folder, const std::wstring& focused = {});
    /// Reads the folder anew. Selected and focused items stay so, also those that have been renamed.
    uint32_t Refresh();
    /// Those of these paths that lie in the folder, and no others; the first row of them gets the focus. Gives the
    /// number of paths that lie elsewhere.
    size_t Select(const std::vector<std::wstring>& paths);
    void SelectAll();
    /// The path of the focused row; "" when there is none.
    std::wstring FocusedPath() const;

    /// Drives are shown and never selected for a command.
    IPanelView::Items SelectedItems();
    IPanelView::Items FocusedGroup();

    /// On any thread. The parent redraws at its next answersMessage, which this sends.
    void Mark(const std::wstring& path, uint32_t kind);
    void ClearMarks();
    /// On any thread: a file of this folder, or of any other, has another path now. The next Refresh follows it.
    void NoteRenamed(const std::wstring& before, const std::wstring& now);

    /// A notification of the list; true when `result` answers it.
    bool OnNotification(NMHDR& header, LRESULT& result);
    void OnAnswers();
    /// The look has another scale than `from`, dots per inch.
    void Rescale(UINT from);

    SelectionKind KindOfSelected() const;
    std::vector<std::wstring> SelectedPaths() const;
    /// On the screen, for a menu that a key opens.
    POINT PlaceOfFocused() const;

private:
    std::wstring CellText(size_t row, int column);
    std::wstring ResultOf(const FolderRow& row);
    std::wstring PathOf(const FolderRow& row) const;
    const std::shared_ptr<FileItem>& ItemOf(FolderRow& row);
    void AskForProperties(size_t row);
    void AddColumns();
    void ShowRows();
    void ShowOrder() const;
    void FollowRenames();
    void SortBy(int column);
    std::vector<size_t> SelectedRows() const;
    int Focused() const;
    LRESULT OnCustomDraw(NMLVCUSTOMDRAW& draw);

    HWND m_parent;
    UINT m_answersMessage;
    Parts m_parts;
    HWND m_list;
    std::wstring m_folder;
    std::vector<FolderRow> m_rows;
    RowOrder m_order = RowOrder::Name;
    bool m_isDescending = false;
    uint64_t m_reading = 0;
    struct Renaming {
        std::wstring before;
        std::wstring now;
    };
    std::mutex m_reportsMutex;  // of what other threads report
    std::vector<Renaming> m_renamings;
    std::map<std::wstring, uint32_t> m_marks;  // by path in small letters: MarkKind
    PropertyWorker m_worker;                   // last: its threads end first
};

}  // namespace QVHost
