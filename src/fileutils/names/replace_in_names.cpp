#include "fileutils/names/replace_in_names.h"

#include "win32/path.h"
#include "win32/text.h"

namespace FileUtils {
namespace {

std::wstring Replaced(const NameReplacement& replacement, std::wstring_view text) {
    // Lower case has the length of the text itself, so that places found in one are places of the other.
    const std::wstring folded = replacement.ignoreCase ? Win32::ToLowerCase(text) : std::wstring(text);
    const std::wstring wanted = replacement.ignoreCase ? Win32::ToLowerCase(replacement.find) : replacement.find;
    std::wstring result;
    size_t at = 0;
    for (size_t found; (found = folded.find(wanted, at)) != std::wstring::npos; at = found + wanted.size()) {
        result += text.substr(at, found - at);
        result += replacement.replacement;
    }
    result += text.substr(at);
    return result;
}

}  // namespace

std::wstring WithTextReplaced(const NameReplacement& replacement, std::wstring_view name, bool isFolder) {
    if (replacement.find.empty()) return std::wstring(name);
    // In both parts the dot between them counts as text like any other.
    if (replacement.part == NamePart::Both) return Replaced(replacement, name);
    const Win32::NameParts parts = isFolder ? Win32::NameParts{name, {}, false} : Win32::SplitAtLastDot(name);
    std::wstring result;
    const bool inName = replacement.part == NamePart::Name;
    result += inName ? Replaced(replacement, parts.stem) : std::wstring(parts.stem);
    if (parts.hasDot) result += L'.';
    result += inName ? std::wstring(parts.extension) : Replaced(replacement, parts.extension);
    return result;
}

}  // namespace FileUtils
