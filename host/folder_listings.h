// folder_listings.h - what folders hold, each listed once: for commands over many items, where asking for each item
// alone would be most of the work. A thread lists ahead, so that the items of one folder are worked on while the next
// folder is read.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "win32/windows.h"

namespace QVHost {

class FolderListings {
public:
    /// In few blocks of memory, so that the thread spends its time on listing.
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

    /// Begins to list the folders, in this order. They are asked for by their places in it.
    explicit FolderListings(std::vector<std::wstring> folders);
    FolderListings(const FolderListings&) = delete;
    FolderListings& operator=(const FolderListings&) = delete;
    /// Waits for the folder that is being listed, and for no other.
    ~FolderListings();

    const std::vector<std::wstring>& Folders() const { return m_folders; }

    /// The folder for the caller to keep, as soon as it is listed. Nobody may ask for it any more.
    Listing Take(size_t folder);

    /// The attributes of an item as the system gives them; INVALID_FILE_ATTRIBUTES when there is none.
    uint32_t AttributesOf(size_t folder, const std::wstring& name);

private:
    void ListAll() noexcept;
    void WaitFor(size_t folder);

    std::vector<std::wstring> m_folders;
    std::vector<Listing> m_listings;
    std::vector<bool> m_isSorted;      // by name
    std::atomic<size_t> m_listed = 0;  // so many folders from the first on
    std::atomic<bool> m_isEnding = false;
    // The system's own: the standard ones are built on objects for which the test platform asks its server.
    SRWLOCK m_lock = SRWLOCK_INIT;
    CONDITION_VARIABLE m_isFurther = CONDITION_VARIABLE_INIT;
    std::thread m_thread;  // last: it uses all of these
};

}  // namespace QVHost
