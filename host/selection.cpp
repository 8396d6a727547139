#include "host/selection.h"

#include <functional>
#include <iterator>

#include "host/host_error.h"
#include "host/unix_paths.h"
#include "host/whole_file.h"
#include "win32/files.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

using TakePath = std::function<void(const std::wstring& path)>;

void ReadList(const std::wstring& listFile, std::istream& in, const TakePath& take) {
    std::string bytes;
    if (listFile == L"-") {
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    } else {
        const uint32_t error = ReadWholeFile(FullUserPath(listFile), bytes);
        if (error != ERROR_SUCCESS)
            throw UsageError(L"cannot read the list of files " + listFile + L": " + DescribeError(error));
    }
    size_t number = 0;
    std::wstring path;
    for (const std::string_view line : LinesOf(bytes)) {
        ++number;
        if (!FromUtf8(line, path))
            throw UsageError(L"line " + std::to_wstring(number) + L" of " + listFile + L" is not UTF-8");
        if (!path.empty()) take(path);
    }
}

}  // namespace

std::vector<std::wstring> SelectedPaths(const std::vector<std::wstring>& given,
                                        const std::optional<std::wstring>& listFile, std::istream& in,
                                        Existence existence) {
    std::vector<std::wstring> paths;
    FullUserPaths fullPath;
    const auto take = [&](const std::wstring& path) {
        std::wstring full = fullPath(path);
        // A folder written with its separator is the folder; the item's name is what stands before it.
        while (full.size() > 3 && full.back() == L'\\') full.pop_back();
        if (existence == Existence::Checked && !Win32::Exists(full)) RefuseMissingPath(path);
        paths.push_back(std::move(full));
    };
    for (const std::wstring& path : given) take(path);
    if (listFile) ReadList(*listFile, in, take);
    return paths;
}

void RefuseMissingPath(const std::wstring& path) {
    throw UsageError(L"there is no file or folder " + path);
}

}  // namespace QVHost
