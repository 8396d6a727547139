// quick_rename.h - new names without a question about how: case, and one character for another. Texts in, texts out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace FileUtils {

/// The name that command `id` gives to a file or folder called `name`. An id that is none leaves the name as it is.
///
/// - 30000 turns a to z into upper case and nothing else: names with other letters keep them. compatibility: 24
/// - 30001 turns every letter into lower case.
/// - 30002 makes the first letter of each word upper case and all others lower case. Words begin after a blank, "."
///   and "_", but a file's last "." begins none, so that its extension comes out in lower case.
/// - 30003 to 30008 put one character in another's place: in a file's name before its last ".", in the whole name of a
///   folder.
std::wstring QuickRenamed(uint32_t id, std::wstring_view name, bool isFolder);

}  // namespace FileUtils
