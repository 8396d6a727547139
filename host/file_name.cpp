#include "host/file_name.h"

#include <algorithm>

namespace QVHost {

bool IsFileName(std::wstring_view name) {
    constexpr std::wstring_view kForbidden = L"\\/:*?\"<>|";
    // The system would silently drop a dot or a blank at the end.
    if (name.empty() || name.back() == L' ' || name.back() == L'.') return false;
    return std::ranges::none_of(
        name, [&](wchar_t unit) { return unit < L' ' || kForbidden.find(unit) != std::wstring_view::npos; });
}

}  // namespace QVHost
