// path_of_system.cpp - the full path of a relative one, which only the system knows.
#include "win32/path.h"
#include "win32/windows.h"

namespace Win32 {
namespace {

// A folder must leave space for a short file name in it (12 units), so folders stop working before files do; taking the
// lower limit for both is always right.
constexpr size_t kShortPathLimit = MAX_PATH - 12;

std::wstring Prefixed(const std::wstring& full) {
    if (full.starts_with(LR"(\\)")) return LR"(\\?\UNC)" + full.substr(1);
    return LR"(\\?\)" + full;
}

}  // namespace

std::wstring FullPath(const std::wstring& path) {
    // The system's function would make such a path lead elsewhere: it drops a dot or a blank at the end.
    if (path.starts_with(LR"(\\?\)")) return path;
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
    if (path.size() < kShortPathLimit && path.size() >= 2 && (path[1] == L':' || (path[0] == L'\\' || path[0] == L'/')))
        return path;
    std::wstring full = FullPath(path);
    return full.size() < kShortPathLimit ? path : Prefixed(full);
}

std::wstring VerbatimPath(const std::wstring& path) {
    const bool isDevice = path.starts_with(LR"(\\?\)") || path.starts_with(LR"(\\.\)");
    return isDevice ? path : Prefixed(FullPath(path));
}

}  // namespace Win32
