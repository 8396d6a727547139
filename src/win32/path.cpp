#include "win32/path.h"

namespace Win32 {
namespace {

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

std::wstring_view FolderOf(std::wstring_view path) {
    return path.substr(0, NameBegin(path));
}

std::wstring_view FileNameOf(std::wstring_view path) {
    return path.substr(NameBegin(path));
}

NameParts SplitAtLastDot(std::wstring_view fileName) {
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
