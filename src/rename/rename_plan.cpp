#include "rename/rename_plan.h"

#include <algorithm>
#include <bit>
#include <unordered_map>

#include "rename/rename_rule.h"
#include "win32/file_name.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr uint32_t kNone = StepGroup::kNoRing;
constexpr size_t kLongestPath = 32767;  // units, with the closing zero and the prefix for long paths
constexpr size_t kPathReserve = 16;
constexpr size_t kUsualPath = 260;  // units, with the closing zero: what programs take that know no long paths

// Windows error codes, as plain numbers because nothing else here needs the system.
constexpr uint32_t kFileNotFound = 2;
constexpr uint32_t kInvalidName = 123;
constexpr uint32_t kAlreadyExists = 183;
constexpr uint32_t kNameTooLong = 206;

/// FNV-1a over the folded units.
uint64_t HashOf(std::wstring_view name, uint64_t seed) {
    uint64_t hash = 0xCBF29CE484222325 ^ seed;
    for (const wchar_t unit : name) hash = (hash ^ Win32::UpperWide(unit)) * 0x100000001B3;
    return hash ^ (hash >> 32);
}

/// Four units at once, all of them ASCII, with a to z as A to Z.
uint64_t UpperAsciiUnits(uint64_t units) {
    constexpr uint64_t kEach = 0x0001000100010001;
    // The eighth bit of each sum says whether the unit is at or beyond that letter.
    const uint64_t isLetter = (units + (0x80 - 'a') * kEach) & ~(units + (0x7F - 'z') * kEach) & 0x80 * kEach;
    return units - (isLetter >> 2);
}

template <class Fold>
uint64_t Packed(std::wstring_view units, Fold&& fold) {
    uint64_t packed = 0;
    for (const wchar_t unit : units) packed = packed << 16 | static_cast<uint16_t>(fold(unit));
    return packed;
}

/// Equal for names that the file system takes for one. For tables in memory only: it may change at any time.
uint32_t TableHash(uint32_t folder, std::wstring_view name) {
    constexpr size_t kUnits = sizeof(uint64_t) / sizeof(char16_t);
    constexpr uint64_t kNotAscii = 0xFF80FF80FF80FF80;
    uint64_t hash = folder * 0x9E3779B97F4A7C15 + name.size();
    for (; !name.empty(); name.remove_prefix(std::min(kUnits, name.size()))) {
        const std::wstring_view piece = name.substr(0, kUnits);
        const uint64_t units = Packed(piece, [](wchar_t unit) { return unit; });
        const uint64_t folded = (units & kNotAscii) == 0 ? UpperAsciiUnits(units) : Packed(piece, Win32::UpperWide);
        hash = (hash ^ folded) * 0xD6E8FEB86659FD93;
        hash ^= hash >> 32;
    }
    return static_cast<uint32_t>(hash);
}

/// One name in one folder: who has it, who wants it.
struct Place {
    std::wstring_view name;
    uint32_t folder = 0;
    uint32_t holder = kNone;  // the first row whose current name this is
    uint32_t wanter = kNone;
    uint32_t wanterCount = 0;
    bool isOnDisk = false;
    const ItemIdentity* item = nullptr;  // that has the name on disk; null: not known
};

/// All names of all folders that matter, found by folder and folded name. One flat table: a node and a folded copy for
/// each name would cost more than all the rest of the planning.
class Places {
public:
    explicit Places(size_t expected) : m_slots(std::bit_ceil(expected + expected / 2 + 16)) {
        m_places.reserve(expected);
    }

    Place& operator[](uint32_t index) { return m_places[index]; }
    uint32_t FolderOf(uint32_t index) const { return m_places[index].folder; }

    uint32_t Find(uint32_t folder, std::wstring_view name) const {
        return m_slots[SlotOf(folder, name, TableHash(folder, name))].place;
    }

    uint32_t Intern(uint32_t folder, std::wstring_view name) {
        const uint32_t hash = TableHash(folder, name);
        Slot& slot = m_slots[SlotOf(folder, name, hash)];
        if (slot.place != kNone) return slot.place;
        Place place;
        place.name = name;
        place.folder = folder;
        m_places.push_back(place);
        slot = {static_cast<uint32_t>(m_places.size() - 1), hash};
        return slot.place;
    }

private:
    struct Slot {
        uint32_t place = kNone;
        uint32_t hash = 0;  // tells most other names apart without a look at their place
    };

    /// The slot that holds the name, or the empty one where it belongs. The table is never more than two thirds full.
    size_t SlotOf(uint32_t folder, std::wstring_view name, uint32_t hash) const {
        const size_t mask = m_slots.size() - 1;
        size_t at = hash & mask;
        for (; m_slots[at].place != kNone; at = (at + 1) & mask) {
            if (m_slots[at].hash != hash) continue;
            const Place& place = m_places[m_slots[at].place];
            if (place.folder == folder && Win32::EqualIgnoringCase(place.name, name)) break;
        }
        return at;
    }

    std::vector<Place> m_places;
    std::vector<Slot> m_slots;
};

/// The folders of a plan, numbered. Rows of one folder mostly stand together, so the last answer is tried first.
class FolderNumbers {
public:
    uint32_t NumberOf(const std::wstring& location) {
        if (m_last != kNone && *m_lastLocation == location) return m_last;
        const auto [entry, isNew] =
            m_numbers.emplace(Win32::ToUpperCase(location), static_cast<uint32_t>(m_numbers.size()));
        if (isNew) m_locations.push_back(&location);
        m_last = entry->second;
        m_lastLocation = &location;
        return m_last;
    }
    uint32_t Find(const std::wstring& location) const {
        const auto entry = m_numbers.find(Win32::ToUpperCase(location));
        return entry == m_numbers.end() ? kNone : entry->second;
    }
    const std::vector<const std::wstring*>& Locations() const { return m_locations; }

private:
    std::unordered_map<std::wstring, uint32_t> m_numbers;
    std::vector<const std::wstring*> m_locations;
    const std::wstring* m_lastLocation = nullptr;
    uint32_t m_last = kNone;
};

size_t CountNames(const RenameItems& rows, const std::vector<FolderNames>& folders) {
    size_t count = rows.size() * 2;
    for (const FolderNames& folder : folders) count += folder.names.Count();
    return count;
}

class Planner {
public:
    Planner(const RenameItems& rows, const std::vector<FolderNames>& folders)
        : m_rows(rows), m_from(rows.size(), kNone), m_to(rows.size(), kNone), m_places(CountNames(rows, folders)) {
        m_plan.rows.resize(rows.size());
        EnterNames(folders);
        EnterHolders();
    }

    RenamePlan Plan() {
        for (uint32_t row = 0; row < m_rows.size(); ++row) Judge(row);
        for (uint32_t row = 0; row < m_rows.size(); ++row) JudgeTarget(row);
        StopThoseThatWaitForever();
        m_plan.steps.reserve(m_rows.size());
        for (const uint32_t row : RowsByDepth()) EmitGroupOf(row);
        return std::move(m_plan);
    }

private:
    bool Moves(uint32_t row) const { return m_plan.rows[row].verdict == RowVerdict::Rename; }

    void Fail(uint32_t row, RowReason reason, uint32_t code) { m_plan.rows[row] = {RowVerdict::Failed, reason, code}; }

    /// Enters the rows' current names, then what is on disk.
    void EnterNames(const std::vector<FolderNames>& folders) {
        for (uint32_t row = 0; row < m_rows.size(); ++row)
            m_from[row] = m_places.Intern(m_folders.NumberOf(m_rows[row]->location), m_rows[row]->currentName);
        m_folderErrors.assign(m_folders.Locations().size(), kFileNotFound);
        for (const FolderNames& folder : folders) {
            const uint32_t number = m_folders.Find(folder.folder);
            if (number == kNone) continue;
            m_folderErrors[number] = folder.error;
            for (size_t name = 0; name < folder.names.Count(); ++name) {
                Place& place = m_places[m_places.Intern(number, folder.names[name])];
                place.isOnDisk = true;
                // There are folders in which names that differ in case alone are two: then the exact one is the row's.
                const bool isExact = !place.item || folder.names[name] == place.name;
                if (isExact && name < folder.items.size()) place.item = &folder.items[name];
            }
        }
    }

    /// Who has which name. A row whose item has gone has none: another item may have its name by now, and keeps it.
    void EnterHolders() {
        for (uint32_t row = 0; row < m_rows.size(); ++row) {
            Place& place = m_places[m_from[row]];
            if (place.item) {
                m_plan.identities.resize(m_rows.size());
                m_plan.identities[row] = *place.item;
            }
            const ItemIdentity& wanted = m_rows[row]->identity;
            if (wanted && place.item && !IsSameItem(wanted, *place.item)) {
                Fail(row, RowReason::OtherItem, kFileNotFound);
            } else if (place.holder != kNone) {
                Fail(row, RowReason::ListedTwice, kAlreadyExists);
                // A record whose last line was cut off can name another entry's item. Which one's it is nobody knows.
                if (m_rows[row]->state == RowState::Restore) Fail(place.holder, RowReason::ListedTwice, kAlreadyExists);
            } else {
                place.holder = row;
            }
        }
    }

    /// What can be said of a row by itself; a row that may move enters what it wants.
    void Judge(uint32_t row) {
        if (!Moves(row)) return;
        const BatchRenameItem& item = *m_rows[row];
        const uint32_t folder = m_places[m_from[row]].folder;
        if (item.fault != RuleFault::None) return Fail(row, RowReason::RuleFault, kInvalidName);
        if (item.newName == item.currentName) {
            const bool isGone = !m_places[m_from[row]].isOnDisk && m_folderErrors[folder] == 0;
            if (isGone && item.state == RowState::Restore && !item.isLeftOut)
                return Fail(row, RowReason::Gone, kFileNotFound);
            m_plan.rows[row] = {RowVerdict::Ignored, RowReason::Unchanged, 0};
            ++m_places[m_from[row]].wanterCount;
            return;
        }
        const Win32::NameCheck check = Win32::CheckFileName(item.newName);
        // There are names that an item can have and nobody should choose: who had one gets it back.
        const bool isOldName = item.state == RowState::Restore &&
                               (check.fault == Win32::NameFault::LoneSurrogate || Win32::IsVerbatimName(item.newName));
        if (check.fault != Win32::NameFault::None && !isOldName)
            return Fail(row, RowReason::BadName,
                        check.fault == Win32::NameFault::TooLong ? kNameTooLong : kInvalidName);
        if (item.location.size() + item.newName.size() + kPathReserve > kLongestPath)
            return Fail(row, RowReason::PathTooLong, kNameTooLong);
        if (m_folderErrors[folder] != 0) return Fail(row, RowReason::FolderError, m_folderErrors[folder]);
        if (!m_places[m_from[row]].isOnDisk) return Fail(row, RowReason::Gone, kFileNotFound);
        if (item.location.size() + 1 + item.newName.size() >= kUsualPath) m_plan.rows[row].reason = RowReason::LongPath;
        m_to[row] = m_places.Intern(folder, item.newName);
        Place& target = m_places[m_to[row]];
        target.wanter = row;
        ++target.wanterCount;
    }

    /// Nobody wins a name that several want: which one should have it is not for us to guess.
    void JudgeTarget(uint32_t row) {
        if (!Moves(row)) return;
        const Place& target = m_places[m_to[row]];
        if (target.wanterCount > 1)
            Fail(row, RowReason::Duplicate, kAlreadyExists);
        else if (target.isOnDisk && target.holder == kNone)
            Fail(row, RowReason::Taken, kAlreadyExists);
    }

    /// A row that stays keeps its name; the row that wants it stays as well, and so on.
    void StopThoseThatWaitForever() {
        for (uint32_t row = 0; row < m_rows.size(); ++row) {
            if (Moves(row) || m_places[m_from[row]].holder != row) continue;
            for (uint32_t staying = row; staying != kNone;) {
                const Place& kept = m_places[m_from[staying]];
                const uint32_t waiting = kept.isOnDisk ? kept.wanter : kNone;
                if (waiting == kNone || !Moves(waiting)) break;
                Fail(waiting, RowReason::HeldByARow, kAlreadyExists);
                staying = waiting;
            }
        }
    }

    /// Deepest folders first, otherwise in list order.
    std::vector<uint32_t> RowsByDepth() const {
        std::vector<uint32_t> depths;
        for (const std::wstring* location : m_folders.Locations()) depths.push_back(DepthOf(*location));
        const uint32_t deepest = depths.empty() ? 0 : *std::ranges::max_element(depths);
        std::vector<size_t> ends(deepest + 2, 0);
        const auto rank = [&](uint32_t row) { return deepest - depths[m_places.FolderOf(m_from[row])]; };
        for (uint32_t row = 0; row < m_rows.size(); ++row) ++ends[rank(row) + 1];
        for (size_t at = 1; at < ends.size(); ++at) ends[at] += ends[at - 1];
        std::vector<uint32_t> order(m_rows.size());
        for (uint32_t row = 0; row < m_rows.size(); ++row) order[ends[rank(row)]++] = row;
        return order;
    }

    /// The row that has to move before this one can; kNone when the name is free or the row's own in another case.
    uint32_t WaitsFor(uint32_t row) {
        const Place& target = m_places[m_to[row]];
        return target.isOnDisk && target.holder != row ? target.holder : kNone;
    }

    /// The row that waits for this one; kNone when nobody does.
    uint32_t AwaitedBy(uint32_t row) {
        const uint32_t wanter = m_places[m_from[row]].wanter;
        return wanter != kNone && wanter != row && Moves(wanter) ? wanter : kNone;
    }

    void EmitGroupOf(uint32_t row) {
        if (!Moves(row) || m_isEmitted[row]) return;
        uint32_t free = row;
        for (uint32_t next = WaitsFor(free); next != kNone; next = WaitsFor(free)) {
            free = next;
            if (free == row) return EmitRing(row);
        }
        BeginGroup();
        for (uint32_t at = free; at != kNone; at = AwaitedBy(at)) Emit(at, StepKind::Direct);
    }

    void EmitRing(uint32_t row) {
        BeginGroup();
        m_plan.groups.back().ring = static_cast<uint32_t>(m_plan.temporaryNames.size());
        m_plan.temporaryNames.push_back(FreeTemporaryName(row));
        Emit(row, StepKind::Aside);
        for (uint32_t at = AwaitedBy(row); at != row; at = AwaitedBy(at)) Emit(at, StepKind::Direct);
        Emit(row, StepKind::FromAside);
    }

    void BeginGroup() { m_plan.groups.push_back({static_cast<uint32_t>(m_plan.steps.size()), 0}); }

    void Emit(uint32_t row, StepKind kind) {
        m_plan.steps.push_back({row, kind});
        ++m_plan.groups.back().count;
        m_isEmitted[row] = true;
    }

    std::wstring FreeTemporaryName(uint32_t row) {
        for (uint32_t attempt = 0;; ++attempt) {
            std::wstring name = TemporaryNameFor(m_rows[row]->location, m_rows[row]->currentName, attempt);
            const uint32_t place = m_places.Find(m_places[m_from[row]].folder, name);
            if (place == kNone || (!m_places[place].isOnDisk && m_places[place].wanterCount == 0)) return name;
        }
    }

    const RenameItems& m_rows;
    FolderNumbers m_folders;
    std::vector<uint32_t> m_folderErrors;
    std::vector<uint32_t> m_from;  // place of each row's current name
    std::vector<uint32_t> m_to;    // place of the name it wants
    std::vector<bool> m_isEmitted = std::vector<bool>(m_rows.size(), false);
    Places m_places;
    RenamePlan m_plan;
};

}  // namespace

uint32_t DepthOf(std::wstring_view location) {
    while (location.ends_with(L'\\') || location.ends_with(L'/')) location.remove_suffix(1);
    constexpr size_t kPrefix = 4;
    constexpr size_t kSharePrefix = 3;  // without the separator that a share's path has twice
    if (location.starts_with(LR"(\\?\)"))
        location.remove_prefix(location.starts_with(LR"(\\?\UNC\)") ? kSharePrefix : kPrefix);
    return static_cast<uint32_t>(
        std::ranges::count_if(location, [](wchar_t unit) { return unit == L'\\' || unit == L'/'; }));
}

RenamePlan PlanRenames(const RenameItems& rows, const std::vector<FolderNames>& folders) {
    return Planner(rows, folders).Plan();
}

std::vector<std::wstring> FoldersOf(const RenameItems& rows) {
    FolderNumbers numbers;
    for (const auto& row : rows) numbers.NumberOf(row->location);
    std::vector<std::wstring> folders;
    for (const std::wstring* location : numbers.Locations()) folders.push_back(*location);
    return folders;
}

std::wstring DescribeRowPlan(const BatchRenameItem& row, const RowPlan& plan) {
    const auto quoted = [&row] { return L"\"" + row.newName + L"\""; };
    switch (plan.reason) {
        case RowReason::None: return {};
        case RowReason::Unchanged:
            if (row.isLeftOut) return L"it is not checked";
            return row.state == RowState::Restore ? L"it has its old name" : L"the name stays the same";
        case RowReason::RuleFault: return DescribeRuleFault(row.fault);
        case RowReason::BadName: return Win32::DescribeNameFault(row.newName, Win32::CheckFileName(row.newName));
        case RowReason::PathTooLong: return L"the path would be too long";
        case RowReason::FolderError: return L"the folder cannot be read, error " + std::to_wstring(plan.code);
        case RowReason::Gone: return L"there is no such item any more";
        case RowReason::OtherItem: return L"the item is gone; another one has its name now";
        case RowReason::ListedTwice: return L"the item is in the list twice";
        case RowReason::Duplicate: return quoted() + L" would be the name of more than one item";
        case RowReason::Taken: return quoted() + L" is there already";
        case RowReason::HeldByARow: return quoted() + L" is the name of an item that keeps it";
        case RowReason::LongPath:
            return L"the path will have " + std::to_wstring(row.location.size() + 1 + row.newName.size()) +
                   L" characters; many programs open no more than " + std::to_wstring(kUsualPath - 1);
    }
    return {};
}

std::wstring TemporaryNameFor(std::wstring_view location, std::wstring_view name, uint32_t attempt) {
    constexpr wchar_t kDigits[] = L"0123456789abcdef";
    while (location.ends_with(L'\\') || location.ends_with(L'/')) location.remove_suffix(1);
    const uint64_t hash = HashOf(name, HashOf(location, attempt));
    std::wstring result = L"~qvbr";
    for (int shift = 28; shift >= 0; shift -= 4) result += kDigits[(hash >> shift) & 0xF];
    return result;
}

}  // namespace BatchRename
