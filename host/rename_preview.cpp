#include "host/rename_preview.h"

#include <string>
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
    void Add(const std::wstring& line) {
        constexpr size_t kPageUnits = 32768;
        if (m_pages.empty() || m_pages.back().size() + line.size() > kPageUnits)
            m_pages.emplace_back().reserve(kPageUnits);
        else
            m_pages.back() += L'\n';
        m_pages.back() += line;
    }
    void Print(Output& output) const {
        for (const std::wstring& page : m_pages) output.Line(page);
    }

private:
    std::vector<std::wstring> m_pages;
};

/// Adds the line of the folder's next row. False when the row would fail.
bool ShowNext(FolderRows& folder, Pages& pages) {
    const RowPlan verdict = folder.plan.rows[folder.shown];
    const BatchRenameItem& row = *folder.rows[folder.shown++];
    const uint32_t code = verdict.verdict == RowVerdict::Ignored ? Quorvane::SDK::RenameResult::Ignored : verdict.code;
    pages.Add(LineOfOutcome(row, code, DescribeRowPlan(row, verdict), L"rename"));
    if (folder.shown == folder.rows.size()) folder = {};
    return verdict.verdict != RowVerdict::Failed;
}

}  // namespace

bool PrintPreview(SelectedRows& selection, RenameRule& rule, RenameHost& host) {
    std::vector<FolderRows> folders(selection.CountOfFolders());
    for (size_t row = 0; row < selection.Count(); ++row) ++folders[selection.FolderOf(row)].missing;
    Pages pages;
    bool isDone = true;
    size_t shown = 0;
    for (size_t row = 0; row < selection.Count(); ++row) {
        FolderRows& folder = folders[selection.FolderOf(row)];
        folder.rows.push_back(selection.Make(row));
        rule.Compute(*folder.rows.back());
        if (--folder.missing == 0)
            folder.plan = PlanRenames(folder.rows, {selection.TakeNames(selection.FolderOf(row))});
        for (; shown <= row && folders[selection.FolderOf(shown)].missing == 0; ++shown)
            isDone = ShowNext(folders[selection.FolderOf(shown)], pages) && isDone;
    }
    pages.Print(host.State().output);
    return isDone;
}

}  // namespace QVHost
