// replace_file.h - gives a file new content without ever risking what was there. Shared by everything that rewrites
// files: it decides the order of moving aside, writing, and removing.
#pragma once

#include <functional>
#include <string>

#include "textio/data_writer.h"

namespace QVUtils {

/// How the target is to be written.
struct ReplaceRequest {
    std::wstring source;  // where the content comes from; nobody reads it any more
    std::wstring target;
    bool mayOverwrite = false;      // an existing target is replaced, else it is an error (code 80)
    bool keepBackup = false;        // an existing target is moved aside first, and stays there
    bool dropBackup = false;        // as keepBackup, but the backup is deleted once the new file is complete
    bool restoreOnFailure = false;  // a target moved aside goes back to its name when writing fails
};

/// Writes the target's content; what it throws makes the replacement fail.
using WriteContent = std::function<void(DataWriter&)>;

/// Writes `request.target` through `write`, which gets a buffered writer.
///
/// - With a backup, the target is moved to a free backup name before the new file is created. When none of the names is
///   free, no backup is made and the file is overwritten all the same. When writing fails, the incomplete file is
///   removed; the backup goes back to its name or stays as the surviving copy, as the request says, and a text about a
///   copy that stayed says so.
/// - Without one, a target that is the source itself (by whatever spelling or link) is written beside it and moved over
///   it when complete. Any other target is written in place, and an incomplete one is removed.
/// - A new file that takes the place of an old one gets its attributes and access list.
///
/// Returns 0, or the Windows error code for which a backup that was to be deleted is still there: the new file is
/// complete all the same.
/// @throws QVUtilsException whatever moving, opening or writing reports, and what `write` throws
uint32_t ReplaceFileContent(const ReplaceRequest& request, const WriteContent& write);

}  // namespace QVUtils
