// files.h - small operations on whole files that every module needs the same way: existence, moving, deleting,
// identity, and making the file that is to take another one's place with its name, attributes, access list and named
// streams. Paths may be of any length; open files are given by their system handle.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Win32 {

/// True when the path names a file or folder whose attributes can be read.
bool Exists(const std::wstring& path);

/// Windows error code, 0 for success. A file that another program (a scanner, an indexer) holds for a moment, or that
/// is not quite deleted yet, is tried again for about a quarter of a second before error 32, 33 or 5 is given back. An
/// error 5 for want of rights comes back at once.
uint32_t MoveFileTo(const std::wstring& from, const std::wstring& to);    // fails when `to` exists
uint32_t MoveFileOver(const std::wstring& from, const std::wstring& to);  // replaces a file at `to`
uint32_t RemoveFile(const std::wstring& path);                            // as it stands
uint32_t RemoveFileWhateverItsAttributes(const std::wstring& path);       // read-only ones too
/// The same for a path in the form of ExtendedPath. Allocates nothing: what a failure leaves is removed even when the
/// failure is that memory has run out.
uint32_t RemoveFileAt(const wchar_t* extendedPath) noexcept;

/// True when both paths lead to the same file on disk (another spelling, a hard link, a link to it). False when either
/// cannot be opened.
bool IsSameFile(const std::wstring& left, const std::wstring& right);

/// True for a symbolic link and whatever else the system follows from that name (a reparse point), also one that leads
/// nowhere, and for a file that lies in another folder than the path says. False for a name that is free. Where the
/// system shows a link that leads nowhere as a free name, only creating a file that must be new finds out.
bool IsLink(const std::wstring& path);

/// What tells a file from the one that stood in its place a while ago.
struct FileStamp {
    uint64_t index = 0;  // the number of the file on its volume; 0 where it is not given out
    uint64_t size = 0;   // bytes
    int64_t writeTime = 0;
    bool operator==(const FileStamp&) const = default;
};
/// Windows error code, 0 for success.
uint32_t GetStamp(void* openFile, FileStamp& stamp);

/// What the file that takes another one's place needs to know of it.
struct FileState {
    std::wstring path;  // as it was given, but with the file's name as it stands on disk
    FileStamp stamp;
    uint32_t attributes = 0;            // FILE_ATTRIBUTE_...
    std::vector<std::byte> accessList;  // within its descriptor; empty on a volume that knows none
};

/// Of a file that is open for reading, which is less work for the system than finding it again. Windows error code, 0
/// for success: without its access list a file cannot be replaced by one with the same.
uint32_t GetState(void* openFile, const std::wstring& path, FileState& state);
uint32_t GetState(const std::wstring& path, FileState& state);

/// Is the file at this path still the one that was looked at, and may it be moved? Windows error code, 0 when both are
/// so, ERROR_FILE_INVALID (1006) for another file, another content or none.
uint32_t CheckUnchanged(const FileState& state);

/// A name beside `path` that nobody can guess, in the form of ExtendedPath: "~qv" and 16 hexadecimal digits.
std::wstring TemporaryNameBeside(const std::wstring& path);

/// Creates the file that is to take the place of `original`, with exactly its access list from the first moment on, and
/// with nobody else writing to it. INVALID_HANDLE_VALUE when that fails (see GetLastError), also when there is a file
/// of that name; nothing is left then. The caller owns the handle.
void* CreateSuccessor(const std::wstring& extendedPath, const FileState& original);

/// Gives an open file the attributes (read-only, hidden, system, archive, not indexed) of `original`. Best effort: what
/// the system refuses stays as the new file has it.
void CarryOverAttributes(const FileState& original, void* openFile);

/// Lets a file that CreateSuccessor made vanish when it is closed, also where its access list forbids to delete it. To
/// be followed by RemoveFileAt, for what the system refuses.
void RemoveWhenClosed(void* openFile) noexcept;

/// A file's named streams, each with its colons and type (":Zone.Identifier:$DATA"); the content itself is not among
/// them. None on a volume that knows no streams.
std::vector<std::wstring> NamedStreamsOf(const std::wstring& path);

/// Copies those streams of `from` to `to`. Windows error code of the first that cannot be copied, 0 for success.
uint32_t CopyStreams(const std::wstring& from, const std::wstring& to, const std::vector<std::wstring>& streams);

}  // namespace Win32
