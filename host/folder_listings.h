// folder_listings.h - what folders hold, each listed once: for commands over many items, where asking for each item
// alone would be most of the work. Threads list ahead, so that the items of one folder are worked on while the next
// folders are read.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "win32/windows.h"

namespace QVHost {

/// For one thread; those that list are its own.
class FolderListings {
public:
    /// In few blocks of memory, so that the threads spend their time on listing.
    struct Listing {
        struct Entry {
            uint32_t begin = 0;  // of its name, in `names`
            uint32_t length = 0;
            uint32_t attributes = 0;
        };
        std::wstring names;
        std::vector<Entry> entries;
        uint32_t error = 0;  // Windows error code when the folder cannot be read

        std::wstring_view NameOf(const Entry& entry) const {
            return std::wstring_view(names).substr(entry.begin, entry.length);
        }
    };

    FolderListings();
    FolderListings(const FolderListings&) = delete;
    FolderListings& operator=(const FolderListings&) = delete;
    /// Waits for the folders that are being listed, and for no other.
    ~FolderListings();

    /// Lists the folder when its turn comes; folders are numbered in order of their adding.
    void Add(std::wstring folder);

    size_t Count() const { return m_folders.size(); }
    const std::wstring& PathOf(size_t folder) const { return m_folders[folder].path; }

    /// The folder's listing for the caller to keep, as soon as it is there. Nobody may ask for it any more.
    Listing Take(size_t folder);

    /// The attributes of an item as the system gives them; INVALID_FILE_ATTRIBUTES when there is none.
    uint32_t AttributesOf(size_t folder, const std::wstring& name);

private:
    struct Folder {
        std::wstring path;
        Listing listing;
        bool isSorted = false;  // by name
        std::atomic<bool> isListed = false;
    };

    void ListAll() noexcept;
    Folder* Begin() noexcept;
    Folder& WaitFor(size_t folder);

    // The system's own: the standard ones are built on objects for which the test platform asks its server.
    SRWLOCK m_lock = SRWLOCK_INIT;
    CONDITION_VARIABLE m_isAdded = CONDITION_VARIABLE_INIT;  // or there will be no more
    CONDITION_VARIABLE m_isFurther = CONDITION_VARIABLE_INIT;
    std::deque<Folder> m_folders;  // which stay where they are when others are added
    size_t m_begun = 0;            // so many folders from the first on
    bool m_isEnding = false;
    // Two, since each waits for a disk or a server most of the time. Last: they use all of these.
    std::array<std::thread, 2> m_threads;
};

}  // namespace QVHost
