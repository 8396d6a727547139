#include "win32/link_check.h"

#include "win32/handle.h"
#include "win32/path.h"
#include "win32/text.h"

namespace Win32 {
namespace {

/// Where the path leads, with every link on its way followed; "" when that is not known.
std::wstring FinalPath(const std::wstring& path) {
    const FileHandle file(CreateFileW(ExtendedPath(path).c_str(), 0,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file) return {};
    std::wstring final(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetFinalPathNameByHandleW(file.Get(), final.data(), static_cast<DWORD>(final.size()), 0);
        const bool fits = length < final.size();
        final.resize(length);
        if (fits) return final;
    }
}

}  // namespace

bool IsLink(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(ExtendedPath(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return true;
    // Not every system marks a link. Names are not compared: one of 8 characters has a longer one as well.
    const std::wstring file = FinalPath(path);
    const std::wstring folder = FinalPath(std::wstring(FolderOf(FullPath(path))));
    return !file.empty() && !folder.empty() && !EqualIgnoringCase(JoinPath(folder, FileNameOf(file)), file);
}

}  // namespace Win32
