#include "host/rename/rename_host.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/app/host_text.h"
#include "host/rename/selected_rows.h"
#include "rename/rename_plan.h"

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

/// Lines that are printed together, once it is known that all can be.
class HeldLines {
public:
    /// Where a line may be appended, with its end, until this is called again.
    std::wstring& Next() {
        if (m_page.size() > kPageUnits) TurnPage();
        return m_page;
    }
    void Print(Output& output) {
        TurnPage();
        for (const std::string& page : m_pages) output.Lines(page);
    }

private:
    static constexpr size_t kPageUnits = 32768;

    void TurnPage() {
        m_pages.push_back(ToUtf8(m_page));
        m_pages.back().shrink_to_fit();  // it was made for the longest characters
        m_page.clear();
    }

    std::wstring m_page;
    std::vector<std::string> m_pages;
};

/// Adds the line of the folder's next row. False when the row would fail. The last one lets go of all; the rows can be
/// used again.
bool ShowNext(FolderRows& folder, HeldLines& lines, RenameItems& spare) {
    const RowPlan verdict = folder.plan.rows[folder.shown];
    const BatchRenameItem& row = *folder.rows[folder.shown++];
    std::wstring& line = lines.Next();
    AppendOutcome(line, row, CodeOf(verdict), DescribeRowPlan(row, verdict), L"rename");
    line += L'\n';
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
    std::vector<FolderRows*> order;  // of the rows
    order.reserve(selection.Count());
    HeldLines lines;
    RenameItems spare;  // rows whose memory serves again: taking and freeing it would be a third of the work on a row
    bool isDone = true;
    size_t shown = 0;
    for (size_t row = 0; row < selection.Count(); ++row) {
        FolderRows& folder = folders[selection.FolderOf(row)];
        if (spare.empty()) spare.push_back(std::make_shared<BatchRenameItem>());
        if (selection.Fill(row, *spare.back())) {
            rule.Compute(*spare.back());
            folder.rows.push_back(std::move(spare.back()));
            spare.pop_back();
            order.push_back(&folder);
        }
        if (--folder.missing == 0)
            folder.plan = PlanRenames(folder.rows, {selection.TakeNames(selection.FolderOf(row))});
        for (; shown < order.size() && order[shown]->missing == 0; ++shown)
            isDone = ShowNext(*order[shown], lines, spare) && isDone;
    }
    lines.Print(host.State().output);
    return isDone;
}

}  // namespace QVHost
