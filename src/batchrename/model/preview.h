// preview.h - one pass of the live preview: from rows and a rule to new names and verdicts, by the same planner that
// the run uses. Nothing here knows a window; the thread that makes passes is preview_worker's.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "batchrename/model/row_order.h"
#include "rename/rename_plan.h"
#include "rename/rename_rule.h"
#include "rename/restore_rows.h"

namespace BatchRename {

/// Rows that nobody changes: for other rows there is another list.
using RowSnapshot = std::shared_ptr<const RenameItems>;

struct PreviewRequest {
    uint64_t generation = 0;  // a newer one makes this one void
    RowSnapshot rows;
    RuleDefinition rule;
    CalendarTime time;
    std::optional<RowOrder> order;                   // the rows are put into this order first
    std::shared_ptr<const BatchRenameUndo> session;  // its rows take their place; hostOrder is then the entry
    std::vector<size_t> entries;                     // of the session: those alone; empty: all
    size_t firstVisible = 0;                         // what the user looks at
    size_t visibleCount = 0;
    bool readsFolders = false;  // again: something may have changed on disk
};

struct Preview {
    uint64_t generation = 0;
    RowSnapshot rows;      // as they were computed, in their order
    RenameItems computed;  // copies of the rows, or of those from `first` on, with new names and faults
    size_t first = 0;
    std::vector<RowPlan> plans;  // one for each row; empty while only names are known
    size_t leftOutCount = 0;     // of the computed ones
    std::wstring error;          // the pass failed: there is nothing but this text
    bool IsComplete() const { return error.empty() && plans.size() == computed.size() && first == 0; }
};

/// The listings of folders, each read once until they are forgotten.
class FolderCache {
public:
    explicit FolderCache(ListFolder list, FindItem find = {}) : m_list(std::move(list)), m_find(std::move(find)) {}
    void Forget() { m_folders.clear(); }
    const FolderNames& Read(const std::wstring& folder);
    /// Looks for items that are not in their folder.
    const FindItem& Finder() const { return m_find; }

private:
    ListFolder m_list;
    FindItem m_find;
    std::map<std::wstring, FolderNames> m_folders;
};

/// Makes one pass. `publish` hears first of the rows that the user looks at, where no counter has to count the rows
/// before them, and then of all. When `isCancelled` says so the pass ends without another word.
void MakePreview(const PreviewRequest& request, FolderCache& folders, IPropertySource* properties,
                 const std::function<bool()>& isCancelled,
                 const std::function<void(std::shared_ptr<const Preview>)>& publish);

}  // namespace BatchRename
