#include "host/rename_preview.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "batchrename/rename_plan.h"

namespace QVHost {
namespace {

using namespace BatchRename;

/// The rows of one folder. Their verdicts depend on each other and on what the folder holds, and on nothing else: so
/// they are planned as soon as the last of them is there, while other folders are still being read.
struct FolderRows {
    size_t missing = 0;  // rows that are still to come
    size_t shown = 0;
    RenameItems rows;
    RenamePlan plan;
};

/// Text of lines that are printed together: none of them before it is known that all can be.
class Pages {
public:
    /// Where the next line is to be appended, without its end.
    std::wstring& NextLine() {
        constexpr size_t kPageUnits = 32768;
        constexpr size_t kLongLine = 1024;
        if (m_pages.empty() || m_pages.back().size() + kLongLine > kPageUnits)
            m_pages.emplace_back().reserve(kPageUnits);
        else
            m_pages.back() += L'\n';
        return m_pages.back();
    }
    void Print(Output& output) const {
        for (const std::wstring& page : m_pages) output.Line(page);
    }

private:
    std::vector<std::wstring> m_pages;
};

/// Adds the line of the folder's next row. False when the row would fail. The last one lets go of all; the rows can be
/// used again.
bool ShowNext(FolderRows& folder, Pages& pages, RenameItems& spare) {
    const RowPlan verdict = folder.plan.rows[folder.shown];
    const BatchRenameItem& row = *folder.rows[folder.shown++];
    const uint32_t code = verdict.verdict == RowVerdict::Ignored ? Quorvane::SDK::RenameResult::Ignored : verdict.code;
    AppendOutcome(pages.NextLine(), row, code, DescribeRowPlan(row, verdict), L"rename");
    if (folder.shown == folder.rows.size()) {
        std::ranges::move(folder.rows, std::back_inserter(spare));
        folder = {};
    }
    return verdict.verdict != RowVerdict::Failed;
}

}  // namespace

bool PrintPreview(SelectedRows& selection, RenameRule& rule, RenameHost& host) {
    std::vector<FolderRows> folders(selection.CountOfFolders());
    for (size_t row = 0; row < selection.Count(); ++row) ++folders[selection.FolderOf(row)].missing;
    Pages pages;
    RenameItems spare;  // rows whose memory serves again: taking and freeing it would be a third of the work on a row
    bool isDone = true;
    size_t shown = 0;
    for (size_t row = 0; row < selection.Count(); ++row) {
        FolderRows& folder = folders[selection.FolderOf(row)];
        folder.rows.push_back(spare.empty() ? std::make_shared<BatchRenameItem>() : std::move(spare.back()));
        if (!spare.empty()) spare.pop_back();
        selection.Fill(row, *folder.rows.back());
        rule.Compute(*folder.rows.back());
        if (--folder.missing == 0)
            folder.plan = PlanRenames(folder.rows, {selection.TakeNames(selection.FolderOf(row))});
        for (; shown <= row && folders[selection.FolderOf(shown)].missing == 0; ++shown)
            isDone = ShowNext(folders[selection.FolderOf(shown)], pages, spare) && isDone;
    }
    pages.Print(host.State().output);
    return isDone;
}

}  // namespace QVHost
