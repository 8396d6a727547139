// folder.h - the names of what a folder holds.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "win32/item_identity.h"

namespace Win32 {

struct FolderEntry {
    std::wstring name;
    uint32_t attributes = 0;  // FILE_ATTRIBUTE_...
    uint64_t size = 0;        // bytes; 0 for a folder
    uint64_t written = 0;     // 100 nanoseconds since 1601, UTC
};

/// Puts the folder's files and folders that match `pattern` ("*": all) into `entries`, without "." and "..". Windows
/// error code, 0 for success; a folder where nothing matches is a success.
uint32_t ListFolder(const std::wstring& folder, const std::wstring& pattern, std::vector<FolderEntry>& entries);

/// The same, the names alone.
uint32_t ListFolder(const std::wstring& folder, const std::wstring& pattern, std::vector<std::wstring>& names);

/// All that the folder holds, told one by one; a name is there for the time of the call.
uint32_t ListFolder(const std::wstring& folder,
                    const std::function<void(std::wstring_view name, uint32_t attributes)>& take);

/// All that the folder holds, with identities that last: so on NTFS. On other file systems, and where an item's number
/// is not to be had, the identity is empty.
uint32_t ListFolder(const std::wstring& folder,
                    const std::function<void(std::wstring_view name, const ItemIdentity& item)>& take);

/// The path of the item, wherever it is on the volume of `folder`, which need not be there itself. "" when it is gone
/// or in the recycle bin, and for a file of several hard links, any of which may be meant.
std::wstring FindItem(std::wstring folder, const ItemIdentity& item);

/// Makes the folder, with or without a separator at its end, and those above it that are missing. 0 when it is there.
uint32_t MakeFolders(std::wstring_view folder);

}  // namespace Win32
