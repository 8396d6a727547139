#include "host/selected_rows.h"

#include <string_view>
#include <utility>

#include "host/selection.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

/// A folder as rows name it: without the separator, but for a drive's.
std::wstring_view LocationOf(std::wstring_view folder) {
    return folder.size() > 3 ? folder.substr(0, folder.size() - 1) : folder;
}

}  // namespace

void SelectedRows::Add(std::wstring path) {
    const std::wstring_view folder = LocationOf(Win32::FolderOf(path));
    // Items of one folder mostly stand together.
    m_folderOf.push_back(!m_paths.empty() && folder == m_lastFolder ? m_folderOf.back() : NumberOf(folder));
    m_paths.push_back(std::move(path));
}

uint32_t SelectedRows::NumberOf(std::wstring_view folder) {
    m_lastFolder = folder;
    const auto [number, isNew] =
        m_numbers.emplace(BatchRename::FoldedName(folder), static_cast<uint32_t>(m_listings.Count()));
    if (isNew) m_listings.Add(m_lastFolder);
    return number->second;
}

std::shared_ptr<BatchRename::BatchRenameItem> SelectedRows::Make(size_t row) {
    // The row holds all that is in the path: many of them are not kept twice.
    const std::wstring path = std::exchange(m_paths[row], {});
    auto item = std::make_shared<BatchRename::BatchRenameItem>();
    const std::wstring_view folder = Win32::FolderOf(path);
    item->location = LocationOf(folder);
    item->currentName = path.substr(folder.size());
    const uint32_t attributes = m_listings.AttributesOf(m_folderOf[row], item->currentName);
    if (attributes == INVALID_FILE_ATTRIBUTES) RefuseMissingPath(path);
    item->isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return item;
}

BatchRename::FolderNames SelectedRows::TakeNames(size_t folder) {
    const FolderListings::Listing listing = m_listings.Take(folder);
    BatchRename::FolderNames names = {m_listings.PathOf(folder), {}, listing.error};
    names.names.reserve(listing.entries.size());
    for (const auto& entry : listing.entries) names.names.emplace_back(listing.NameOf(entry));
    return names;
}

}  // namespace QVHost
