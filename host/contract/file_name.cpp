#include "host/contract/file_name.h"

#include <algorithm>
#include <array>

namespace QVHost {
namespace {

constexpr std::array<bool, 128> ForbiddenCharacters() {
    std::array<bool, 128> isForbidden = {};
    for (size_t control = 0; control < ' '; ++control) isForbidden[control] = true;
    for (const wchar_t character : std::wstring_view(L"\\/:*?\"<>|")) isForbidden[character] = true;
    return isForbidden;
}

// A table, because all names of long lists are checked.
constexpr std::array<bool, 128> kIsForbidden = ForbiddenCharacters();

}  // namespace

bool IsFileName(std::wstring_view name) {
    // The system would silently drop a dot or a blank at the end.
    if (name.empty() || name.back() == L' ' || name.back() == L'.') return false;
    return std::ranges::none_of(name, [](wchar_t unit) { return unit < kIsForbidden.size() && kIsForbidden[unit]; });
}

}  // namespace QVHost
