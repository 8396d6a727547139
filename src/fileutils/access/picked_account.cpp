#include "fileutils/access/picked_account.h"

#include <cwchar>

#include "win32/text.h"

namespace FileUtils {
namespace {

constexpr std::wstring_view kPrefix = L"WinNT://";

bool HasPrefix(std::wstring_view path) {
    return Win32::EqualIgnoringCase(path.substr(0, kPrefix.size()), kPrefix);
}

/// Cuts the last part off a path; it is the whole path when there is no separator.
std::wstring_view TakeLastPart(std::wstring_view& path) {
    const size_t separator = path.rfind(L'/');
    const std::wstring_view part = separator == std::wstring_view::npos ? path : path.substr(separator + 1);
    path = separator == std::wstring_view::npos ? std::wstring_view() : path.substr(0, separator);
    return part;
}

}  // namespace

std::wstring AccountOfSelection(std::wstring_view directoryPath, std::wstring_view name) {
    if (!HasPrefix(directoryPath)) return std::wstring(name);
    std::wstring_view path = directoryPath.substr(kPrefix.size());
    path = path.substr(0, path.find(L','));
    std::wstring account(TakeLastPart(path));
    const std::wstring_view domain = TakeLastPart(path);
    if (account.empty()) return std::wstring(name);
    return domain.empty() ? account : std::wstring(domain) + L'\\' + account;
}

}  // namespace FileUtils
