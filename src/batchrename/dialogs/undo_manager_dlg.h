// undo_manager_dlg.h - the dialog over earlier sessions: shows what they renamed, deletes them, and chooses one to be
// restored. Restoring is the window's work.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "batchrename/run/undo_store.h"
#include "ui/dialog.h"

namespace BatchRename {

/// A session, and which of its entries, in ascending order; none: all.
struct SessionChoice {
    std::shared_ptr<BatchRenameUndo> session;
    std::vector<size_t> entries;
};

class BatchRenameUndoManagerDlg final : private Ui::Dialog {
public:
    /// `store` outlives the dialog; its folder is read anew.
    explicit BatchRenameUndoManagerDlg(UndoStore& store);

    /// What to load; nothing when the user closes the dialog.
    std::optional<SessionChoice> Show(HWND owner);
    using Dialog::UseHost;

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void FillSessions();
    /// What follows from the selected sessions: the lower list, and what can be pressed.
    void Refresh();
    std::vector<std::shared_ptr<BatchRenameUndo>> SelectedSessions() const;
    /// Of the lower list.
    std::vector<size_t> SelectedEntries() const;
    /// A copy: deleting changes the store's own list.
    std::vector<std::shared_ptr<BatchRenameUndo>> AllSessions() { return m_store.Sessions(); }
    void DeleteAll(const std::vector<std::shared_ptr<BatchRenameUndo>>& sessions);

    UndoStore& m_store;
    std::vector<size_t> m_entries;             // that were chosen
    std::shared_ptr<BatchRenameUndo> m_shown;  // its entries are in the lower list
};

/// When a session was recorded, by the calendar and clock of the user's settings.
std::wstring TextOfTime(const CalendarTime& time);

}  // namespace BatchRename
