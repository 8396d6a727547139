#include "host/rename/folder_listings.h"

#include <bit>
#include <functional>
#include <new>
#include <string_view>
#include <utility>

#include "win32/exclusive_lock.h"
#include "win32/folder.h"
#include "win32/path.h"

namespace QVHost {

FolderListings::~FolderListings() {
    {
        const Win32::ExclusiveLock lock(m_lock);
        m_isEnding = true;
    }
    WakeAllConditionVariable(&m_isAdded);
}

void FolderListings::Add(std::wstring folder) {
    {
        const Win32::ExclusiveLock lock(m_lock);
        m_folders.emplace_back().path = std::move(folder);
    }
    // One folder needs no second thread.
    if (m_folders.size() <= m_threads.size())
        m_threads[m_folders.size() - 1] = std::jthread([this] { ListAll(); });
    else
        WakeConditionVariable(&m_isAdded);
}

void FolderListings::ListAll() noexcept {
    while (Folder* const folder = Begin()) {
        List(*folder);
        {
            const Win32::ExclusiveLock lock(m_lock);
            folder->isListed = true;
        }
        WakeConditionVariable(&m_isFurther);
    }
}

void FolderListings::List(Folder& folder) noexcept {
    try {
        folder.error = Win32::ListFolder(folder.path, [&](std::wstring_view name, uint32_t attributes) {
            folder.names.Add(name);
            folder.attributes.push_back(attributes);
        });
    } catch (const std::bad_alloc&) {
        folder.error = ERROR_NOT_ENOUGH_MEMORY;
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

BatchRename::FolderNames FolderListings::Take(size_t number) {
    Folder& folder = WaitFor(number);
    folder.attributes = {};
    folder.isFound = {};
    folder.slots = {};
    return {folder.path, std::move(folder.names), folder.error};
}

ListedItem FolderListings::Find(size_t number, std::wstring& name) {
    Folder& folder = WaitFor(number);
    // Here and not by the threads that list, for which everybody waits.
    if (folder.slots.empty()) EnterNames(folder);
    ListedItem item;
    uint32_t entry = folder.slots[SlotOf(folder, name)];
    if (entry == kNoEntry) {
        // Spelled in another case, given by its short name, or not there.
        item.attributes = GetFileAttributesW(Win32::ExtendedPath(Win32::JoinPath(folder.path, name)).c_str());
        std::vector<std::wstring> spellings;
        const bool isSpelled = item.attributes != INVALID_FILE_ATTRIBUTES &&
                               Win32::ListFolder(folder.path, name, spellings) == ERROR_SUCCESS &&
                               spellings.size() == 1;
        if (!isSpelled) return item;
        name = std::move(spellings.front());
        entry = folder.slots[SlotOf(folder, name)];
        if (entry == kNoEntry) return item;  // made since the folder was listed
    }
    item.attributes = folder.attributes[entry];
    item.isRepeated = folder.isFound[entry];
    folder.isFound[entry] = true;
    return item;
}

void FolderListings::EnterNames(Folder& folder) {
    const size_t count = folder.attributes.size();
    folder.isFound.assign(count, false);
    folder.slots.assign(std::bit_ceil(2 * count + 1), kNoEntry);
    for (size_t entry = 0; entry < count; ++entry)
        folder.slots[SlotOf(folder, folder.names[entry])] = static_cast<uint32_t>(entry);
}

size_t FolderListings::SlotOf(const Folder& folder, std::wstring_view name) {
    const size_t mask = folder.slots.size() - 1;
    size_t at = std::hash<std::wstring_view>()(name) & mask;
    while (folder.slots[at] != kNoEntry && folder.names[folder.slots[at]] != name) at = (at + 1) & mask;
    return at;
}

}  // namespace QVHost
