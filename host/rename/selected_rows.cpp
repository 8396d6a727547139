#include "host/rename/selected_rows.h"

#include "host/app/selection.h"
#include "win32/path.h"
#include "win32/text.h"
#include "win32/windows.h"

namespace QVHost {

void SelectedRows::Add(std::wstring_view path) {
    const std::wstring_view folder = Win32::FolderOf(path);
    m_locationOf.push_back(LocationNumberOf(Win32::WithoutSeparator(folder)));
    m_names.Add(path.substr(folder.size()));
}

uint32_t SelectedRows::LocationNumberOf(std::wstring_view path) {
    // Items of one folder mostly stand together.
    if (!m_locationOf.empty() && m_locations[m_locationOf.back()].path == path) return m_locationOf.back();
    const auto [number, isNew] = m_locationNumbers.emplace(path, static_cast<uint32_t>(m_locations.size()));
    if (!isNew) return number->second;
    const auto [folder, isNewFolder] = m_folderNumbers.emplace(Win32::ToUpperCase(path), m_listings.Count());
    m_locations.push_back({std::wstring(path), folder->second});
    if (isNewFolder) m_listings.Add(m_locations.back().path);
    return number->second;
}

bool SelectedRows::Fill(size_t row, BatchRename::BatchRenameItem& item) {
    item.location = m_locations[m_locationOf[row]].path;
    item.currentName = m_names[row];
    const ListedItem found = m_listings.Find(FolderOf(row), item.currentName);
    if (found.attributes == INVALID_FILE_ATTRIBUTES)
        RefuseMissingPath(Win32::JoinPath(item.location, item.currentName));
    item.isFolder = (found.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return !found.isRepeated;
}

BatchRename::FolderNames SelectedRows::TakeNames(size_t folder) {
    return m_listings.Take(folder);
}

}  // namespace QVHost
