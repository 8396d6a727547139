#include "host/selected_rows.h"

#include <string_view>
#include <unordered_map>
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

SelectedRows::SelectedRows(std::vector<std::wstring> paths) : m_paths(std::move(paths)), m_listings(NumberFolders()) {}

std::vector<std::wstring> SelectedRows::NumberFolders() {
    std::vector<std::wstring> folders;
    std::unordered_map<std::wstring, uint32_t> numbers;
    std::wstring_view last;
    m_folderOf.reserve(m_paths.size());
    for (const std::wstring& path : m_paths) {
        const std::wstring_view location = LocationOf(Win32::FolderOf(path));
        // Items of one folder mostly stand together.
        if (!m_folderOf.empty() && location == last) {
            m_folderOf.push_back(m_folderOf.back());
            continue;
        }
        last = location;
        const auto [number, isNew] =
            numbers.emplace(BatchRename::FoldedName(location), static_cast<uint32_t>(folders.size()));
        if (isNew) folders.emplace_back(location);
        m_folderOf.push_back(number->second);
    }
    return folders;
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
    BatchRename::FolderNames names = {m_listings.Folders()[folder], {}, listing.error};
    names.names.reserve(listing.entries.size());
    for (const auto& entry : listing.entries) names.names.emplace_back(listing.NameOf(entry));
    return names;
}

}  // namespace QVHost
