#include "win32/path.h"

#include "win32/windows.h"

namespace Win32 {
namespace {

// A folder must leave room for a short file name in it (12 units), so folders stop working before files do; taking the
// lower limit for both is always right.
constexpr size_t kShortPathLimit = MAX_PATH - 12;

bool IsSeparator(wchar_t unit) {
    return unit == L'\\' || unit == L'/';
}

/// Where the last name of the path begins; 0 for a path without a separator.
size_t NameBegin(std::wstring_view path) {
    size_t begin = path.size();
    while (begin > 0 && !IsSeparator(path[begin - 1])) --begin;
    return begin;
}

}  // namespace

std::wstring FullPath(const std::wstring& path) {
    std::wstring full(kShortPathLimit, L'\0');
    for (;;) {
        const DWORD length = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        if (length == 0) return path;
        const bool fits = length < full.size();
        full.resize(length);
        if (fits) return full;
    }
}

std::wstring ExtendedPath(const std::wstring& path) {
    if (path.starts_with(LR"(\\?\)") || path.starts_with(LR"(\\.\)")) return path;
    // A short relative path can still be a long absolute one, but the system resolves and checks it by itself; only
    // texts that are long as they stand, or become so, need the prefix.
    if (path.size() < kShortPathLimit && path.size() >= 2 && (path[1] == L':' || IsSeparator(path[0]))) return path;
    std::wstring full = FullPath(path);
    if (full.size() < kShortPathLimit) return path;
    if (full.starts_with(LR"(\\)")) return LR"(\\?\UNC)" + full.substr(1);
    return LR"(\\?\)" + full;
}

std::wstring_view FolderOf(std::wstring_view path) {
    return path.substr(0, NameBegin(path));
}

std::wstring_view FileNameOf(std::wstring_view path) {
    return path.substr(NameBegin(path));
}

NameParts SplitName(std::wstring_view fileName) {
    const size_t dot = fileName.rfind(L'.');
    if (dot == std::wstring_view::npos) return {fileName, {}, false};
    return {fileName.substr(0, dot), fileName.substr(dot + 1), true};
}

std::wstring_view WithoutSeparator(std::wstring_view folder) {
    constexpr size_t kDrive = 3;  // "C:\\"
    while (folder.size() > kDrive && (folder.back() == L'\\' || folder.back() == L'/')) folder.remove_suffix(1);
    return folder;
}

std::wstring JoinPath(std::wstring_view folder, std::wstring_view name) {
    std::wstring path;
    path.reserve(folder.size() + 1 + name.size());
    path = folder;
    if (!path.empty() && !IsSeparator(path.back())) path += L'\\';
    path += name;
    return path;
}

}  // namespace Win32
