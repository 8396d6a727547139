// undo_session.h - one recorded rename run, and the text of its file. Pure text: which folder the file is in, and what
// is on disk, others know.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
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

    ItemIdentity identity = {};  // so that a restore finds the item whatever has become of its name
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

/// The file's content: sections "[INFO]" and "[FILES]", each line ended by "\r\n". After the entries come lines that
/// begin with "#", which every other reader skips:
///
///     #& 0|5a00|a7c78b|cbf29ce4  which item entry 0 is: its volume, its number there, and a check sum of the
///                                entry's line, by which entry 0 is found where lines were lost or added; where
///                                the number does not suffice, the times of its last writing and reading.
///                                All of them hexadecimal
///     # unfinished               the run or restore did not come to its end: what follows says how far it is
///     #@ 0|name                  reached: the item of entry 0 has this name for certain
///     #? 0|name                  open: it may have got this one since
///     #> 0|name                  begun: it gets this name next
///     #= 0                       failed: the last step of entry 0 was not taken
///
/// The first four kinds are written with the entries, whole or not at all; a run appends the last two. One step is
/// under way at a time, so a line after a "#>" that is not its "#=" tells that the step was taken. What a reader
/// concludes from the file as it was at any moment:
///
/// - no "# unfinished": every item got its new name, or, with "HaveRestored", has its old one again;
/// - no line of its own: the item was not touched and has its old name;
/// - the last line is a "#>": this one step was taken or not. It leads to a free name, so the disk tells. A line
///   without its end announces a step that was never taken.
///
/// Writing the session anew keeps all of that: what is open stays open until a run has looked at the disk.
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
/// The time that such a name was made from, without the day of the week; nothing for any other name.
std::optional<CalendarTime> TimeOfFileName(const std::wstring& name);

}  // namespace BatchRename
