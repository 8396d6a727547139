// unix_paths.h - paths of the system below, where there is one.
//
// Under Wine people and scripts name files as the system below does: `./qv host call FindAndReplace FILE=/tmp/a.txt`.
// Windows takes such a text for a path on the current drive, which is another file. So a path that begins with one
// slash is turned into its drive path first. On Windows nothing is changed.
#pragma once

#include <string>

namespace QVHost {

bool RunsUnderWine();

/// `path` unchanged, or the drive path of a path that begins with exactly one '/' when the process runs under Wine.
std::wstring FromUnixPath(const std::wstring& path);

/// The absolute form of a path given by a person: of either system, relative or not, with either slash.
std::wstring FullUserPath(const std::wstring& path);

/// The same for many paths, most of which lie in the folder of the one before: finding the drive path of a folder takes
/// several calls of the system.
class FullUserPaths {
public:
    /// For the caller to change, until the next path.
    std::wstring& operator()(const std::wstring& path);

private:
    std::wstring m_folder;
    std::wstring m_fullFolder;  // with its separator
    std::wstring m_full;
};

}  // namespace QVHost
