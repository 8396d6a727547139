#include "security/universal_names.h"

#include <string_view>
#include <vector>

#include "win32/text.h"

namespace Security {
namespace {

constexpr DWORD kUniversalName = 1;   // UNIVERSAL_NAME_INFO_LEVEL
constexpr size_t kShortestShare = 4;  // units
constexpr DWORD kUsualSize = 1024;    // bytes
constexpr std::wstring_view kLongShare = LR"(\\?\UNC\)";

/// UNIVERSAL_NAME_INFOW, whose text follows it in the same buffer.
struct UniversalName {
    const wchar_t* text;
};

std::wstring Ask(const std::wstring& drive, const SecuritySystem& system) {
    std::vector<UniversalName> buffer(kUsualSize / sizeof(UniversalName));
    DWORD size = kUsualSize;
    DWORD error = system.getUniversalName(drive.c_str(), kUniversalName, buffer.data(), &size);
    if (error == ERROR_MORE_DATA && size > kUsualSize) {
        buffer.resize(size / sizeof(UniversalName) + 1);
        error = system.getUniversalName(drive.c_str(), kUniversalName, buffer.data(), &size);
    }
    return error == ERROR_SUCCESS && buffer.front().text ? buffer.front().text : L"";
}

}  // namespace

bool UniversalNames::Find(const std::wstring& path, const SecuritySystem& system, std::wstring& name) {
    if (path.size() < 2 || path[1] != L':') return false;
    const wchar_t letter = Win32::UpperAscii(path[0]);
    {
        const std::lock_guard lock(m_mutex);
        const auto known = m_names.find(letter);
        if (known != m_names.end()) {
            name = known->second;
            return true;
        }
    }
    // Not under the lock: the network may take its time.
    std::wstring found = Ask(std::wstring(1, letter) + L":\\", system);
    if (found.size() < kShortestShare) return false;
    const std::lock_guard lock(m_mutex);
    m_names.insert_or_assign(letter, found);
    name = std::move(found);
    return true;
}

void UniversalNames::Clear() {
    const std::lock_guard lock(m_mutex);
    m_names.clear();
}

std::wstring ServerOf(const std::wstring& sharePath) {
    std::wstring_view rest = sharePath;
    if (rest.starts_with(kLongShare))
        rest.remove_prefix(kLongShare.size());
    else if (rest.starts_with(LR"(\\)") && !rest.starts_with(LR"(\\?\)"))
        rest.remove_prefix(2);
    else
        return {};
    return std::wstring(rest.substr(0, rest.find(L'\\')));
}

}  // namespace Security
