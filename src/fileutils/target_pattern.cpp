#include "fileutils/target_pattern.h"

#include <algorithm>

#include "win32/file_name.h"

namespace FileUtils {
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

std::wstring WhyNotAFileName(const std::wstring& pattern) {
    if (pattern.empty()) return L"Save as needs a file name, such as *_new.*";
    // The target lies beside its original, so a path is no name either.
    std::wstring name = pattern;
    std::ranges::replace(name, L'*', L'x');
    const Win32::NameCheck check = Win32::CheckFileName(name);
    if (check.fault == Win32::NameFault::InvalidCharacter)
        return L"A file name has none of \\ / : < > | \" ? in it. A * stands for the original's name.";
    return Win32::DescribeNameFault(name, check);
}

std::wstring ProposedFileName(bool savesAs, const std::wstring& present, const wchar_t* proposal) {
    return savesAs && present.empty() ? proposal : present;
}

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

}  // namespace FileUtils
