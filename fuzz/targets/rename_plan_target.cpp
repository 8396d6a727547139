// The planner: its steps carried out on a small disk in memory, where nothing may be overwritten or lost and each row
// must end as its verdict says.
#include "rename/rename_plan.h"

#include <map>
#include <optional>

#include "fuzz/input.h"
#include "win32/file_name.h"
#include "win32/path.h"
#include "win32/text.h"

namespace QVFuzz {
namespace {

using namespace BatchRename;

class Disk {
public:
    void Add(const std::wstring& folder, const std::wstring& name) {
        if (!name.empty() && !Find(folder, name)) m_items.push_back({folder, name});
    }
    std::optional<size_t> Find(const std::wstring& folder, const std::wstring& name) const {
        for (size_t at = 0; at < m_items.size(); ++at)
            if (Win32::EqualIgnoringCase(m_items[at].first, folder) &&
                Win32::EqualIgnoringCase(m_items[at].second, name))
                return at;
        return std::nullopt;
    }
    FolderNames List(const std::wstring& folder) const {
        FolderNames names;
        names.folder = folder;
        for (const auto& item : m_items)
            if (Win32::EqualIgnoringCase(item.first, folder)) names.names.Add(item.second);
        return names;
    }
    void Rename(const std::wstring& folder, const std::wstring& from, const std::wstring& to) {
        const auto found = Find(folder, from);
        Require(found.has_value(), "a step renames what is there");
        const auto taken = Find(folder, to);
        Require(!taken || *taken == *found, "a step overwrites nothing");
        m_items[*found].second = to;
    }

private:
    std::vector<std::pair<std::wstring, std::wstring>> m_items;
};

/// Whether each row is renamed, by definition: row by row until nothing changes.
std::vector<bool> MovesByDefinition(const RenameItems& rows, const Disk& disk) {
    using Place = std::pair<std::wstring, std::wstring>;
    const auto placeOf = [](const BatchRenameItem& row, const std::wstring& name) {
        return Place(Win32::ToUpperCase(row.location), Win32::ToUpperCase(name));
    };
    std::vector<bool> moves(rows.size());
    std::map<Place, int> wanted;
    std::map<Place, size_t> holders;
    for (size_t at = 0; at < rows.size(); ++at) {
        const BatchRenameItem& row = *rows[at];
        const bool isFirst = holders.emplace(placeOf(row, row.currentName), at).second;
        const bool isChange = row.newName != row.currentName;
        moves[at] = isFirst && isChange && Win32::IsFileName(row.newName) && disk.Find(row.location, row.currentName);
        if (moves[at] || (isFirst && !isChange)) ++wanted[placeOf(row, row.newName)];
    }
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (size_t at = 0; at < rows.size(); ++at) {
            if (!moves[at]) continue;
            const Place target = placeOf(*rows[at], rows[at]->newName);
            const auto holder = holders.find(target);
            const bool isBlocked =
                disk.Find(rows[at]->location, rows[at]->newName) && (holder == holders.end() || !moves[holder->second]);
            if (wanted[target] == 1 && !isBlocked) continue;
            moves[at] = false;
            isChanged = true;
        }
    }
    return moves;
}

}  // namespace

void RunRenamePlan(Bytes bytes) {
    if (bytes.size() > 1024) return;
    Input input(bytes);
    // The folders hold no folders of the world: renaming them is the run's affair.
    static const std::wstring kFolders[] = {L"C:\\a", L"C:\\A\\b"};
    Disk disk;
    const size_t strangers = input.Byte() % 8;
    for (size_t at = 0; at < strangers; ++at) disk.Add(kFolders[at % 2], Widened<wchar_t>(input.Text()));
    RenameItems rows;
    while (!input.IsAtEnd() && rows.size() < 40) {
        auto row = std::make_shared<BatchRenameItem>();
        const uint8_t shape = input.Byte();
        row->location = kFolders[shape % 2];
        row->currentName = Widened<wchar_t>(input.Text());
        row->newName = Widened<wchar_t>(input.Text());
        if (shape & 2) disk.Add(row->location, row->currentName);
        rows.push_back(std::move(row));
    }
    std::vector<FolderNames> folders;
    for (const std::wstring& folder : FoldersOf(rows)) folders.push_back(disk.List(folder));
    const RenamePlan plan = PlanRenames(rows, folders);
    Require(plan.rows.size() == rows.size(), "each row has its verdict");
    const std::vector<bool> moves = MovesByDefinition(rows, disk);
    for (size_t at = 0; at < rows.size(); ++at)
        Require((plan.rows[at].verdict == RowVerdict::Rename) == moves[at], "the verdict is the one by definition");
    size_t stepCount = 0;
    for (const StepGroup& group : plan.groups) {
        Require(group.first == stepCount, "groups follow on");
        stepCount += group.count;
        const std::wstring aside = group.IsRing() ? plan.temporaryNames.at(group.ring) : std::wstring();
        for (size_t at = group.first; at < stepCount; ++at) {
            const RenameStep& step = plan.steps.at(at);
            const BatchRenameItem& row = *rows.at(step.row);
            Require(plan.rows[step.row].verdict == RowVerdict::Rename, "only rows that are to be renamed have steps");
            disk.Rename(row.location, step.kind == StepKind::FromAside ? aside : row.currentName,
                        step.kind == StepKind::Aside ? aside : row.newName);
        }
    }
    Require(stepCount == plan.steps.size(), "each step is in a group");
    for (size_t at = 0; at < rows.size(); ++at) {
        DescribeRowPlan(*rows[at], plan.rows[at]);
        if (plan.rows[at].verdict == RowVerdict::Rename)
            Require(disk.Find(rows[at]->location, rows[at]->newName).has_value(), "a renamed row has its new name");
        Require((plan.rows[at].verdict == RowVerdict::Failed) == (plan.rows[at].code != 0), "a failed row has a code");
    }
}

}  // namespace QVFuzz
