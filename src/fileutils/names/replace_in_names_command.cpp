#include "fileutils/commands.h"

#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/names/rename_items.h"
#include "fileutils/names/replace_dlg.h"
#include "rename/rename_plan.h"
#include "sdk/owners.h"
#include "win32/folder.h"
#include "win32/path.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;
using namespace BatchRename;

struct PlannedNames {
    std::vector<NameChange> changes;  // in the order of the selection
    std::vector<ItemRename> renames;  // of those without a fault; each after the one that frees its name
};

/// The selection, read once, since names are computed at every key; and what its folders held when they were first
/// asked for.
class SelectedNames {
public:
    explicit SelectedNames(IFileList& list) {
        for (IFileItem* const item : ItemsOf(list)) {
            const std::wstring path = PathOf(*item);
            BatchRenameItem row;
            row.location = Win32::WithoutSeparator(Win32::FolderOf(path));
            row.currentName = NameOf(*item);
            row.isFolder = IsFolder(*item);
            m_items.push_back({item, std::make_shared<BatchRenameItem>(std::move(row))});
        }
    }

    PlannedNames ChangedBy(const NameReplacement& request) {
        RenameItems rows;
        std::vector<IFileItem*> items;
        for (const auto& [item, row] : m_items) {
            row->newName = WithTextReplaced(request, row->currentName, row->isFolder);
            if (row->newName == row->currentName) continue;
            rows.push_back(row);
            items.push_back(item);
        }
        PlannedNames planned;
        if (rows.empty()) return planned;
        const RenamePlan plan = PlanRenames(rows, Listings());
        for (size_t at = 0; at < rows.size(); ++at) {
            planned.changes.push_back({rows[at]->currentName, rows[at]->newName, FaultOf(*rows[at], plan.rows[at])});
            if (IsHosts(plan.rows[at])) planned.renames.push_back({items[at], rows[at]->newName});
        }
        // One text for another makes no rings of names, so no step leads to a temporary name.
        for (const RenameStep& step : plan.steps) planned.renames.push_back({items[step.row], rows[step.row]->newName});
        return planned;
    }

private:
    /// A folder that cannot be read here may be one that the host shows in its own way: it knows whether a name is
    /// free.
    static bool IsHosts(const RowPlan& plan) { return plan.reason == RowReason::FolderError; }
    static std::wstring FaultOf(const BatchRenameItem& row, const RowPlan& plan) {
        const bool isFault = plan.verdict != RowVerdict::Rename && !IsHosts(plan);
        return isFault ? DescribeRowPlan(row, plan) : std::wstring();
    }

    const std::vector<FolderNames>& Listings() {
        if (!m_listings.empty()) return m_listings;
        RenameItems rows;
        for (const auto& [item, row] : m_items) rows.push_back(row);
        for (const std::wstring& folder : FoldersOf(rows)) {
            FolderNames& listing = m_listings.emplace_back();
            listing.folder = folder;
            listing.error =
                Win32::ListFolder(folder, [&](std::wstring_view name, uint32_t) { listing.names.Add(name); });
        }
        return m_listings;
    }

    std::vector<std::pair<IFileItem*, std::shared_ptr<BatchRenameItem>>> m_items;
    std::vector<FolderNames> m_listings;
};

}  // namespace

uint32_t RunReplaceInNames(IHostServices& host, uint32_t) {
    const Owned<IFileList> list = GatherSelection(host, SelectionFlags::Names);
    if (!list || list->GetCount() == 0) return 1;
    SelectedNames names(*list);
    CReplaceDlg dialog([&](const NameReplacement& request) { return names.ChangedBy(request).changes; });
    dialog.UseHost(DialogHostFor(host, IDD_REPLACE_IN_NAMES));
    const std::optional<NameReplacement> request = dialog.Show(host.GetMainWindow());
    if (request) RenameInOneBatch(host, names.ChangedBy(*request).renames);
    return 1;
}

}  // namespace FileUtils
