#include "textio/target_name.h"

namespace QVUtils {
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

std::wstring FreeBackupName(const std::wstring& path, const std::function<bool(const std::wstring&)>& exists) {
    constexpr int kLastAttempt = 9999;
    std::wstring name = path + L".bak";
    for (int attempt = 2; exists(name); ++attempt) {
        if (attempt > kLastAttempt) return {};
        const std::wstring digits = std::to_wstring(attempt);
        name = path;
        name.append(L"_(").append(4 - digits.size(), L'0').append(digits).append(L").bak");
    }
    return name;
}

}  // namespace QVUtils
