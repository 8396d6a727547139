#include "win32/folder.h"

#include <string_view>

#include "win32/handle.h"
#include "win32/path.h"

namespace Win32 {
namespace {

template <class Take>
uint32_t ForEachEntry(const std::wstring& folder, const std::wstring& pattern, Take&& take) {
    WIN32_FIND_DATAW entry = {};
    // Without short names, in large blocks: on a share that saves a round trip for each entry.
    const FindHandle find(FindFirstFileExW(ExtendedPath(JoinPath(folder, pattern)).c_str(), FindExInfoBasic, &entry,
                                           FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH));
    if (!find) return GetLastError() == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : GetLastError();
    do {
        const std::wstring_view name = entry.cFileName;
        if (name != L"." && name != L"..") take(entry);
    } while (FindNextFileW(find.Get(), &entry));
    return GetLastError() == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : GetLastError();
}

}  // namespace

uint32_t ListFolder(const std::wstring& folder, const std::wstring& pattern, std::vector<FolderEntry>& entries) {
    entries.clear();
    return ForEachEntry(folder, pattern, [&](const WIN32_FIND_DATAW& entry) {
        const auto joined = [](DWORD high, DWORD low) { return uint64_t{high} << 32 | low; };
        entries.push_back({entry.cFileName, entry.dwFileAttributes, joined(entry.nFileSizeHigh, entry.nFileSizeLow),
                           joined(entry.ftLastWriteTime.dwHighDateTime, entry.ftLastWriteTime.dwLowDateTime)});
    });
}

uint32_t ListFolder(const std::wstring& folder, const std::wstring& pattern, std::vector<std::wstring>& names) {
    names.clear();
    return ForEachEntry(folder, pattern, [&](const WIN32_FIND_DATAW& entry) { names.emplace_back(entry.cFileName); });
}

}  // namespace Win32
