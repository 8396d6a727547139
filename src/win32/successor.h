// successor.h - the file that takes another one's place: what it must know of that file, what it takes over from it,
// and the names under which it waits. Which of these steps follow each other, and what a failure undoes, is not decided
// here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "win32/files.h"

namespace Win32 {

/// What the file that takes another one's place needs to know of it.
struct FileState {
    std::wstring path;  // where the links on the way lead to, with the file's name as it stands on disk
    FileStamp stamp;
    uint32_t attributes = 0;        // FILE_ATTRIBUTE_...
    int64_t creationTime = 0;       // 100 ns since 1601
    uint32_t linkCount = 1;         // names that the file has
    std::vector<std::byte> rights;  // a descriptor with owner, group, access list and label; empty where there is none
};

/// Of a file that is open for reading, all but the stamp. Windows error code, 0 for success: without its rights a file
/// cannot be replaced by one with the same.
uint32_t GetState(void* openFile, const std::wstring& path, FileState& state);

/// Looks whether the file at this path is still the one that was looked at, and may be moved. Windows error code, 0
/// when both are so, ERROR_FILE_INVALID (1006) for another file, another content or none. As long as `held` lives
/// nobody else can open the file for writing; a program that has it open so is waited for, as all that hold files are.
uint32_t HoldUnchanged(const FileState& state, HeldFile& held);
/// Looks whether the file that has been moved to `path` is the one that was looked at, and as it was then. Size and
/// write time say so: moving changes the change time, and on some file systems the file's number. Windows error code, 0
/// when it is, ERROR_FILE_INVALID (1006) when it is not.
uint32_t CheckMoved(const std::wstring& path, const FileState& state);

/// A name beside `path` that nobody can guess, in the form of ExtendedPath: "~qv", 16 random hexadecimal digits, a
/// check of 16 more, ".tmp".
std::wstring TemporaryNameBeside(const std::wstring& path);
/// Deletes what killed runs have left in this folder: files with such a name, whose check no other program's name has
/// by chance, that nobody holds. A file is held from its creation until it has its final name. Best effort; a folder
/// that this process has looked at last, and in this second, is not looked at again.
void RemoveLeftovers(const std::wstring& folder);

/// The file, or the Windows error code for which there is none: of its creation, or of its rights or its encryption.
struct Successor {
    HeldFile file;
    uint32_t error = 0;
    uint32_t rightsError = 0;
};
/// Creates the file that is to take the place of `original`, empty, for nobody else to read or write, and with exactly
/// its rights: access list and integrity label to the last bit, owner and group where the system lets this user give
/// them, encrypted when the original is. When that fails, also because there is a file of that name, nothing is left.
Successor CreateSuccessor(const std::wstring& extendedPath, const FileState& original);

/// Opens it again after it was closed.
HeldFile OpenSuccessor(const std::wstring& extendedPath);

/// Gives the open file the creation time, the attributes (read-only, hidden, system, archive, not indexed) and the
/// compression of `original`. Best effort: what the system refuses stays as the new file has it.
void CarryOverAttributes(const FileState& original, void* openFile);

/// Is there something in the file that the system alone carries over whole: the keys of an encrypted file, how a
/// compressed one is laid out, streams?
bool NeedsSystemToReplace(const FileState& original, const std::vector<std::wstring>& streams);
/// Lets the system put `replacement` in the place of `original`, with all that it carries over, and move the original
/// to `backup`, which is overwritten. Windows error code, 0 for success; with ERROR_UNABLE_TO_MOVE_REPLACEMENT_2 (1177)
/// the original is at `backup` and its name is free, with all others nothing has moved.
uint32_t ReplaceBySystem(const FileState& original, const std::wstring& replacement, const std::wstring& backup);
/// Has the file at `path` the rights of `original`, or can it be given them?
bool GiveRights(const std::wstring& path, const FileState& original);

/// Lets a file that CreateSuccessor made vanish when it is closed, also where its access list forbids to delete it. To
/// be followed by RemoveFileAt, for what the system refuses.
void RemoveWhenClosed(void* openFile) noexcept;

/// A file's named streams, each with its colons and type (":Zone.Identifier:$DATA"); the content itself is not among
/// them. None on a volume that knows no streams.
std::vector<std::wstring> NamedStreamsOf(const std::wstring& path);

/// Copies those streams of `from` to `to`, down to the disk. Windows error code of the first that cannot be copied, 0
/// for success.
uint32_t CopyStreams(const std::wstring& from, const std::wstring& to, const std::vector<std::wstring>& streams);

/// Brings the file's bytes to the disk. Windows error code, 0 for success, also where the file system knows no such
/// order.
uint32_t FlushFile(void* openFile) noexcept;

}  // namespace Win32
