#include "host/app/selection.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <unordered_set>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/unix_paths.h"
#include "host/contract/whole_file.h"
#include "win32/file_name.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

using TakePath = std::function<void(const std::wstring& path)>;

/// The text of a list in UTF-16, told by its mark; nothing for any other.
std::optional<std::wstring> TextOfUtf16(std::string_view bytes) {
    const bool isBigEndian = bytes.starts_with("\xFE\xFF");
    if (!isBigEndian && !bytes.starts_with("\xFF\xFE")) return std::nullopt;
    std::wstring text;
    for (size_t at = 2; at + 1 < bytes.size(); at += 2) {
        const auto first = static_cast<uint8_t>(bytes[at]);
        const auto second = static_cast<uint8_t>(bytes[at + 1]);
        text += static_cast<wchar_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    }
    return text;
}

void TakeLines(std::wstring_view text, const TakeLine& take) {
    for (size_t number = 1; !text.empty(); ++number) {
        const size_t end = std::min(text.find(L'\n'), text.size());
        std::wstring_view line = text.substr(0, end);
        if (line.ends_with(L'\r')) line.remove_suffix(1);
        take(line, number);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

void ReadPaths(const std::wstring& listFile, std::istream& in, const TakePath& take) {
    std::wstring path;
    ForEachLineOfList(listFile, L"list of files", in, [&](std::wstring_view line, size_t number) {
        // No name holds quotes; lists that are copied from a file manager have them around each path.
        if (line.size() > 1 && line.front() == L'"' && line.back() == L'"') line = line.substr(1, line.size() - 2);
        // Lists such as `find -print0` makes; the system would take what stands before the zero for the path.
        if (line.find(L'\0') != std::wstring_view::npos)
            throw UsageError(L"line " + std::to_wstring(number) + L" of " + NameOfList(listFile) +
                             L" holds a zero character; a list has a path a line, in UTF-8 or, with a mark, UTF-16");
        path = line;
        if (!path.empty()) take(path);
    });
}

/// A path as it was typed, or, where its name has wildcards and is nobody's, what the wildcards match, in order of
/// names: no shell of this system does that. Hidden items are left out, as `dir` leaves them out.
void TakeTyped(const std::wstring& typed, const TakePath& take) {
    const std::wstring pattern(Win32::FileNameOf(typed));
    const std::wstring folder(Win32::FolderOf(typed));
    if (pattern.find_first_of(L"*?") == std::wstring::npos || Win32::Exists(FullUserPath(typed))) {
        take(typed);
        return;
    }
    std::vector<Win32::FolderEntry> entries;
    const uint32_t error = Win32::ListFolder(FullUserPath(folder.empty() ? L"." : folder), pattern, entries);
    if (error != ERROR_SUCCESS) throw UsageError(L"cannot look for " + typed + L": " + DescribeError(error));
    std::erase_if(entries, [](const auto& entry) { return (entry.attributes & FILE_ATTRIBUTE_HIDDEN) != 0; });
    if (entries.empty()) throw UsageError(L"there is no file or folder " + typed);
    std::ranges::sort(entries, {}, &Win32::FolderEntry::name);
    for (const Win32::FolderEntry& entry : entries) {
        const std::wstring path = folder + entry.name;
        if (!Win32::IsFileName(entry.name) && Win32::FileNameOf(FullUserPath(path)) != entry.name)
            throw UsageError(L"\"" + path + L"\" leads to another name; give its full path after \\\\?\\");
        take(path);
    }
}

}  // namespace

std::wstring NameOfList(const std::wstring& listFile) {
    return listFile == L"-" ? L"the standard input" : listFile;
}

void ForEachLineOfList(const std::wstring& listFile, const std::wstring& what, std::istream& in, const TakeLine& take) {
    std::string bytes;
    if (listFile == L"-") {
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    } else {
        const uint32_t error = ReadWholeFile(FullUserPath(listFile), bytes);
        if (error != ERROR_SUCCESS)
            throw UsageError(L"cannot read the " + what + L" " + listFile + L": " + DescribeError(error));
    }
    if (const std::optional<std::wstring> text = TextOfUtf16(bytes)) return TakeLines(*text, take);
    size_t number = 0;
    std::wstring wide;
    for (const std::string_view line : LinesOf(bytes)) {
        ++number;
        if (!FromUtf8(line, wide))
            throw UsageError(L"line " + std::to_wstring(number) + L" of " + NameOfList(listFile) +
                             L" is neither UTF-8 nor UTF-16 with a mark");
        take(wide, number);
    }
}

void ForEachSelectedPath(const std::vector<std::wstring>& given, const std::optional<std::wstring>& listFile,
                         std::istream& in, const TakeSelected& take) {
    FullUserPaths fullPath;
    const auto takeFull = [&](const std::wstring& path) {
        std::wstring& full = fullPath(path);
        // A folder written with its separator is the folder; the item's name is what stands before it.
        full.resize(Win32::WithoutSeparator(full).size());
        take(path, full);
    };
    for (const std::wstring& typed : given) TakeTyped(typed, takeFull);
    if (listFile) ReadPaths(*listFile, in, takeFull);
}

std::vector<std::wstring> SelectedPaths(const std::vector<std::wstring>& given,
                                        const std::optional<std::wstring>& listFile, std::istream& in) {
    std::vector<std::wstring> paths;
    // In exactly these letters: there are folders in which names that differ in case alone are two.
    std::unordered_set<std::wstring> known;
    ForEachSelectedPath(given, listFile, in, [&](const std::wstring& path, const std::wstring& full) {
        if (!known.insert(full).second) return;
        if (!Win32::Exists(full)) RefuseMissingPath(path);
        paths.push_back(full);
    });
    return paths;
}

void RefuseMissingPath(const std::wstring& path) {
    throw UsageError(path.empty() ? L"an empty text is no path" : L"there is no file or folder " + path);
}

}  // namespace QVHost
