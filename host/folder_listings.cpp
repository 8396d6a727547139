#include "host/folder_listings.h"

#include <algorithm>
#include <new>
#include <utility>

#include "win32/exclusive_lock.h"
#include "win32/folder.h"
#include "win32/path.h"

namespace QVHost {
namespace {

FolderListings::Listing ListOne(const std::wstring& folder) noexcept {
    FolderListings::Listing listing;
    try {
        listing.error = Win32::ListFolder(folder, [&](std::wstring_view name, uint32_t attributes) {
            listing.entries.push_back(
                {static_cast<uint32_t>(listing.names.size()), static_cast<uint32_t>(name.size()), attributes});
            listing.names += name;
        });
    } catch (const std::bad_alloc&) {
        listing.error = ERROR_NOT_ENOUGH_MEMORY;
    }
    return listing;
}

}  // namespace

FolderListings::FolderListings() {
    for (std::thread& thread : m_threads) thread = std::thread([this] { ListAll(); });
}

FolderListings::~FolderListings() {
    {
        const Win32::ExclusiveLock lock(m_lock);
        m_isEnding = true;
    }
    WakeAllConditionVariable(&m_isAdded);
    for (std::thread& thread : m_threads) thread.join();
}

void FolderListings::Add(std::wstring folder) {
    {
        const Win32::ExclusiveLock lock(m_lock);
        m_folders.emplace_back().path = std::move(folder);
    }
    WakeConditionVariable(&m_isAdded);
}

void FolderListings::ListAll() noexcept {
    while (Folder* const folder = Begin()) {
        folder->listing = ListOne(folder->path);
        {
            const Win32::ExclusiveLock lock(m_lock);
            folder->isListed = true;
        }
        WakeConditionVariable(&m_isFurther);
    }
}

/// The next folder to list; null when no more are wanted.
FolderListings::Folder* FolderListings::Begin() noexcept {
    Win32::ExclusiveLock lock(m_lock);
    while (m_begun == m_folders.size() && !m_isEnding) lock.WaitFor(m_isAdded);
    return m_isEnding ? nullptr : &m_folders[m_begun++];
}

FolderListings::Folder& FolderListings::WaitFor(size_t number) {
    Folder& folder = m_folders[number];
    if (folder.isListed) return folder;
    Win32::ExclusiveLock lock(m_lock);
    while (!folder.isListed) lock.WaitFor(m_isFurther);
    return folder;
}

FolderListings::Listing FolderListings::Take(size_t folder) {
    return std::move(WaitFor(folder).listing);
}

uint32_t FolderListings::AttributesOf(size_t number, const std::wstring& name) {
    Folder& folder = WaitFor(number);
    Listing& listing = folder.listing;
    const auto nameOf = [&](const Listing::Entry& entry) { return listing.NameOf(entry); };
    // Here and not by the threads that list, for which everybody waits.
    if (!folder.isSorted) std::ranges::sort(listing.entries, {}, nameOf);
    folder.isSorted = true;
    const auto entry = std::ranges::lower_bound(listing.entries, name, {}, nameOf);
    if (entry != listing.entries.end() && nameOf(*entry) == name) return entry->attributes;
    // Spelled in another case, given by its short name, or not there.
    return GetFileAttributesW(Win32::ExtendedPath(Win32::JoinPath(folder.path, name)).c_str());
}

}  // namespace QVHost
