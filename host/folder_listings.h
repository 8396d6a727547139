// folder_listings.h - what folders hold, each listed once: for commands over many items, where asking for each item
// alone would be most of the work.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "win32/folder.h"

namespace QVHost {

class FolderListings {
public:
    struct Listing {
        std::vector<Win32::FolderEntry> entries;  // sorted by name
        uint32_t error = 0;                       // Windows error code when the folder cannot be read
    };

    FolderListings() = default;
    FolderListings(const FolderListings&) = delete;
    FolderListings& operator=(const FolderListings&) = delete;

    /// The folder as it was when it was first asked for, for the caller to keep: whoever asks again has it read again.
    Listing Take(const std::wstring& folder);

    /// The attributes of the item as the system gives them; INVALID_FILE_ATTRIBUTES when there is none.
    uint32_t AttributesOf(const std::wstring& folder, const std::wstring& name);

private:
    const Listing& Of(const std::wstring& folder);

    std::map<std::wstring, Listing> m_listings;
    // Items of one folder mostly stand together.
    std::map<std::wstring, Listing>::iterator m_last = m_listings.end();
};

}  // namespace QVHost
