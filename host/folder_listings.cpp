#include "host/folder_listings.h"

#include <algorithm>
#include <utility>

#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {

const FolderListings::Listing& FolderListings::Of(const std::wstring& folder) {
    if (m_last != m_listings.end() && m_last->first == folder) return m_last->second;
    const auto [place, isNew] = m_listings.try_emplace(folder);
    m_last = place;
    Listing& listing = place->second;
    if (isNew) {
        listing.error = Win32::ListFolder(folder, L"*", listing.entries);
        std::ranges::sort(listing.entries, {}, &Win32::FolderEntry::name);
    }
    return listing;
}

FolderListings::Listing FolderListings::Take(const std::wstring& folder) {
    Of(folder);
    m_last = m_listings.end();
    return std::move(m_listings.extract(folder).mapped());
}

uint32_t FolderListings::AttributesOf(const std::wstring& folder, const std::wstring& name) {
    const auto& entries = Of(folder).entries;
    const auto entry = std::ranges::lower_bound(entries, name, {}, &Win32::FolderEntry::name);
    if (entry != entries.end() && entry->name == name) return entry->attributes;
    // Spelled in another case, given by its short name, or not there.
    return GetFileAttributesW(Win32::ExtendedPath(Win32::JoinPath(folder, name)).c_str());
}

}  // namespace QVHost
