// path.h - path texts: long paths, full paths, cutting a path into its parts. Touches no file.
#pragma once

#include <string>
#include <string_view>

namespace Win32 {

/// The absolute form of `path` (either slash, relative or not), of any length. Gives `path` back unchanged when it
/// begins with `\\?\`, or when the system cannot form it; the call that uses it then reports the error.
std::wstring FullPath(const std::wstring& path);

/// The form of `path` that the file functions take at any length: unchanged while it is short, else absolute with the
/// prefix `\\?\` (`\\?\UNC\` for a share). A path that already begins with `\\?\` or `\\.\` is left alone.
std::wstring ExtendedPath(const std::wstring& path);

/// The absolute form of `path` with that prefix, of any length: what follows it is taken letter by letter, so that a
/// name may end in a dot or a blank, or be a device's.
std::wstring VerbatimPath(const std::wstring& path);

/// Everything up to and including the last `\` or `/`; empty when there is none.
std::wstring_view FolderOf(std::wstring_view path);

/// Everything after the last `\` or `/`.
std::wstring_view FileNameOf(std::wstring_view path);

/// A file name cut at its last dot. Without a dot the extension is empty; the dot belongs to neither part.
struct NameParts {
    std::wstring_view stem;
    std::wstring_view extension;
    bool hasDot = false;  // tells "name." from "name"
};
NameParts SplitAtLastDot(std::wstring_view fileName);

/// `folder` without the separators at its end; "C:\\" keeps its own.
std::wstring_view WithoutSeparator(std::wstring_view folder);

/// `folder` and `name` with exactly one separator between them; an empty folder adds none.
std::wstring JoinPath(std::wstring_view folder, std::wstring_view name);

}  // namespace Win32
