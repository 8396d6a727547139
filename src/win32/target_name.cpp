#include "win32/target_name.h"

#include <set>

#include "win32/path.h"
#include "win32/text.h"

namespace Win32 {
namespace {

std::wstring ReplaceStars(std::wstring_view pattern, std::wstring_view replacement) {
    std::wstring result;
    for (const wchar_t unit : pattern) {
        if (unit == L'*')
            result += replacement;
        else
            result += unit;
    }
    return result;
}

}  // namespace

std::wstring ExpandTargetName(std::wstring_view pattern, std::wstring_view sourceFileName) {
    if (pattern.find(L'*') == std::wstring_view::npos) return std::wstring(pattern);
    const size_t patternDot = pattern.rfind(L'.');
    if (patternDot == std::wstring_view::npos) return ReplaceStars(pattern, sourceFileName);

    const size_t sourceDot = sourceFileName.rfind(L'.');
    const bool hasExtension = sourceDot != std::wstring_view::npos;
    const std::wstring_view stem = sourceFileName.substr(0, sourceDot);
    const std::wstring_view extension = hasExtension ? sourceFileName.substr(sourceDot + 1) : std::wstring_view();

    std::wstring name = ReplaceStars(pattern.substr(0, patternDot), stem);
    const std::wstring newExtension = ReplaceStars(pattern.substr(patternDot + 1), extension);
    if (!newExtension.empty() || hasExtension) name += L'.' + newExtension;
    return name;
}

std::wstring FindSharedTarget(std::wstring_view pattern, std::span<const std::wstring> files) {
    std::set<std::wstring> targets;
    for (const std::wstring& file : files) {
        std::wstring name = ExpandTargetName(pattern, FileNameOf(file));
        if (!targets.insert(ToUpperCase(JoinPath(FolderOf(file), name))).second) return name;
    }
    return {};
}

}  // namespace Win32
