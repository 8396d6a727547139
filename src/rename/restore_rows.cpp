#include "rename/restore_rows.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <unordered_set>

#include "win32/path.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr uint32_t kTemporaryAttempts = 4;

/// The names of the folders that were asked for: one listing each.
class Listings {
public:
    explicit Listings(const ListFolder& list) : m_list(list) {}

    /// In exactly this spelling, or, when `anyCase`, in any.
    bool Has(const std::wstring& folder, const std::wstring& name, bool anyCase = true) {
        const Names& names = NamesIn(folder);
        return anyCase ? names.folded.contains(Win32::ToUpperCase(name)) : names.exact.contains(name);
    }

    /// False when nothing has that path, or a file.
    bool IsFolder(const std::wstring& folder) {
        // ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, and for files ERROR_DIRECTORY or ERROR_INVALID_NAME
        constexpr uint32_t kNoFolder[] = {2, 3, 267, 123};
        return std::ranges::find(kNoFolder, NamesIn(folder).error) == std::end(kNoFolder);
    }

    /// The names of an item in a folder: one, or more for a file with hard links.
    std::vector<std::wstring> NamesOf(const std::wstring& folder, const ItemIdentity& item) {
        std::vector<std::wstring> found;
        const Names& names = NamesIn(folder);
        const auto [begin, end] = names.byIndex.equal_range(item.index);
        for (auto at = begin; at != end; ++at)
            if (IsSameItem(at->second.item, item)) found.push_back(at->second.name);
        return found;
    }

    /// False in a folder whose items have no lasting numbers, and in one that cannot be read.
    bool KnowsItems(const std::wstring& folder) { return !NamesIn(folder).byIndex.empty(); }

private:
    struct NamedItem {
        ItemIdentity item;
        std::wstring name;
    };
    struct Names {
        std::unordered_set<std::wstring> exact;
        std::unordered_set<std::wstring> folded;
        uint32_t error = 0;
        std::unordered_multimap<uint64_t, NamedItem> byIndex;
    };

    const Names& NamesIn(const std::wstring& folder) {
        const auto [entry, isNew] = m_folders.try_emplace(Win32::ToUpperCase(folder));
        if (!isNew) return entry->second;
        const FolderNames listing = m_list(folder);
        const Win32::NameList& names = listing.names;
        entry->second.error = listing.error;
        for (size_t name = 0; name < names.Count(); ++name) {
            entry->second.folded.insert(Win32::ToUpperCase(names[name]));
            entry->second.exact.emplace(names[name]);
            if (name < listing.items.size())
                entry->second.byIndex.emplace(listing.items[name].index,
                                              NamedItem{listing.items[name], std::wstring(names[name])});
        }
        return entry->second;
    }

    const ListFolder& m_list;
    std::unordered_map<std::wstring, Names> m_folders;
};

std::wstring KeyOf(std::wstring_view folder, std::wstring_view name) {
    return Win32::ToUpperCase(Win32::JoinPath(Win32::WithoutSeparator(folder), name));
}

class Restorer {
public:
    Restorer(const BatchRenameUndo& session, const ListFolder& list, const FindItem& find)
        : m_session(session), m_listings(list), m_find(find), m_places(session.entries.size()) {
        for (const UndoEntry& entry : session.entries)
            if (entry.identity) ++m_entriesOfIndex[entry.identity.index];
    }

    RestoreRows Make() {
        // From the top down: where an item is now depends on what has become of the folders above it.
        std::vector<size_t> order(m_places.size());
        std::iota(order.begin(), order.end(), size_t(0));
        const auto depthOf = [&](size_t entry) { return DepthOf(m_session.entries[entry].location); };
        std::ranges::stable_sort(order, {}, depthOf);
        for (size_t begin = 0; begin < order.size();) {
            size_t end = begin;
            while (end < order.size() && depthOf(order[end]) == depthOf(order[begin])) ++end;
            Locate(
                {order.begin() + static_cast<std::ptrdiff_t>(begin), order.begin() + static_cast<std::ptrdiff_t>(end)});
            begin = end;
        }
        RestoreRows result;
        for (size_t entry = m_places.size(); entry-- > 0;) {
            auto row = std::make_shared<BatchRenameItem>();
            row->location = m_places[entry].folder;
            row->currentName = m_places[entry].name;
            row->newName = m_session.entries[entry].oldName;
            row->state = RowState::Restore;
            row->identity = m_session.entries[entry].identity;
            result.rows.push_back(std::move(row));
            result.entries.push_back(entry);
        }
        return result;
    }

private:
    /// Where an entry's item is now.
    struct WhereNow {
        std::wstring folder;
        std::wstring name;
        bool isCertain = false;  // by the item's identity; else by what the names tell
    };

    /// Finds the items of entries whose folders have the same depth.
    void Locate(const std::vector<size_t>& entries) {
        std::unordered_map<std::wstring, size_t> byName;  // the entry whose item should be found under this name
        std::vector<size_t> atOldName;
        for (const size_t entry : entries) {
            const UndoEntry& recorded = m_session.entries[entry];
            WhereNow& place = m_places[entry];
            place.folder = FolderNow(FolderOf(recorded));
            place.name = NameByRecord(recorded, place.folder);
            if (recorded.identity.IsUnique()) FindByIdentity(recorded, place);
            if (place.isCertain) continue;
            if (place.name == recorded.oldName)
                atOldName.push_back(entry);
            else
                byName.emplace(KeyOf(place.folder, place.name), entry);
        }
        for (const size_t entry : entries) {
            if (m_places[entry].isCertain) continue;
            const bool isSettled = m_places[entry].name != m_session.entries[entry].oldName && IsAtOldName(entry);
            if (isSettled) atOldName.push_back(entry);
        }
        // An item that is back under its old name cannot also be the one that another entry looks for there.
        while (!atOldName.empty()) {
            const size_t entry = atOldName.back();
            atOldName.pop_back();
            m_places[entry].name = m_session.entries[entry].oldName;
            const auto other = byName.find(KeyOf(m_places[entry].folder, m_places[entry].name));
            if (other == byName.end() || other->second == entry) continue;
            const size_t claimant = other->second;
            byName.erase(other);
            if (m_places[claimant].name != m_session.entries[claimant].oldName) atOldName.push_back(claimant);
        }
        for (const size_t entry : entries) {
            const WhereNow& place = m_places[entry];
            const UndoEntry& recorded = m_session.entries[entry];
            const std::wstring folder = FolderOf(recorded);
            if (place.name != recorded.oldName || !Win32::EqualIgnoringCase(place.folder, folder))
                m_movedFolders.emplace(KeyOf(folder, recorded.oldName), entry);
        }
    }

    /// Puts the item's present place into `place`, which holds the name that it should have. An item that is nowhere
    /// keeps that name; what else may have it by now, its row's identity tells.
    void FindByIdentity(const UndoEntry& entry, WhereNow& place) {
        const bool isOwnItem =
            m_entriesOfIndex[entry.identity.index] == 1;  // not one more link of another entry's file
        const std::vector<std::wstring> names = m_listings.NamesOf(place.folder, entry.identity);
        if (!names.empty()) {
            const auto isThere = [&](const std::wstring& name) {
                return std::ranges::find(names, name) != names.end();
            };
            if (!isThere(place.name) && (isOwnItem || isThere(entry.oldName)))
                place.name = isThere(entry.oldName) ? entry.oldName : names.front();
            place.isCertain = true;
            return;
        }
        const std::wstring path = m_find && isOwnItem ? m_find(entry.identity, place.folder) : std::wstring();
        if (!path.empty()) {
            place.folder = Win32::WithoutSeparator(Win32::FolderOf(path));
            place.name = Win32::FileNameOf(path);
        }
        place.isCertain = !path.empty() || m_listings.KnowsItems(place.folder);
    }

    /// The new name is gone and the old one there. In a session that was restored before, the old name being there is
    /// enough: a second restore must not make two items that changed places change them again. An unfinished one knows
    /// better, item by item.
    bool IsAtOldName(size_t entry) {
        const UndoEntry& recorded = m_session.entries[entry];
        const WhereNow& place = m_places[entry];
        if (Win32::EqualIgnoringCase(place.name, recorded.oldName))
            return m_listings.Has(place.folder, recorded.oldName, false);
        const bool isHomeByRecord = m_session.haveRestored && !m_session.isUnfinished;
        const bool isGone = isHomeByRecord || !m_listings.Has(place.folder, place.name);
        return isGone && m_listings.Has(place.folder, recorded.oldName);
    }

    std::wstring NameByRecord(const UndoEntry& entry, const std::wstring& folder) {
        std::wstring name = entry.newName;
        if (m_session.isUnfinished) {
            name = entry.reached.empty() ? entry.oldName : entry.reached;
            // The last step may have been taken or not. It went to a free name, so the disk can tell.
            const bool isTaken = !entry.begun.empty() && m_listings.Has(folder, entry.begun, false) &&
                                 !m_listings.Has(folder, name, false);
            if (isTaken) name = entry.begun;
        }
        if (m_listings.Has(folder, name) || (!m_session.isUnfinished && m_listings.Has(folder, entry.oldName)))
            return name;
        // Left aside: by a ring, or by a change of case alone that went through a third name. The folder may have been
        // renamed since.
        for (const std::wstring& origin : {folder, entry.location})
            for (const std::wstring& itemName : {entry.oldName, entry.newName})
                for (uint32_t attempt = 0; attempt < kTemporaryAttempts; ++attempt) {
                    std::wstring aside = TemporaryNameFor(origin, itemName, attempt);
                    if (m_listings.Has(folder, aside)) return aside;
                }
        return name;
    }

    /// The recorded folder. A location that ends in the item's own name may be its full path, before the rename or
    /// after it: it is when no folder has that path, whatever the folder is called now.
    std::wstring FolderOf(const UndoEntry& entry) {
        std::wstring folder(Win32::WithoutSeparator(entry.location));
        const std::wstring_view last = Win32::FileNameOf(folder);
        const bool mayBePath = last == entry.oldName || last == entry.newName;
        if (!mayBePath || Win32::FolderOf(folder).size() < 3) return folder;
        const bool isFolder = m_listings.IsFolder(FolderNow(folder)) || m_session.isUnfinished;
        return isFolder ? folder : std::wstring(Win32::WithoutSeparator(Win32::FolderOf(folder)));
    }

    /// What a folder of the time of the run is called now.
    std::wstring FolderNow(const std::wstring& folder) {
        std::wstring plain(Win32::WithoutSeparator(folder));
        if (m_movedFolders.empty()) return plain;
        // The deepest one that moved. No recursion: a damaged record may name thousands of folders in one path.
        const std::wstring key = Win32::ToUpperCase(plain);
        for (std::wstring_view above = key;;) {
            const auto moved = m_movedFolders.find(std::wstring(above));
            if (moved != m_movedFolders.end()) {
                const WhereNow& now = m_places[moved->second];
                return Win32::JoinPath(now.folder, now.name) + plain.substr(above.size());
            }
            const std::wstring_view next = Win32::WithoutSeparator(Win32::FolderOf(above));
            if (next.empty() || next.size() >= above.size()) return plain;
            above = next;
        }
    }

    const BatchRenameUndo& m_session;
    Listings m_listings;
    const FindItem& m_find;
    std::unordered_map<uint64_t, size_t> m_entriesOfIndex;
    std::vector<WhereNow> m_places;
    std::unordered_map<std::wstring, size_t> m_movedFolders;  // from the path at the time of the run to the entry
};

}  // namespace

RestoreRows MakeRestoreRows(const BatchRenameUndo& session, const ListFolder& list, const FindItem& find) {
    return Restorer(session, list, find).Make();
}

void KeepEntries(RestoreRows& restore, const std::function<bool(size_t entry)>& isWanted) {
    size_t kept = 0;
    for (size_t row = 0; row < restore.rows.size(); ++row) {
        if (!isWanted(restore.entries[row])) continue;
        restore.rows[kept] = restore.rows[row];
        restore.entries[kept++] = restore.entries[row];
    }
    restore.rows.resize(kept);
    restore.entries.resize(kept);
}

}  // namespace BatchRename
