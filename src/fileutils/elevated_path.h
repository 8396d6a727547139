// elevated_path.h - which paths the elevated process takes from a request: those of files and folders, and of nothing
// else that the system gives names to. Texts only.
#pragma once

#include <string_view>

namespace FileUtils {

/// True for the path of a file or folder on a drive (`C:\a`) or a share (`\\server\share\a`), either also with the
/// prefix of long paths (`\\?\C:\a`, `\\?\UNC\server\share\a`). False for a path that depends on a current folder or
/// drive, a key of the registry, a device (also `C:\NUL`), a pipe, and a stream of a file.
bool IsFullFilePath(std::wstring_view path);

/// True for `\\server\USERS\...` and the other names of a registry's root where a share's name stands: the system's
/// calls for access rights take such a path for a key on that machine.
bool IsRemoteRegistryKey(std::wstring_view path);

/// True for what may stand in a symbolic link: the path of a file as above, or one seen from the link.
bool IsSymbolicLinkTarget(std::wstring_view path);

}  // namespace FileUtils
