#include "host/rename/selected_rows.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <new>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "batchrename/model/row_order.h"
#include "batchrename/run/rename_run.h"
#include "host/app/host_error.h"
#include "host/app/selection.h"
#include "win32/file_name.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/system_lock.h"
#include "win32/text.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

using namespace BatchRename;

/// What rows may be sorted by beside their names.
struct RowFacts {
    uint64_t size = 0;     // bytes; 0 for a folder
    uint64_t written = 0;  // 100 nanoseconds since 1601
};

RowFacts FactsOf(const BatchRenameItem& row) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    GetFileAttributesExW(Win32::ExtendedPath(Win32::JoinPath(row.location, row.currentName)).c_str(),
                         GetFileExInfoStandard, &data);
    const auto joined = [](DWORD high, DWORD low) { return uint64_t{high} << 32 | low; };
    return {joined(data.nFileSizeHigh, data.nFileSizeLow),
            joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime)};
}

/// Small and old ones first; equal ones stay as they were given.
RenameItems Sorted(const RenameItems& rows, const std::wstring& order) {
    if (order == L"none") return rows;
    if (order == L"natural") return SortRows(rows, {RowKey::CurrentName, false}, [] { return false; });
    uint64_t RowFacts::*const key = order == L"size" ? &RowFacts::size : &RowFacts::written;
    if (order != L"size" && order != L"date")
        throw UsageError(L"--sort takes one of natural, date, size, none, not \"" + order + L"\"");
    std::vector<std::pair<uint64_t, size_t>> keys;
    for (const auto& row : rows) keys.emplace_back(FactsOf(*row).*key, keys.size());
    std::ranges::sort(keys);
    RenameItems sorted;
    for (const auto& [fact, row] : keys) sorted.push_back(rows[row]);
    return sorted;
}

void TakeNames(const RenameItems& rows, const std::wstring& listFile, std::istream& in) {
    size_t count = 0;
    ForEachLineOfList(listFile, L"list of new names", in, [&](std::wstring_view line, size_t number) {
        count = number;
        if (count <= rows.size()) rows[count - 1]->newName = line;
    });
    if (count != rows.size())
        throw UsageError(L"the names in " + NameOfList(listFile) + L" (" + std::to_wstring(count) +
                         L") are not as many as the files and folders (" + std::to_wstring(rows.size()) + L")");
}

/// "photo.jpg" with 2: "photo (2).jpg".
std::wstring Numbered(const BatchRenameItem& row, size_t number) {
    const Win32::NameParts parts = Win32::SplitAtLastDot(row.newName);
    const bool isWhole = row.isFolder || parts.stem.empty();
    const std::wstring name =
        (isWhole ? row.newName : std::wstring(parts.stem)) + L" (" + std::to_wstring(number) + L")";
    return isWhole || !parts.hasDot ? name : name + L'.' + std::wstring(parts.extension);
}

/// Gives each row whose new name is taken, or wanted by a row before it, that name with the first free number. What
/// the rows leave is free.
void NumberClashes(const RenameItems& rows) {
    const auto moves = [](const BatchRenameItem& row) {
        return row.fault == RuleFault::None && row.newName != row.currentName &&
               Win32::CheckFileName(row.newName).fault == Win32::NameFault::None;
    };
    const auto keyOf = [](const std::wstring& folder, std::wstring_view name) {
        return Win32::ToUpperCase(Win32::JoinPath(folder, name));
    };
    std::unordered_set<std::wstring> taken;
    for (const std::wstring& folder : FoldersOf(rows)) {
        const FolderNames listing = ListFolderOnDisk(folder);
        for (size_t name = 0; name < listing.names.Count(); ++name) taken.insert(keyOf(folder, listing.names[name]));
    }
    for (const auto& row : rows)
        if (moves(*row)) taken.erase(keyOf(row->location, row->currentName));
    std::unordered_map<std::wstring, size_t> numbers;  // the last one given to a name
    for (const auto& row : rows) {
        if (!moves(*row)) continue;
        const std::wstring wanted = keyOf(row->location, row->newName);
        if (taken.insert(wanted).second) continue;
        std::wstring name;
        size_t& number = numbers.try_emplace(wanted, 1).first->second;
        do name = Numbered(*row, ++number);
        while (!taken.insert(keyOf(row->location, name)).second);
        row->newName = std::move(name);
    }
}

}  // namespace

RenameItems MakeRows(SelectedRows& selection, RenameRule& rule, const RenameOptions& options, std::istream& in) {
    RenameItems rows;
    rows.reserve(selection.Count());
    for (size_t row = 0; row < selection.Count(); ++row) {
        auto item = std::make_shared<BatchRenameItem>();
        if (selection.Fill(row, *item)) rows.push_back(std::move(item));
    }
    rows = Sorted(rows, options.sort.value_or(L"none"));
    if (options.namesFrom)
        TakeNames(rows, *options.namesFrom, in);
    else
        for (const auto& row : rows) rule.Compute(*row);
    const std::wstring clash = options.onClash.value_or(L"fail");
    if (clash != L"fail" && clash != L"number")
        throw UsageError(L"--on-clash takes fail or number, not \"" + clash + L"\"");
    if (clash == L"number") NumberClashes(rows);
    return rows;
}

FolderListings::~FolderListings() {
    {
        const std::lock_guard lock(m_lock);
        m_isEnding = true;
    }
    m_isAdded.WakeAll();
}

void FolderListings::Add(std::wstring folder) {
    {
        const std::lock_guard lock(m_lock);
        m_folders.emplace_back().path = std::move(folder);
    }
    // One folder needs no second thread.
    if (m_folders.size() <= m_threads.size())
        m_threads[m_folders.size() - 1] = std::jthread([this] { ListAll(); });
    else
        m_isAdded.WakeOne();
}

void FolderListings::ListAll() noexcept {
    while (Folder* const folder = Begin()) {
        List(*folder);
        {
            const std::lock_guard lock(m_lock);
            folder->isListed = true;
        }
        m_isFurther.WakeOne();
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
    std::unique_lock lock(m_lock);
    m_isAdded.WaitUntil(lock, [&] { return m_begun < m_folders.size() || m_isEnding; });
    return m_isEnding ? nullptr : &m_folders[m_begun++];
}

FolderListings::Folder& FolderListings::WaitFor(size_t number) {
    Folder& folder = m_folders[number];
    if (folder.isListed) return folder;
    std::unique_lock lock(m_lock);
    m_isFurther.WaitUntil(lock, [&] { return folder.isListed.load(); });
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
