// files.h - small operations on whole files that every room needs the same way: existence, moving, deleting, identity,
// and handing one file's attributes, access list and named streams to another. Paths may be of any length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Win32 {

/// True when the path names a file or folder whose attributes can be read.
bool Exists(const std::wstring& path);

/// Windows error code, 0 for success. A file that somebody (a scanner, an indexer) holds for a moment is tried again
/// for about a quarter of a second before error 32 or 33 is given back.
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

/// A file's attributes and access list.
struct AttributesAndAccess {
    uint32_t attributes = 0xFFFFFFFF;   // FILE_ATTRIBUTE_...; INVALID_FILE_ATTRIBUTES when they cannot be read
    std::vector<std::byte> accessList;  // within its descriptor; empty when it cannot be read
};

AttributesAndAccess AttributesAndAccessOf(const std::wstring& path);
/// Of an open file by its system handle, which is less work for the system than finding it again.
AttributesAndAccess AttributesAndAccessOf(void* openFile);

/// Gives `to`, which has those of `present`, the attributes (read-only, hidden, system, archive, not indexed) and the
/// access list of `from`. Best effort: what the system refuses stays as the new file has it, since its content is
/// already safe.
void CarryOverAttributesAndAccess(const std::wstring& from, const std::wstring& to, const AttributesAndAccess& present);
/// The same, whatever `to` has.
void CarryOverAttributesAndAccess(const std::wstring& from, const std::wstring& to);

/// A file's named streams, each with its colons and type (":Zone.Identifier:$DATA"); the content itself is none of
/// them. None on a volume that knows no streams.
std::vector<std::wstring> NamedStreamsOf(const std::wstring& path);

/// Copies those streams of `from` to `to`. Windows error code of the first that cannot be copied, 0 for success.
uint32_t CopyStreams(const std::wstring& from, const std::wstring& to, const std::vector<std::wstring>& streams);

}  // namespace Win32
