#include "host/selection.h"

#include <iterator>

#include "host/host_error.h"
#include "host/unix_paths.h"
#include "host/whole_file.h"
#include "win32/files.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

std::vector<std::wstring> ReadList(const std::wstring& listFile, std::istream& in) {
    std::string bytes;
    if (listFile == L"-") {
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    } else {
        const uint32_t error = ReadWholeFile(FullUserPath(listFile), bytes);
        if (error != ERROR_SUCCESS)
            throw UsageError(L"cannot read the list of files " + listFile + L": " + DescribeError(error));
    }
    std::vector<std::wstring> paths;
    size_t number = 0;
    for (const std::string_view line : LinesOf(bytes)) {
        ++number;
        std::optional<std::wstring> path = FromUtf8(line);
        if (!path) throw UsageError(L"line " + std::to_wstring(number) + L" of " + listFile + L" is not UTF-8");
        if (!path->empty()) paths.push_back(std::move(*path));
    }
    return paths;
}

}  // namespace

std::vector<std::wstring> SelectedPaths(const std::vector<std::wstring>& given,
                                        const std::optional<std::wstring>& listFile, std::istream& in,
                                        Existence existence) {
    std::vector<std::wstring> paths = given;
    if (listFile) {
        std::vector<std::wstring> further = ReadList(*listFile, in);
        paths.insert(paths.end(), std::make_move_iterator(further.begin()), std::make_move_iterator(further.end()));
    }
    FullUserPaths fullPath;
    for (std::wstring& path : paths) {
        std::wstring full = fullPath(path);
        // A folder written with its separator is the folder; the item's name is what stands before it.
        while (full.size() > 3 && full.back() == L'\\') full.pop_back();
        if (existence == Existence::Checked && !Win32::Exists(full)) RefuseMissingPath(path);
        path = std::move(full);
    }
    return paths;
}

void RefuseMissingPath(const std::wstring& path) {
    throw UsageError(L"there is no file or folder " + path);
}

}  // namespace QVHost
