#include "batchrename/model/row_list.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

#include "batchrename/batchrename_texts.h"
#include "ui/name_fault_texts.h"
#include "win32/path.h"
#include "win32/text.h"

namespace BatchRename {

using Quorvane::SDK::Words;

namespace {

std::wstring Sentence(std::wstring text) {
    if (!text.empty()) text.front() = Win32::UpperWide(text.front());
    return text;
}

}  // namespace

std::wstring Reason(std::wstring_view english, const Words& say) {
    return say.Translated(english, {Text::kReasons, Ui::Text::kNameFaults});
}

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

std::wstring StatusOfPlan(const BatchRenameItem& row, const RowPlan& plan, const Words& say) {
    const auto withHand = [&](const std::wstring& text) {
        return row.ownName.empty() ? text : say(Text::ByHand, {text});
    };
    if (plan.verdict == RowVerdict::Rename) {
        const std::wstring warning = Reason(DescribeRowPlan(row, plan), say);
        return withHand(say(row.state == RowState::Restore ? Text::WillBeRestored : Text::WillBeRenamed)) +
               (warning.empty() ? warning : L"; " + warning);
    }
    if (row.isLeftOut) return say(Text::NotChecked);
    return withHand(plan.reason == RowReason::Unchanged ? say(Text::Unchanged)
                                                        : Sentence(Reason(DescribeRowPlan(row, plan), say)));
}

std::wstring StatusOfOutcome(const RowOutcome& outcome, bool isRestore, const Words& say) {
    if (outcome.code == Quorvane::SDK::RenameResult::Renamed) return say(isRestore ? Text::Restored : Text::Renamed);
    const bool isIgnored = outcome.code == Quorvane::SDK::RenameResult::Ignored;
    return say(isIgnored ? Text::IgnoredBecause : Text::FailedBecause, {Reason(outcome.reason, say)});
}

std::wstring TextOfCounts(const RowCounts& counts, bool isRestore, const Words& say) {
    std::wstring text =
        say(isRestore ? Text::WouldRestore : Text::WouldRename, counts.all, {counts.changes, counts.all});
    if (counts.leftOut > 0) text += say(Text::LeftOut, {counts.leftOut});
    if (counts.problems > 0) text += say(Text::Problems, counts.problems);
    return text;
}

std::wstring QuestionBeforeRun(const RowCounts& counts, const Words& say) {
    return say(Text::UnusableNames, counts.problems) + L"\n\n" + say(Text::RenameOthers, counts.changes);
}

std::wstring TextAfterRun(const std::wstring& error, const CRenameResultCallback& results, bool isRestore,
                          const Words& say) {
    return error.empty() ? RunStatusText(results, isRestore, say) : Reason(error, say);
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

namespace {

const std::wstring kUnknown;

class NewPlaces {
public:
    NewPlaces(const RenameItems& rows, const std::vector<RowOutcome>& outcomes) {
        for (size_t row = 0; row < rows.size(); ++row)
            if (rows[row]->isFolder && outcomes[row].name != rows[row]->currentName)
                m_renamed.emplace(Win32::ToUpperCase(Win32::JoinPath(rows[row]->location, rows[row]->currentName)),
                                  outcomes[row].name);
    }

    /// What the folder of a row is called now.
    std::wstring PlaceOf(const std::wstring& folder) {
        if (m_renamed.empty()) return folder;
        const auto known = m_folders.find(folder);
        if (known != m_folders.end()) return known->second;
        const std::wstring above(Win32::WithoutSeparator(Win32::FolderOf(folder)));
        const bool isRoot = above.empty() || above.size() >= folder.size();
        const auto renamed = m_renamed.find(Win32::ToUpperCase(folder));
        const std::wstring name =
            renamed != m_renamed.end() ? renamed->second : std::wstring(Win32::FileNameOf(folder));
        return m_folders[folder] = isRoot ? folder : Win32::JoinPath(PlaceOf(above), name);
    }

private:
    std::unordered_map<std::wstring, std::wstring> m_renamed;  // from the folded path of a folder to its new name
    std::unordered_map<std::wstring, std::wstring> m_folders;
};

}  // namespace

void RowList::SetRows(RowSnapshot rows) {
    m_rows = std::move(rows);
    ForgetPreview();
}

void RowList::SetEdited(RowSnapshot rows) {
    if (m_result) return SetRows(std::move(rows));
    m_rows = std::move(rows);
}

void RowList::SetPreview(std::shared_ptr<const Preview> preview) {
    m_rows = preview->rows;
    m_preview = std::move(preview);
    m_result.reset();
    Count();
}

void RowList::SetOutcomes(RowSnapshot rows, std::shared_ptr<const RunResult> result, bool isRestore) {
    m_rows = std::move(rows);
    m_preview.reset();
    m_result = std::move(result);
    m_isRestore = isRestore;
    Count();
}

void RowList::ForgetPreview() {
    m_preview.reset();
    m_result.reset();
    Count();
}

void RowList::ShowChangesOnly(bool isFiltered) {
    m_wantsChangesOnly = isFiltered;
    Arrange();
}

void RowList::ShowProblemsFirst(bool areFirst) {
    m_wantsProblemsFirst = areFirst;
    Arrange();
}

void RowList::Count() {
    // Nothing of the former rows stays, even where memory ends below: a place must never lead beyond the rows.
    m_marks.clear();
    m_places.clear();
    m_hasPlaces = false;
    m_counts = {m_rows->size(), 0, 0};
    m_marks.reserve(m_rows->size());
    if (m_preview && m_preview->IsComplete())
        for (const RowPlan& plan : m_preview->plans) m_marks.push_back(MarkOfPlan(plan));
    if (m_result)
        for (const RowOutcome& outcome : m_result->outcomes) m_marks.push_back(MarkOfOutcome(outcome));
    for (const RowMark mark : m_marks) {
        if (mark == RowMark::Change) ++m_counts.changes;
        if (mark == RowMark::Problem) ++m_counts.problems;
    }
    if (m_preview) m_counts.leftOut = m_preview->leftOutCount;
    if (m_result)
        m_counts.notBegun = static_cast<size_t>(std::ranges::count(m_result->outcomes, true, &RowOutcome::isNotBegun));
    Arrange();
}

void RowList::Arrange() {
    m_places.clear();
    m_hasPlaces = (m_wantsChangesOnly || m_wantsProblemsFirst) && m_marks.size() == m_rows->size();
    if (!m_hasPlaces) return;
    const auto add = [&](const auto& isWanted) {
        for (size_t row = 0; row < m_marks.size(); ++row)
            if (isWanted(row)) m_places.push_back(static_cast<uint32_t>(row));
    };
    const auto isProblem = [&](size_t row) { return m_wantsProblemsFirst && m_marks[row] == RowMark::Problem; };
    // A row that is not checked stays in sight: there is no other way to check it again.
    const auto isSame = [&](size_t row) {
        return m_marks[row] == RowMark::None && !(m_wantsChangesOnly && !IsChecked(row));
    };
    if (m_wantsProblemsFirst) add(isProblem);
    add([&](size_t row) { return !isSame(row) && !isProblem(row); });
    if (!m_wantsChangesOnly) add(isSame);
}

const std::wstring& RowList::OldName(size_t row) const {
    return m_result ? m_result->rows[row]->currentName : (*m_rows)[row]->currentName;
}

const std::wstring& RowList::NewName(size_t row) const {
    if (m_result)
        return m_result->outcomes[row].isNotBegun ? m_result->rows[row]->newName : (*m_rows)[row]->currentName;
    if (!m_preview || row < m_preview->first || row - m_preview->first >= m_preview->computed.size()) return kUnknown;
    return m_preview->computed[row - m_preview->first]->newName;
}

std::wstring RowList::Text(size_t row, RowColumn column) const {
    switch (column) {
        case RowColumn::CurrentName: return OldName(row);
        case RowColumn::NewName: return NewName(row);
        case RowColumn::Location: return (*m_rows)[row]->location;
        case RowColumn::Status: break;
    }
    if (m_result && row < m_result->outcomes.size())
        return StatusOfOutcome(m_result->outcomes[row], m_isRestore, m_say);
    if (m_preview && m_preview->IsComplete())
        return StatusOfPlan(*m_preview->computed[row], m_preview->plans[row], m_say);
    return {};
}

std::vector<std::wstring> RowList::LongestStatuses() const {
    // By kind of row, since a hundred thousand texts would take a while to write.
    std::map<std::pair<RowVerdict, RowReason>, size_t> planned;
    std::map<uint32_t, size_t> done;
    if (m_result)
        for (size_t row = 0; row < m_result->outcomes.size(); ++row) {
            size_t& longest = done.try_emplace(m_result->outcomes[row].code, row).first->second;
            if (m_result->outcomes[longest].reason.size() < m_result->outcomes[row].reason.size()) longest = row;
        }
    else if (m_preview && m_preview->IsComplete())
        for (size_t row = 0; row < m_preview->plans.size(); ++row) {
            const auto kind = std::pair(m_preview->plans[row].verdict, m_preview->plans[row].reason);
            size_t& longest = planned.try_emplace(kind, row).first->second;
            const bool hasName = kind.first == RowVerdict::Failed;
            if (hasName && NewName(longest).size() < NewName(row).size()) longest = row;
        }
    std::vector<std::wstring> texts;
    texts.reserve(planned.size() + done.size());
    for (const auto& [kind, row] : planned) texts.push_back(Text(row, RowColumn::Status));
    for (const auto& [code, row] : done) texts.push_back(Text(row, RowColumn::Status));
    return texts;
}

std::wstring RowList::LongestLocation() const {
    const auto longest = std::ranges::max_element(*m_rows, {}, [](const auto& row) { return row->location.size(); });
    return longest == m_rows->end() ? std::wstring() : (*longest)->location;
}

std::vector<RowMark> RowList::MarksOfPlaces() const {
    std::vector<RowMark> marks(PlaceCount());
    for (size_t place = 0; place < marks.size(); ++place) marks[place] = Mark(RowAt(place));
    return marks;
}

std::shared_ptr<const RunResult> WithRest(const RunResult& stopped, const RunResult& now,
                                          const std::vector<uint32_t>& rest) {
    auto whole = std::make_shared<RunResult>();
    whole->rows = stopped.rows;
    whole->outcomes = stopped.outcomes;
    for (size_t row = 0; row < now.outcomes.size(); ++row) whole->outcomes[rest[row]] = now.outcomes[row];
    return whole;
}

RenameItems RowsAfterRun(const RenameItems& rows, const std::vector<RowOutcome>& outcomes) {
    NewPlaces places(rows, outcomes);
    RenameItems after;
    after.reserve(rows.size());
    for (size_t row = 0; row < rows.size(); ++row) {
        auto copy = std::make_shared<BatchRenameItem>();
        copy->location = places.PlaceOf(rows[row]->location);
        copy->currentName = outcomes[row].name;
        copy->newName = outcomes[row].name;
        copy->isFolder = rows[row]->isFolder;
        copy->isLeftOut = rows[row]->isLeftOut;
        copy->hostOrder = rows[row]->hostOrder;
        after.push_back(std::move(copy));
    }
    return after;
}

}  // namespace BatchRename
