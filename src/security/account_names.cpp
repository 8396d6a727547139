#include "security/account_names.h"

#include <string_view>
#include <vector>

#include "win32/module.h"
#include "win32/text.h"

namespace Security {
namespace {

constexpr DWORD kLongestName = 1024;     // units
constexpr DWORD kLongestDomain = 256;    // units
constexpr size_t kMostNames = 4096;      // far more owners than any list of files has; then it starts anew
constexpr int kSamCompatibleFormat = 2;  // NameSamCompatible: DOMAIN\name

std::string KeyOf(const std::wstring& machine, PSID sid) {
    std::string key(reinterpret_cast<const char*>(machine.data()), machine.size() * sizeof(wchar_t));
    key.append(static_cast<const char*>(sid), GetLengthSid(sid));
    return key;
}

bool LookUp(const std::wstring& machine, PSID sid, const SecuritySystem& system, std::wstring& text) {
    const wchar_t* const where = machine.empty() ? nullptr : machine.c_str();
    DWORD nameSize = 0;
    DWORD domainSize = 0;
    SID_NAME_USE use = {};
    system.lookupAccountSid(where, sid, nullptr, &nameSize, nullptr, &domainSize, &use);
    if (nameSize == 0) return false;
    std::wstring name(nameSize, L'\0');
    std::wstring domain(domainSize, L'\0');
    if (!system.lookupAccountSid(where, sid, name.data(), &nameSize, domain.data(), &domainSize, &use)) return false;
    name.resize(std::char_traits<wchar_t>::length(name.c_str()));
    domain.resize(std::char_traits<wchar_t>::length(domain.c_str()));
    text = domain.empty() ? name : domain + L'\\' + name;
    return true;
}

}  // namespace

uint32_t AccountSid::Find(const std::wstring& account, const SecuritySystem& system) {
    std::array<wchar_t, kLongestDomain> domain = {};
    auto sidSize = static_cast<DWORD>(m_sid.size());
    DWORD domainSize = kLongestDomain;
    SID_NAME_USE use = {};
    return system.lookupAccountName(nullptr, account.c_str(), m_sid.data(), &sidSize, domain.data(), &domainSize, &use)
               ? ERROR_SUCCESS
               : GetLastError();
}

bool AccountNames::Find(const std::wstring& machine, PSID sid, const SecuritySystem& system, std::wstring& name) {
    std::string key = KeyOf(machine, sid);
    {
        const std::lock_guard lock(m_mutex);
        const auto known = m_names.find(key);
        if (known != m_names.end()) {
            name = known->second;
            return !name.empty();
        }
    }
    // Not under the lock: the answer may come from another machine.
    if (!LookUp(machine, sid, system, name)) name.clear();
    const std::lock_guard lock(m_mutex);
    if (m_names.size() >= kMostNames) m_names.clear();
    m_names.insert_or_assign(std::move(key), name);
    return !name.empty();
}

void AccountNames::Clear() {
    const std::lock_guard lock(m_mutex);
    m_names.clear();
}

std::wstring CurrentUserName() {
    std::array<wchar_t, kLongestName> name = {};
    DWORD size = kLongestName;
    return GetUserNameW(name.data(), &size) ? name.data() : L"";
}

std::wstring CurrentAccountName() {
    using Function = BOOLEAN(WINAPI*)(int format, LPWSTR name, PULONG size);
    const Win32::Module module = Win32::LoadSystemModule(L"secur32.dll");
    const auto getName = Win32::FindFunction<Function>(module, "GetUserNameExW");
    std::array<wchar_t, kLongestName> name = {};
    ULONG size = kLongestName;
    return getName && getName(kSamCompatibleFormat, name.data(), &size) ? name.data() : L"";
}

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
