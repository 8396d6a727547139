// undo_session.h - one recorded rename run, and the text of its file. Pure text: which folder the file is in, and what
// is on disk, others know.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "rename/calendar_time.h"
#include "rename/rename_item.h"

namespace BatchRename {

struct UndoEntry {
    std::wstring location;  // the folder that held the item, as it was called when the run began
    std::wstring newName;   // the name that the run gave the item
    std::wstring oldName;   // the one before

    // Of an unfinished session only: how far the run came with this item.
    std::wstring reached;  // the last name that it had for certain; "": it was not touched
    std::wstring begun;    // the name that it was about to get when the record ends; "": none
};

/// A session. Shared between the store and those who show it.
struct BatchRenameUndo {
    std::wstring fileName;  // in the undo folder; made from the time when it is needed and empty
    CalendarTime time;
    bool haveRestored = false;
    std::vector<UndoEntry> entries;
    bool isUnfinished = false;  // its run never came to its end: the entries are what was planned
};

/// A session of the rows, with `onlyRenamed` of those alone whose state is RowState::Renamed.
BatchRenameUndo RecordSession(const RenameItems& rows, bool onlyRenamed, const CalendarTime& time);

/// The file's content: sections "[INFO]" and "[FILES]", each line ended by "\r\n".
///
/// An unfinished session ends with lines that begin with "#", which every reader skips: a mark, the name that each item
/// has for certain, and then one line for each step of the run, written before the step is taken. With them a run that
/// was killed can be undone exactly, where the names alone would not tell whether two items have changed places
/// already. Whether the last step was taken, the record leaves open.
std::wstring FormatSession(const BatchRenameUndo& session);

/// The line that says: the item of this entry gets this name next.
std::wstring FormatStep(size_t entry, std::wstring_view name);
/// The line that says: the last step of this entry failed.
std::wstring FormatFailedStep(size_t entry);

/// Reads a file's content. Whatever is damaged is skipped; what can be read is kept. `session` is emptied first, but
/// for its file name.
void ParseSession(std::wstring_view text, BatchRenameUndo& session);

/// The file's bytes as text: UTF-16 little-endian, with or without a mark. A file that an editor has turned into
/// big-endian or UTF-8 with a mark is understood too; an odd byte at the end is dropped.
std::wstring DecodeSession(std::string_view bytes);

/// The session's file name, made from its time and kept when it had none.
const std::wstring& FileNameOf(BatchRenameUndo& session);

}  // namespace BatchRename
