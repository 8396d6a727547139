// target_name.h - names of the files that a run writes: "Save as" targets and backups.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace QVUtils {

/// The target's file name from a "Save as" pattern and the source's file name.
///
/// Without a "*" the pattern is the name; an empty pattern gives an empty name. Otherwise the pattern is split at its
/// last dot, every "*" before it stands for the source's name without extension, every "*" behind it for the extension:
/// "*.*" keeps the name, "*_new.*" turns a.b.txt into a.b_new.txt. A pattern without a dot has "*" for the whole name
/// ("*.bak" would lose the extension, "*_copy" keeps it inside). A source without a dot leaves no dot at the end.
std::wstring ExpandTargetName(std::wstring_view pattern, std::wstring_view sourceFileName);

/// The first of `path`.bak, `path`_(0002).bak ... `path`_(9999).bak for which `exists` says no; empty when all exist.
std::wstring FreeBackupName(const std::wstring& path, const std::function<bool(const std::wstring&)>& exists);

}  // namespace QVUtils
