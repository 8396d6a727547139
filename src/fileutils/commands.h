// commands.h - what File Utils does, one function for each command; command_table.cpp says which number calls which.
//
// Menu commands take the number that called them and return nonzero: they handle their command also when the user
// cancels or nothing is selected. Answers to elevated requests reply with the first error, and with 87 and without a
// change to a malformed message.
#pragma once

#include <cstdint>

#include "sdk/host_services.h"

namespace FileUtils {

using Quorvane::SDK::ICustomCommandCall;
using Quorvane::SDK::IHostServices;
using Quorvane::SDK::IRequestMessage;

/// What comes of a custom command.
struct CallResult {
    bool isDone = false;  // what the host is answered
    uint32_t code = 0;    // the call's result code, a Windows error code
};

// Names (names/)

/// The id says what becomes of the names: see quick_rename.h. Items whose name would stay are left out, and when none
/// is left nothing is asked.
uint32_t RunQuickRename(IHostServices& host, uint32_t id);

/// Replaces text in names. The dialog shows the new names beforehand, so nothing is asked after it.
uint32_t RunReplaceInNames(IHostServices& host, uint32_t id);

/// One new name for the files that share the focused file's name, each with its own extension: a.txt (focused), a.jpg
/// and b.txt with the new name "c" become c.txt, c.jpg and b.txt. The extension is what follows the last "."; names
/// without it must be equal to the letter, case included. Folders are left alone, the focused one too. The host's input
/// dialog asks for the name and is itself the confirmation.
uint32_t RunRenameGroup(IHostServices& host, uint32_t id);

// Conversions (conversions/)

/// Line ends to LF, CR LF or CR, or tabs to spaces. Asks first, with the number of files, then for the width of a tab.
/// A file that fails is left as it was and named in the log.
uint32_t RunTextConversion(IHostServices& host, uint32_t id);

/// XML in the host's mode 1, the readable form, or mode 0, the compact form. A document that the host cannot load is
/// left alone and named in the log; one that it cannot save is told about in a message box.
uint32_t RunXmlConversion(IHostServices& host, uint32_t id);

/// Encodes each file a.txt into a.txt.b64 beside it, or decodes each file into the name its header gives, in its own
/// folder, or into its own name without the last extension. An existing target is asked about; the file itself is never
/// a target. A file that fails is named in the log.
uint32_t RunBase64(IHostServices& host, uint32_t id);

// Find and replace (find_replace/)

/// Shows the dialog with the last request and runs what it gives over the panel's selection.
uint32_t RunFindAndReplaceDialog(IHostServices& host, uint32_t id);

/// "FindAndReplace": parameters to request, then the run over the one file. 0 when a required parameter is missing or
/// empty (without a message) or the file is not found; else 1, whatever became of the file. The call's result code is
/// 87 and 2 for these, 1223 when the user cancelled, else what the run met.
CallResult RunFindAndReplaceCommand(IHostServices& host, ICustomCommandCall& call);

// Sorting (sort_lines/)

/// Shows the dialog with the last request and sorts the panel's selection by what it gives.
uint32_t RunSortLinesDialog(IHostServices& host, uint32_t id);

/// "SortLines": parameters to request, then the run over the one file.
///
/// Returns 1 when the file was sorted, else 0, with the reason as the call's result code: 2 for a file that is not
/// found, 87 for a bad parameter, 1223 when the user cancelled, else what the run met. A bad parameter leaves the file
/// untouched and writes one log line that names it; without "FILE" nothing is logged. In "ITEMSEP" and "ENDCHAR"
/// the two characters \t stand for a tab, which a script cannot hold.
CallResult RunSortLinesCommand(IHostServices& host, ICustomCommandCall& call);

// Links (links/)

/// Links to the panel's selection. Each is logged; when some could not be made a message says how many.
uint32_t RunCreateLinks(IHostServices& host, uint32_t id);

/// "CreateLink": LNKTYPE, LNKSRC (the link) and LNKTRG (what it leads to) must be given, and the target must exist;
/// otherwise nothing happens, and the call's result code is 87 or why the target cannot be seen. Else it is the link's
/// error, 5 where the system misses a privilege (1314); without ASADMIN it is also the result text. With ASADMIN the
/// link is made in the elevated process; in a host that cannot elevate, or is elevated already, nothing is made
/// (compatibility: 23), and the code is 5. Done when the link was made.
CallResult RunCreateLinkCommand(IHostServices& host, ICustomCommandCall& call);

/// Replies with the link's error.
uint32_t AnswerCreateLinkRequest(IHostServices& host, IRequestMessage& message);

// Access rights (access/). The first failure is shown and ends a command.

/// Makes the user the owner of the selection. The host is asked to show the new owners.
uint32_t RunTakeOwnership(IHostServices& host, uint32_t id);
/// The owner is the user of the elevated process.
uint32_t AnswerTakeOwnershipRequest(IHostServices& host, IRequestMessage& message);

/// Gives the selection the access rights that it inherits, and no others. Asks first.
uint32_t RunResetAccess(IHostServices& host, uint32_t id);
uint32_t AnswerResetAccessRequest(IHostServices& host, IRequestMessage& message);

/// Gives an account access to the selection.
uint32_t RunGrantAccess(IHostServices& host, uint32_t id);
uint32_t AnswerGrantAccessRequest(IHostServices& host, IRequestMessage& message);

// Control panel (control_panel/)

/// Opens an item of the control panel, with or without a menu.
uint32_t RunControlPanelCommand(IHostServices& host, uint32_t id);

}  // namespace FileUtils
