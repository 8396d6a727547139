// target_name.h - what a pattern for the names of targets makes of the names of files, and which two would be one.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Win32 {

/// The target's file name from a "Save as" pattern and the source's file name.
///
/// Without a "*" the pattern is the name; an empty pattern gives an empty name. Otherwise the pattern is split at its
/// last dot, every "*" before it stands for the source's name without extension, every "*" after it for the extension:
/// "*.*" keeps the name, "*_new.*" turns a.b.txt into a.b_new.txt. A pattern without a dot has "*" for the whole name
/// ("*.bak" would lose the extension, "*_copy" keeps it inside). A source without a dot leaves no dot at the end.
std::wstring ExpandTargetName(std::wstring_view pattern, std::wstring_view sourceFileName);

/// The first name of a target that more than one of the files would be written to, each in its own folder: the last
/// result alone would be left. Small and capital letters are the same; "" when each file has a target of its own.
/// `files`: full paths.
std::wstring FindSharedTarget(std::wstring_view pattern, std::span<const std::wstring> files);

}  // namespace Win32
