#include "batchrename/model/row_list.h"

#include <unordered_map>
#include <utility>

#include "win32/path.h"
#include "win32/text.h"

namespace BatchRename {
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
    Filter();
}

void RowList::Count() {
    // Nothing of the former rows stays, even where memory ends below: a place must never lead beyond the rows.
    m_marks.clear();
    m_places.clear();
    m_isFiltered = false;
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
    Filter();
}

void RowList::Filter() {
    m_places.clear();
    m_isFiltered = m_wantsChangesOnly && m_marks.size() == m_rows->size();
    if (!m_isFiltered) return;
    for (size_t row = 0; row < m_marks.size(); ++row)
        if (m_marks[row] != RowMark::None) m_places.push_back(static_cast<uint32_t>(row));
}

const std::wstring& RowList::OldName(size_t row) const {
    return m_result ? m_result->rows[row]->currentName : CurrentName(row);
}

const std::wstring& RowList::NewName(size_t row) const {
    if (m_result) return m_result->rows[row]->newName;
    if (!m_preview || row < m_preview->first || row - m_preview->first >= m_preview->computed.size()) return kUnknown;
    return m_preview->computed[row - m_preview->first]->newName;
}

std::wstring RowList::Text(size_t row, RowColumn column) const {
    switch (column) {
        case RowColumn::CurrentName: return CurrentName(row);
        case RowColumn::NewName: return NewName(row);
        case RowColumn::Location: return (*m_rows)[row]->location;
        case RowColumn::Status: break;
    }
    if (m_result && row < m_result->outcomes.size()) return StatusOfOutcome(m_result->outcomes[row], m_isRestore);
    if (m_preview && m_preview->IsComplete()) return StatusOfPlan(*m_preview->computed[row], m_preview->plans[row]);
    return {};
}

std::vector<RowMark> RowList::MarksOfPlaces() const {
    std::vector<RowMark> marks(PlaceCount());
    for (size_t place = 0; place < marks.size(); ++place) marks[place] = Mark(RowAt(place));
    return marks;
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
        copy->hostOrder = rows[row]->hostOrder;
        after.push_back(std::move(copy));
    }
    return after;
}

}  // namespace BatchRename
