// folder_rows.h - what a folder holds, as rows of a list: read, put in order, found again. Knows no window.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/contract/file_objects.h"
#include "win32/folder.h"
#include "win32/windows.h"

namespace QVHost {

struct FolderRow {
    Win32::FolderEntry entry;
    std::shared_ptr<FileItem> item = {};        // made when somebody asks for it
    std::vector<std::wstring> properties = {};  // by column; empty while they are not known
    bool isAsked = false;                       // the properties are being worked out

    bool IsFolder() const { return (entry.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
};

enum class RowOrder : uint8_t { Name, Size, Date };

/// Reads `folder`; "" stands for the list of drives. Windows error code; the rows are untouched by a failure.
uint32_t ReadFolder(const std::wstring& folder, std::vector<FolderRow>& rows);

/// Folders stay above files. Numbers in names count as numbers: 2 before 10. Rows that are equal are ordered by name.
void SortRows(std::vector<FolderRow>& rows, RowOrder order, bool isDescending);

/// The folder above; "" (the drives) above a drive, nothing else above a share.
std::wstring FolderAbove(const std::wstring& folder);

/// Which of the rows' names begins with `text`, from `first` on and then from the top; -1 for none.
int FindByBeginning(const std::vector<FolderRow>& rows, const std::wstring& text, int first);

}  // namespace QVHost
