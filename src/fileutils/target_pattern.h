// target_pattern.h - the "File name" field of the dialogs: what can stand in it, what is proposed, and what it makes of
// a file's name.
#pragma once

#include <string>
#include <string_view>

namespace FileUtils {

/// Why this cannot be the file name of "Save as", for people to read; "" when it can.
std::wstring WhyNotAFileName(const std::wstring& pattern);

/// What the field should hold when a target is chosen: what is there, and for "Save as" without any a proposal.
std::wstring ProposedFileName(bool savesAs, const std::wstring& present, const wchar_t* proposal);

/// The target's file name from a "Save as" pattern and the source's file name.
///
/// Without a "*" the pattern is the name; an empty pattern gives an empty name. Otherwise the pattern is split at its
/// last dot, every "*" before it stands for the source's name without extension, every "*" after it for the extension:
/// "*.*" keeps the name, "*_new.*" turns a.b.txt into a.b_new.txt. A pattern without a dot has "*" for the whole name
/// ("*.bak" would lose the extension, "*_copy" keeps it inside). A source without a dot leaves no dot at the end.
std::wstring ExpandTargetName(std::wstring_view pattern, std::wstring_view sourceFileName);

}  // namespace FileUtils
