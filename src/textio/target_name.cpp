#include "textio/target_name.h"

#include <algorithm>

#include "win32/text.h"

namespace QVUtils {
namespace {

constexpr size_t kLongestName = 255;  // units, of every file system in use

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

/// What a device name is compared without: the extension, and the blanks before it.
std::wstring_view BaseOf(std::wstring_view name) {
    name = name.substr(0, name.find(L'.'));
    while (name.ends_with(L' ')) name.remove_suffix(1);
    return name;
}

bool IsDeviceName(std::wstring_view name) {
    std::wstring base(BaseOf(name));
    std::ranges::transform(base, base.begin(), Win32::UpperAscii<wchar_t>);
    for (const wchar_t* device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$", L"CLOCK$"})
        if (base == device) return true;
    // COM and LPT with a digit, of which the system knows three written small and high up too.
    const bool hasNumber = base.starts_with(L"COM") || base.starts_with(L"LPT");
    return hasNumber && base.size() == 4 &&
           std::wstring_view(L"0123456789\u00B9\u00B2\u00B3").find(base[3]) != std::wstring_view::npos;
}

}  // namespace

bool IsPlainFileName(std::wstring_view name) {
    if (name.empty() || name.size() > kLongestName || name.ends_with(L'.') || name.ends_with(L' ')) return false;
    const auto isForbidden = [](wchar_t unit) {
        return unit < L' ' || std::wstring_view(L"<>:\"/\\|?*").find(unit) != std::wstring_view::npos;
    };
    return std::ranges::none_of(name, isForbidden) && !IsDeviceName(name);
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
