// Undo sessions: any bytes as a session's file, and what is read written and read again.
#include "rename/undo_session.h"

#include "fuzz/input.h"
#include "rename/restore_rows.h"

namespace QVFuzz {

using namespace BatchRename;

void RunUndoSession(Bytes bytes) {
    if (bytes.size() > 8192) return;
    Input input(bytes);
    const bool isText = input.Byte() % 2 == 0;
    const std::string_view rest = input.Rest();
    const std::wstring text = isText ? Widened<wchar_t>(rest) : DecodeSession(Exact<char>(rest).View());
    BatchRenameUndo session;
    ParseSession(text, session);
    // No folder begins with the signs of a remark, so none is written.
    std::erase_if(session.entries, [](const UndoEntry& entry) {
        return entry.location.empty() || entry.location.front() == L';' || entry.location.front() == L'#';
    });
    BatchRenameUndo again;
    ParseSession(FormatSession(session), again);
    Require(again.entries.size() == session.entries.size(), "every entry is written and read again");
    for (size_t at = 0; at < again.entries.size(); ++at) {
        const UndoEntry& left = again.entries[at];
        const UndoEntry& right = session.entries[at];
        Require(left.location == right.location && left.oldName == right.oldName && left.newName == right.newName,
                "an entry is read as it was written");
        Require(!session.isUnfinished || (left.reached == right.reached && left.begun == right.begun),
                "and so is where its item is");
    }
    Require(again.haveRestored == session.haveRestored && SecondsOf(again.time) == SecondsOf(session.time),
            "so is what stands above");
    FileNameOf(session);
    const RestoreRows restore = MakeRestoreRows(session, [&](const std::wstring& folder) {
        FolderNames names;
        names.folder = folder;
        for (size_t at = 0; at < session.entries.size(); ++at)
            names.names.Add(at % 2 == 0 ? session.entries[at].newName : session.entries[at].oldName);
        for (const UndoEntry& entry : session.entries) names.items.push_back(entry.identity);
        return names;
    });
    Require(restore.rows.size() == restore.entries.size(), "each row knows its entry");
    Require(PlanRenames(restore.rows, {}).steps.empty(), "nothing is renamed in folders that cannot be read");
    for (const size_t entry : restore.entries) Require(entry < session.entries.size(), "which is one of the session");
}

}  // namespace QVFuzz
