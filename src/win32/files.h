// files.h - small operations on whole files that every room needs the same way: existence, moving, deleting, identity,
// and handing one file's attributes and access list to another. Paths may be of any length.
#pragma once

#include <cstdint>
#include <string>

namespace Win32 {

/// True when the path names a file or folder whose attributes can be read.
bool Exists(const std::wstring& path);

/// Windows error code, 0 for success. A file that somebody (a scanner, an indexer) holds for a moment is tried again
/// for about a quarter of a second before error 32 or 33 is given back.
uint32_t MoveFileTo(const std::wstring& from, const std::wstring& to);    // fails when `to` exists
uint32_t MoveFileOver(const std::wstring& from, const std::wstring& to);  // replaces a file at `to`
uint32_t RemoveFile(const std::wstring& path);                            // as it stands
uint32_t RemoveFileWhateverItsAttributes(const std::wstring& path);       // read-only ones too

/// True when both paths lead to the same file on disk (another spelling, a hard link, a link to it). False when either
/// cannot be opened.
bool IsSameFile(const std::wstring& left, const std::wstring& right);

/// Gives `to` the attributes (read-only, hidden, system, archive, not indexed) and the access list of `from`. Best
/// effort: what the system refuses stays as the new file has it, since its content is already safe.
void CarryOverAttributesAndAccess(const std::wstring& from, const std::wstring& to);

}  // namespace Win32
