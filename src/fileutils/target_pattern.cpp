#include "fileutils/target_pattern.h"

#include <algorithm>

#include "win32/file_name.h"
#include "win32/target_name.h"

namespace FileUtils {

std::wstring WhyNotATarget(const std::wstring& pattern, std::span<const std::wstring> files) {
    if (pattern.empty()) return L"Save as needs a file name, such as *_new.*";
    // The target lies beside its original, so a path is no name either.
    std::wstring name = pattern;
    std::ranges::replace(name, L'*', L'x');
    const Win32::NameCheck check = Win32::CheckFileName(name);
    if (check.fault == Win32::NameFault::InvalidCharacter)
        return L"A file name has none of \\ / : < > | \" ? in it. A * stands for the original's name.";
    if (check.fault != Win32::NameFault::None) return Win32::DescribeNameFault(name, check);
    const std::wstring shared = Win32::FindSharedTarget(pattern, files);
    if (shared.empty()) return {};
    return L"Several files would be saved as " + shared + L". A * stands for each original's name.";
}

std::wstring ProposedFileName(bool savesAs, const std::wstring& present, const wchar_t* proposal) {
    return savesAs && present.empty() ? proposal : present;
}

}  // namespace FileUtils
