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

    bool HasAny(const std::wstring& folder) { return !NamesIn(folder).exact.empty(); }

private:
    struct Names {
        std::unordered_set<std::wstring> exact;
        std::unordered_set<std::wstring> folded;
    };

    const Names& NamesIn(const std::wstring& folder) {
        const auto [entry, isNew] = m_folders.try_emplace(Win32::ToUpperCase(folder));
        if (!isNew) return entry->second;
        const Win32::NameList names = m_list(folder).names;
        for (size_t name = 0; name < names.Count(); ++name) {
            entry->second.folded.insert(Win32::ToUpperCase(names[name]));
            entry->second.exact.emplace(names[name]);
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
    Restorer(const BatchRenameUndo& session, const ListFolder& list)
        : m_session(session), m_listings(list), m_places(session.entries.size()) {}

    RestoreRows Make() {
        // From the top down: where an item is now depends on what has become of the folders above it.
        std::vector<size_t> order(m_places.size());
        std::iota(order.begin(), order.end(), size_t(0));
        const auto depthOf = [&](size_t entry) { return std::ranges::count(m_session.entries[entry].location, L'\\'); };
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
            if (place.name == recorded.oldName)
                atOldName.push_back(entry);
            else
                byName.emplace(KeyOf(place.folder, place.name), entry);
        }
        for (const size_t entry : entries) {
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
            if (place.name != m_session.entries[entry].oldName)
                m_movedFolders.emplace(KeyOf(FolderOf(m_session.entries[entry]), m_session.entries[entry].oldName),
                                       entry);
        }
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

    /// The recorded folder. A location that ends in the item's own name may be its full path: it is when nothing is in
    /// a folder of that name, whatever that is called now.
    std::wstring FolderOf(const UndoEntry& entry) {
        std::wstring folder(Win32::WithoutSeparator(entry.location));
        if (Win32::FileNameOf(folder) != entry.oldName || Win32::FolderOf(folder).size() < 3) return folder;
        const bool isFolder = m_listings.HasAny(FolderNow(folder)) || m_session.isUnfinished;
        return isFolder ? folder : std::wstring(Win32::WithoutSeparator(Win32::FolderOf(folder)));
    }

    /// What a folder of the time of the run is called now.
    std::wstring FolderNow(const std::wstring& folder) {
        std::wstring plain(Win32::WithoutSeparator(folder));
        const auto moved = m_movedFolders.find(Win32::ToUpperCase(plain));
        if (moved != m_movedFolders.end())
            return Win32::JoinPath(m_places[moved->second].folder, m_places[moved->second].name);
        const std::wstring above(Win32::WithoutSeparator(Win32::FolderOf(plain)));
        if (above.empty() || above.size() >= plain.size()) return plain;
        return Win32::JoinPath(FolderNow(above), Win32::FileNameOf(plain));
    }

    const BatchRenameUndo& m_session;
    Listings m_listings;
    std::vector<WhereNow> m_places;
    std::unordered_map<std::wstring, size_t> m_movedFolders;  // from the path at the time of the run to the entry
};

}  // namespace

RestoreRows MakeRestoreRows(const BatchRenameUndo& session, const ListFolder& list) {
    return Restorer(session, list).Make();
}

}  // namespace BatchRename
