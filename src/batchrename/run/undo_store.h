// undo_store.h - the folder of undo sessions: listing, writing, deleting. One file a session, and never two sessions in
// one file.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "rename/undo_session.h"

namespace BatchRename {

/// The record of a run that is going on. Each step is in the file before it is taken.
class UndoProgress {
public:
    /// Writes a line at the record's end, whole; false when it cannot.
    using Append = std::function<bool(std::wstring_view line)>;

    UndoProgress() = default;
    explicit UndoProgress(Append append) : m_append(std::move(append)) {}

    /// False when nothing is recorded (any more).
    explicit operator bool() const { return static_cast<bool>(m_append); }
    /// Both are false when that cannot be recorded. Then the record ends there: a later line would tell that the step
    /// before it was taken, and a line that was cut off would join it.
    bool Step(size_t entry, std::wstring_view name) { return Write(FormatStep(entry, name)); }
    bool FailedStep(size_t entry) { return Write(FormatFailedStep(entry)); }
    void Close() { m_append = {}; }

private:
    bool Write(const std::wstring& line) {
        if (!m_append) return false;
        if (m_append(line)) return true;
        Close();
        return false;
    }

    Append m_append;
};

/// What a run needs of the journal.
class IUndoJournal {
public:
    /// Writes the session of a run that is about to begin, as unfinished, as a new one. A result that is empty means
    /// that there is no record.
    virtual UndoProgress Begin(const std::shared_ptr<BatchRenameUndo>& session) = 0;
    /// The same for the restoring of a session that the journal has: it is written anew.
    virtual UndoProgress BeginRestore(BatchRenameUndo& session) = 0;
    /// Writes the session of a run that has ended, whole or not at all. When that fails, the record of its steps stays,
    /// by which it can be taken back as well: hence no LastError. Windows error code, 0 for success.
    virtual uint32_t Write(BatchRenameUndo& session) = 0;
    /// True when it is gone.
    virtual bool Delete(const std::shared_ptr<BatchRenameUndo>& session) = 0;
    /// Windows error code of the last beginning, step or deletion that failed.
    virtual uint32_t LastError() const = 0;

protected:
    ~IUndoJournal() = default;
};

class UndoStore final : public IUndoJournal {
public:
    /// Keeps the folder's path. The folder need not exist; the first session makes it.
    void SetFolder(const std::wstring& folder);
    /// Every step of a run is on disk before it is taken; without, in the system's care alone, which a power cut ends.
    void SetDurable(bool isDurable) { m_isDurable = isDurable; }

    /// The sessions in the folder, newest first. They are read when they are asked for first: a run that is recorded
    /// does without.
    const std::vector<std::shared_ptr<BatchRenameUndo>>& Sessions();
    /// The newest session of which `isWanted` is true; null when there is none. Reads as many as that takes.
    std::shared_ptr<BatchRenameUndo> FindNewest(const std::function<bool(const BatchRenameUndo&)>& isWanted);
    /// Lets the next Sessions read the folder again.
    void Refresh() { m_isListed = false; }
    /// The session of this file name, with or without its ending; null when there is none. Reads no other.
    std::shared_ptr<BatchRenameUndo> Find(const std::wstring& name);

    /// When a session of the same second has the file name, this waits for the next second. Where the clock was set
    /// back by up to a day, the session's time is moved on to stand after the newest one's.
    UndoProgress Begin(const std::shared_ptr<BatchRenameUndo>& session) override;
    UndoProgress BeginRestore(BatchRenameUndo& session) override;
    uint32_t Write(BatchRenameUndo& session) override;

    /// Deletes the session's file and, only when that succeeds, takes the session out of the list. False also for a
    /// session that this store has neither begun nor given out.
    bool Delete(const std::shared_ptr<BatchRenameUndo>& session) override;

    uint32_t LastError() const override { return m_lastError; }
    void ForgetError() { m_lastError = 0; }

private:
    struct Listed {
        int64_t seconds = 0;
        std::wstring fileName;
        std::shared_ptr<BatchRenameUndo> session;  // null: not read yet
    };

    std::shared_ptr<BatchRenameUndo> Read(const std::wstring& fileName) const;
    /// Newest first: by the time that a session's name tells, or the session itself where another has named it.
    std::vector<Listed> ListFolder() const;
    void PutAfterTheNewest(BatchRenameUndo& session) const;
    std::wstring PathOf(BatchRenameUndo& session);
    uint32_t WriteFileOf(BatchRenameUndo& session, bool mayReplace);
    UndoProgress OpenAtEnd(BatchRenameUndo& session);

    std::wstring m_folder;                                     // ends in a separator
    std::vector<std::shared_ptr<BatchRenameUndo>> m_sessions;  // those that are known, until it is listed
    bool m_isListed = false;
    bool m_isDurable = false;
    uint32_t m_lastError = 0;
};

}  // namespace BatchRename
