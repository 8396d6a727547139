#include "fileutils/target_pattern.h"

#include <algorithm>

namespace FileUtils {

std::wstring WhyNotAFileName(const std::wstring& pattern) {
    if (pattern.empty()) return L"Save as needs a file name, such as *_new.*";
    // The target lies beside its original, so a path is no name either.
    const bool isBad = std::ranges::any_of(pattern, [](wchar_t unit) {
        return unit < L' ' || std::wstring_view(L"\\/:<>|\"?").find(unit) != std::wstring_view::npos;
    });
    if (!isBad) return {};
    return L"A file name has none of \\ / : < > | \" ? in it. A * stands for the original's name.";
}

std::wstring ProposedFileName(bool savesAs, const std::wstring& present, const wchar_t* proposal) {
    return savesAs && present.empty() ? proposal : present;
}

}  // namespace FileUtils
