// undo_store.h - the folder of undo sessions: listing, writing, deleting. One file a session, and never two sessions in
// one file.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "rename/undo_session.h"
#include "win32/handle.h"

namespace BatchRename {

/// The record of a run that is going on. Each step is in the file before it is taken.
class UndoProgress {
public:
    UndoProgress() = default;
    explicit UndoProgress(Win32::FileHandle file) : m_file(std::move(file)) {}

    /// False when nothing is recorded.
    explicit operator bool() const { return static_cast<bool>(m_file); }
    void Step(size_t entry, std::wstring_view name);
    void FailedStep(size_t entry);
    void Close() { m_file.Reset(); }

private:
    void Append(const std::wstring& line);

    Win32::FileHandle m_file;
};

class UndoStore {
public:
    /// Keeps the folder's path and lists the sessions in it, newest first. The folder need not exist; the first session
    /// makes it.
    void SetFolder(const std::wstring& folder);

    const std::vector<std::shared_ptr<BatchRenameUndo>>& Sessions() const { return m_sessions; }

    /// Writes the session of a run that is about to begin, as unfinished, and adds it to the list. Its file is new:
    /// when a session of the same second has the name, this waits for the next second. A result that is empty means
    /// that there is no record.
    UndoProgress Begin(const std::shared_ptr<BatchRenameUndo>& session);

    /// The same for the restoring of a session that is in the list: its file is rewritten.
    UndoProgress BeginRestore(BatchRenameUndo& session);

    /// Writes a session's file, whole or not at all. Windows error code, 0 for success.
    uint32_t Write(BatchRenameUndo& session);

    /// Deletes the session's file and, only when that succeeds, takes the session out of the list. True on success;
    /// false also for a session that is not in the list.
    bool Delete(const std::shared_ptr<BatchRenameUndo>& session);

    /// Deletes the session's file alone; true when that succeeds.
    bool DeleteFileOf(BatchRenameUndo& session);

    /// Windows error code of the last file operation that failed.
    uint32_t LastError() const { return m_lastError; }
    void ForgetError() { m_lastError = 0; }

private:
    std::wstring PathOf(BatchRenameUndo& session);
    uint32_t WriteFileOf(BatchRenameUndo& session, bool mayReplace);
    UndoProgress OpenAtEnd(BatchRenameUndo& session);

    std::wstring m_folder;  // ends in a separator
    std::vector<std::shared_ptr<BatchRenameUndo>> m_sessions;
    uint32_t m_lastError = 0;
};

}  // namespace BatchRename
