#include "batchrename/model/row_list.h"

#include "win32/text.h"

namespace BatchRename {
namespace {

std::wstring Sentence(std::wstring text) {
    if (!text.empty()) text.front() = Win32::UpperWide(text.front());
    return text;
}

std::wstring Count(size_t count, const wchar_t* one, const wchar_t* many) {
    return std::to_wstring(count) + (count == 1 ? one : many);
}

}  // namespace

RowMark MarkOfPlan(const RowPlan& plan) {
    switch (plan.verdict) {
        case RowVerdict::Rename: return RowMark::Change;
        case RowVerdict::Failed: return RowMark::Problem;
        case RowVerdict::Ignored: break;
    }
    return RowMark::None;
}

RowMark MarkOfOutcome(const RowOutcome& outcome) {
    if (outcome.code == Quorvane::SDK::RenameResult::Renamed) return RowMark::Done;
    return outcome.code == Quorvane::SDK::RenameResult::Ignored ? RowMark::None : RowMark::Problem;
}

std::wstring StatusOfPlan(const BatchRenameItem& row, const RowPlan& plan) {
    if (plan.verdict == RowVerdict::Rename) {
        const std::wstring warning = DescribeRowPlan(row, plan);
        return (row.state == RowState::Restore ? L"Will be restored" : L"Will be renamed") +
               (warning.empty() ? warning : L"; " + warning);
    }
    if (plan.reason == RowReason::Unchanged) return L"Unchanged";
    return Sentence(DescribeRowPlan(row, plan));
}

std::wstring StatusOfOutcome(const RowOutcome& outcome, bool isRestore) {
    if (outcome.code == Quorvane::SDK::RenameResult::Renamed) return isRestore ? L"Restored" : L"Renamed";
    const bool isIgnored = outcome.code == Quorvane::SDK::RenameResult::Ignored;
    return (isIgnored ? L"Ignored: " : L"Failed: ") + outcome.reason;
}

std::wstring TextOfCounts(const RowCounts& counts, bool isRestore) {
    std::wstring text = Count(counts.all, L" item", L" items");
    text += L", " + std::to_wstring(counts.changes) + (isRestore ? L" will be restored" : L" will be renamed");
    if (counts.problems > 0) text += L", " + Count(counts.problems, L" problem", L" problems") + L" (F8)";
    return text;
}

std::wstring QuestionBeforeRun(const RowCounts& counts) {
    return Count(counts.problems, L" name", L" names") + L" cannot be used; the status column says why.\n\n" +
           (counts.changes == 1 ? L"Rename the other one?"
                                : L"Rename the other " + std::to_wstring(counts.changes) + L"?");
}

std::wstring TextAfterRun(const std::wstring& error, const CRenameResultCallback& results, bool isRestore) {
    return error.empty() ? RunStatusText(results, isRestore) : error;
}

std::optional<size_t> NextProblem(const std::vector<RowMark>& marks, size_t from, bool isBack) {
    const size_t count = marks.size();
    if (from >= count) from = isBack ? 0 : count - 1;
    for (size_t step = 1; step <= count; ++step) {
        const size_t at = isBack ? (from + count - step) % count : (from + step) % count;
        if (marks[at] == RowMark::Problem) return at;
    }
    return std::nullopt;
}

}  // namespace BatchRename
