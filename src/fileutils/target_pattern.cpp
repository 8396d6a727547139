#include "fileutils/target_pattern.h"

#include <algorithm>

#include "win32/file_name.h"

namespace FileUtils {

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

}  // namespace FileUtils
