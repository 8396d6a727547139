// row_list.h - what the list shows: rows, their new names and states in words, and which of them. Knows no window.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "batchrename/model/preview.h"
#include "batchrename/run/rename_run.h"
#include "batchrename/run/run_controller.h"
#include "rename/rename_plan.h"
#include "sdk/words.h"

namespace BatchRename {

/// The state of a row at a glance; the view has an icon for each but None.
enum class RowMark : uint8_t { None, Change, Problem, Done };

RowMark MarkOfPlan(const RowPlan& plan);
RowMark MarkOfOutcome(const RowOutcome& outcome);

/// A reason of the engine or of a run, which the log has in English, in the host's language.
std::wstring Reason(std::wstring_view english, const Quorvane::SDK::Words& say);

/// The status column before a run: "Will be renamed", "Unchanged", or why not.
std::wstring StatusOfPlan(const BatchRenameItem& row, const RowPlan& plan, const Quorvane::SDK::Words& say);
/// The status column after it.
std::wstring StatusOfOutcome(const RowOutcome& outcome, bool isRestore, const Quorvane::SDK::Words& say);

struct RowCounts {
    size_t all = 0;
    size_t changes = 0;
    size_t problems = 0;
    size_t leftOut = 0;
    size_t notBegun = 0;  // by a run that was stopped
};

/// "12 of 20 items will be renamed, 2 not checked, 3 problems (F8)"
std::wstring TextOfCounts(const RowCounts& counts, bool isRestore, const Quorvane::SDK::Words& say);

/// The question before a run in which some rows cannot take part.
std::wstring QuestionBeforeRun(const RowCounts& counts, const Quorvane::SDK::Words& say);

/// What the status bar says after a run: the error while there is one, else the counts of the run.
std::wstring TextAfterRun(const std::wstring& error, const CRenameResultCallback& results, bool isRestore,
                          const Quorvane::SDK::Words& say);

/// The next place with a problem after `from` (before it, when `isBack`), going round at the end; nothing when there
/// is none. `from` may be beyond the end: then the search begins at the first place, or at the last.
std::optional<size_t> NextProblem(const std::vector<RowMark>& marks, size_t from, bool isBack);

enum class RowColumn : uint8_t { CurrentName, NewName, Status, Location };

class RowList {
public:
    /// In English.
    RowList() = default;
    explicit RowList(Quorvane::SDK::Words say) : m_say(std::move(say)) {}

    /// Other rows, of which nothing is known yet.
    void SetRows(RowSnapshot rows);
    /// Other versions of the same rows, in the same order: what is known of their names is shown until there is more.
    void SetEdited(RowSnapshot rows);
    /// Takes over the rows as well: a pass may have put them into another order.
    void SetPreview(std::shared_ptr<const Preview> preview);
    /// The rows as they are after a run, and what became of each.
    void SetOutcomes(RowSnapshot rows, std::shared_ptr<const RunResult> result, bool isRestore);
    /// Nothing that is known of new names holds any more.
    void ForgetPreview();
    /// Shows only rows that change or have a problem; all, while nothing is known of them.
    void ShowChangesOnly(bool isFiltered);
    /// Shows the rows with a problem above the others, and those that stay as they are below them. The rows themselves
    /// keep their order, by which counters count.
    void ShowProblemsFirst(bool areFirst);
    bool AreProblemsFirst() const { return m_wantsProblemsFirst; }

    const RowSnapshot& Rows() const { return m_rows; }
    const std::shared_ptr<const Preview>& CurrentPreview() const { return m_preview; }
    const std::shared_ptr<const RunResult>& Outcomes() const { return m_result; }
    const RowCounts& Counts() const { return m_counts; }

    // Places in the list, which are not rows while some are left out or stand elsewhere.
    size_t PlaceCount() const { return m_hasPlaces ? m_places.size() : m_rows->size(); }
    size_t RowAt(size_t place) const { return m_hasPlaces ? m_places[place] : place; }
    /// The rows of all places; nothing while places are rows.
    std::optional<std::vector<uint32_t>> Places() const { return m_hasPlaces ? std::optional(m_places) : std::nullopt; }

    std::wstring Text(size_t row, RowColumn column) const;
    /// The name before: after a run what the row was called before it.
    const std::wstring& OldName(size_t row) const;
    /// The name after: after a run what the row is called now, or what it is to be called if the run goes on.
    const std::wstring& NewName(size_t row) const;
    /// The longest text of each kind that the status column has to show, and the longest location.
    std::vector<std::wstring> LongestStatuses() const;
    std::wstring LongestLocation() const;
    bool IsChecked(size_t row) const { return !(*m_rows)[row]->isLeftOut; }
    RowMark Mark(size_t row) const { return row < m_marks.size() ? m_marks[row] : RowMark::None; }
    /// The marks of all places.
    std::vector<RowMark> MarksOfPlaces() const;

private:
    void Count();
    void Arrange();

    Quorvane::SDK::Words m_say;
    RowSnapshot m_rows = std::make_shared<const RenameItems>();
    std::shared_ptr<const Preview> m_preview;   // null: nothing is known
    std::shared_ptr<const RunResult> m_result;  // after a run
    bool m_isRestore = false;
    bool m_wantsChangesOnly = false;
    bool m_wantsProblemsFirst = false;
    bool m_hasPlaces = false;
    std::vector<RowMark> m_marks;
    std::vector<uint32_t> m_places;
    RowCounts m_counts;
};

/// What became of all rows of a run that was stopped, once the rest of it has ended. `rest`: the row that each outcome
/// of `now` is for.
std::shared_ptr<const RunResult> WithRest(const RunResult& stopped, const RunResult& now,
                                          const std::vector<uint32_t>& rest);

/// Copies of the rows under the names that they have now, ready for another rule. Rows within a folder that was renamed
/// by the same run follow it.
RenameItems RowsAfterRun(const RenameItems& rows, const std::vector<RowOutcome>& outcomes);

}  // namespace BatchRename
