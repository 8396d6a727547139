#include "host/folder_listings.h"

#include <algorithm>
#include <new>
#include <utility>

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

FolderListings::FolderListings(std::vector<std::wstring> folders)
    : m_folders(std::move(folders)),
      m_listings(m_folders.size()),
      m_isSorted(m_folders.size()),
      m_thread([this] { ListAll(); }) {}

FolderListings::~FolderListings() {
    m_isEnding = true;
    m_thread.join();
}

void FolderListings::ListAll() noexcept {
    for (size_t folder = 0; folder < m_folders.size() && !m_isEnding; ++folder) {
        m_listings[folder] = ListOne(m_folders[folder]);
        AcquireSRWLockExclusive(&m_lock);
        m_listed = folder + 1;
        ReleaseSRWLockExclusive(&m_lock);
        WakeConditionVariable(&m_isFurther);
    }
}

void FolderListings::WaitFor(size_t folder) {
    if (folder < m_listed) return;
    AcquireSRWLockExclusive(&m_lock);
    while (folder >= m_listed) SleepConditionVariableSRW(&m_isFurther, &m_lock, INFINITE, 0);
    ReleaseSRWLockExclusive(&m_lock);
}

FolderListings::Listing FolderListings::Take(size_t folder) {
    WaitFor(folder);
    return std::move(m_listings[folder]);
}

uint32_t FolderListings::AttributesOf(size_t folder, const std::wstring& name) {
    WaitFor(folder);
    Listing& listing = m_listings[folder];
    const auto nameOf = [&](const Listing::Entry& entry) { return listing.NameOf(entry); };
    // Here and not by the thread that lists, for which everybody waits.
    if (!m_isSorted[folder]) std::ranges::sort(listing.entries, {}, nameOf);
    m_isSorted[folder] = true;
    const auto entry = std::ranges::lower_bound(listing.entries, name, {}, nameOf);
    if (entry != listing.entries.end() && nameOf(*entry) == name) return entry->attributes;
    // Spelled in another case, given by its short name, or not there.
    return GetFileAttributesW(Win32::ExtendedPath(Win32::JoinPath(m_folders[folder], name)).c_str());
}

}  // namespace QVHost
