// files.h - small operations on whole files that every module needs the same way: existence, moving, deleting and
// identity. Paths may be of any length; open files are given by their system handle.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

namespace Win32 {

struct CloseSystemFile {
    void operator()(void* file) const noexcept;
};
/// An open file of the system, closed at the end; null when there is none.
using HeldFile = std::unique_ptr<void, CloseSystemFile>;

/// What other programs may do with a file that is open here. The values are the system's share modes. A file that
/// another program has open for more than is shared cannot be opened (code 32).
enum class FileSharing : uint32_t {
    Read = 1,
    ReadAndWrite = 3,
};

/// To be given what CreateFileW gives.
HeldFile HeldFileOf(void* systemHandle) noexcept;

/// True when the path names a file or folder whose attributes can be read.
bool Exists(const std::wstring& path);

/// Windows error code, 0 for success. A file that another program (a scanner, an indexer) holds for a moment, or that
/// is not quite deleted yet, is tried again for about a quarter of a second before error 32, 33 or 5 is given back. An
/// error 5 for want of rights comes back at once.
uint32_t MoveFileTo(const std::wstring& from, const std::wstring& to);    // fails when `to` exists
uint32_t MoveFileOver(const std::wstring& from, const std::wstring& to);  // replaces a file at `to`
/// The same two, and the new name is on disk as well when they are back.
uint32_t MoveFileThrough(const std::wstring& from, const std::wstring& to, bool mayReplace);
uint32_t RemoveFile(const std::wstring& path);                       // as it stands
uint32_t RemoveFileWhateverItsAttributes(const std::wstring& path);  // read-only ones too
/// The same for a path in the form of ExtendedPath. Allocates nothing: what a failure leaves is removed even when the
/// failure is that memory has run out.
uint32_t RemoveFileAt(const wchar_t* extendedPath) noexcept;

/// To be asked after a call failed with `error`: does another program hold one of these files (in the form of
/// ExtendedPath), so that the call is worth another attempt? Then waits a moment first. `attempt` counts from 1 and
/// ends the patience, see above. Error 1175 of a replacement counts as 5 does.
bool WaitForHolder(uint32_t error, int attempt, std::initializer_list<const wchar_t*> paths) noexcept;

/// True when both paths lead to the same file on disk (another spelling, a hard link, a link to it). False when either
/// cannot be opened.
bool IsSameFile(const std::wstring& left, const std::wstring& right);

/// True for a symbolic link and whatever else the system follows from that name (a reparse point), also one that leads
/// nowhere, and for a file that lies in another folder than the path says. False for a name that is free. Where the
/// system shows a link that leads nowhere as a free name, only creating a file that must be new finds out.
bool IsLink(const std::wstring& path);

/// What tells a file from the one that stood in its place a while ago.
struct FileStamp {
    uint64_t index = 0;      // the number of the file on its volume; 0 where it is not given out
    uint64_t size = 0;       // bytes
    int64_t writeTime = 0;   // 100 ns since 1601, as all times here
    int64_t changeTime = 0;  // of the content or of anything that is known of the file; 0 where it is not given out
    bool operator==(const FileStamp&) const = default;
};
/// Windows error code, 0 for success.
uint32_t GetStamp(void* openFile, FileStamp& stamp);

}  // namespace Win32
