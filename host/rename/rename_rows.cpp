#include "host/rename/rename_rows.h"

#include <algorithm>
#include <map>

#include "host/app/host_text.h"
#include "win32/file_name.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

struct LessIgnoringCase {
    bool operator()(const std::wstring& left, const std::wstring& right) const {
        return CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
    }
};

/// A name beside `path` that exists nowhere.
std::wstring FreePathBeside(const std::wstring& path) {
    const std::wstring stem = std::wstring(Win32::FolderOf(path)) + L"rename-" + std::to_wstring(GetCurrentProcessId());
    for (int number = 0;; ++number) {
        std::wstring candidate = stem + L"-" + std::to_wstring(number) + L".tmp";
        if (!Win32::Exists(candidate)) return candidate;
    }
}

/// True when the folder shows the item in exactly this spelling.
bool IsSpelled(const std::wstring& path) {
    std::vector<std::wstring> names;
    const std::wstring name(Win32::FileNameOf(path));
    return Win32::ListFolder(std::wstring(Win32::FolderOf(path)), name, names) == ERROR_SUCCESS &&
           std::ranges::find(names, name) != names.end();
}

class Renames {
public:
    explicit Renames(std::vector<RenameRow>& rows) : m_rows(rows), m_isOpen(rows.size(), true) {
        for (size_t at = 0; at < rows.size(); ++at) m_holders.emplace(rows[at].path, at);
    }

    /// Renames the row and, before it, all those whose names it has to wait for.
    void Run(size_t first) {
        std::vector<size_t> chain;
        for (size_t at = first; m_isOpen[at];) {
            m_isOpen[at] = false;
            chain.push_back(at);
            if (m_rows[at].error != ERROR_SUCCESS) break;
            const auto holder = m_holders.find(TargetOf(m_rows[at]));
            if (holder == m_holders.end() || holder->second == at) break;
            at = holder->second;
            // The chain bites its own tail: the row bitten makes room.
            if (std::ranges::find(chain, at) != chain.end()) MoveAside(m_rows[at]);
        }
        while (!chain.empty()) {
            Rename(m_rows[chain.back()]);
            chain.pop_back();
        }
    }

private:
    static std::wstring TargetOf(const RenameRow& row) { return std::wstring(Win32::FolderOf(row.path)) + row.newName; }

    static void MoveAside(RenameRow& row) {
        const std::wstring aside = FreePathBeside(row.path);
        row.error = Win32::MoveFileTo(row.now, aside);
        if (row.error == ERROR_SUCCESS) row.now = aside;
    }

    static void Rename(RenameRow& row) {
        if (row.error != ERROR_SUCCESS) return;  // no file name, or it could not make room
        const std::wstring target = TargetOf(row);
        if (target == row.now) return;
        if (EqualIgnoringCase(target, row.now)) MoveAside(row);
        if (row.error == ERROR_SUCCESS) row.error = Win32::MoveFileTo(row.now, target);
        if (row.error == ERROR_SUCCESS)
            row.now = target;
        else if (row.now != row.path && Win32::MoveFileTo(row.now, row.path) == ERROR_SUCCESS)
            row.now = row.path;
    }

    std::vector<RenameRow>& m_rows;
    std::vector<bool> m_isOpen;
    std::map<std::wstring, size_t, LessIgnoringCase> m_holders;
};

}  // namespace

uint32_t RenameOne(const std::wstring& path, const std::wstring& newName, const std::wstring& asideName) {
    if (!Win32::IsFileName(newName)) return ERROR_INVALID_NAME;
    const std::wstring folder(Win32::FolderOf(path));
    const std::wstring target = folder + newName;
    uint32_t error = Win32::MoveFileTo(path, target);
    if (error != ERROR_SUCCESS || !EqualIgnoringCase(path, target) || IsSpelled(target)) return error;
    // The system said yes and did nothing.
    std::wstring aside = asideName.empty() ? FreePathBeside(path) : folder + asideName;
    error = Win32::MoveFileTo(path, aside);
    if (error == ERROR_ALREADY_EXISTS) {
        aside = FreePathBeside(path);
        error = Win32::MoveFileTo(path, aside);
    }
    if (error != ERROR_SUCCESS) return error;
    error = Win32::MoveFileTo(aside, target);
    if (error != ERROR_SUCCESS) Win32::MoveFileTo(aside, path);
    return error;
}

void RenameRows(std::vector<RenameRow>& rows) {
    for (RenameRow& row : rows) {
        row.now = row.path;
        row.error = Win32::IsFileName(row.newName) ? ERROR_SUCCESS : ERROR_INVALID_NAME;
    }
    Renames renames(rows);
    for (size_t at = 0; at < rows.size(); ++at) renames.Run(at);
}

}  // namespace QVHost
