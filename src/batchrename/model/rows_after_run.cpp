#include "batchrename/model/rows_after_run.h"

#include <unordered_map>

#include "win32/path.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

class NewPlaces {
public:
    NewPlaces(const RenameItems& rows, const std::vector<RowOutcome>& outcomes) {
        for (size_t row = 0; row < rows.size(); ++row)
            if (rows[row]->isFolder && outcomes[row].name != rows[row]->currentName)
                m_renamed.emplace(Win32::ToUpperCase(Win32::JoinPath(rows[row]->location, rows[row]->currentName)),
                                  outcomes[row].name);
    }

    /// What the folder of a row is called now.
    std::wstring Of(const std::wstring& folder) {
        if (m_renamed.empty()) return folder;
        const auto known = m_folders.find(folder);
        if (known != m_folders.end()) return known->second;
        const std::wstring above(Win32::WithoutSeparator(Win32::FolderOf(folder)));
        const bool isRoot = above.empty() || above.size() >= folder.size();
        const auto renamed = m_renamed.find(Win32::ToUpperCase(folder));
        const std::wstring name =
            renamed != m_renamed.end() ? renamed->second : std::wstring(Win32::FileNameOf(folder));
        return m_folders[folder] = isRoot ? folder : Win32::JoinPath(Of(above), name);
    }

private:
    std::unordered_map<std::wstring, std::wstring> m_renamed;  // from the folded path of a folder to its new name
    std::unordered_map<std::wstring, std::wstring> m_folders;
};

}  // namespace

RenameItems RowsAfterRun(const RenameItems& rows, const std::vector<RowOutcome>& outcomes) {
    NewPlaces places(rows, outcomes);
    RenameItems after;
    after.reserve(rows.size());
    for (size_t row = 0; row < rows.size(); ++row) {
        auto copy = std::make_shared<BatchRenameItem>();
        copy->location = places.Of(rows[row]->location);
        copy->currentName = outcomes[row].name;
        copy->newName = outcomes[row].name;
        copy->isFolder = rows[row]->isFolder;
        copy->hostOrder = rows[row]->hostOrder;
        after.push_back(std::move(copy));
    }
    return after;
}

}  // namespace BatchRename
