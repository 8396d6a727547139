#include "security/account_names.h"

#include "win32/module.h"

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
            return true;
        }
    }
    // Not under the lock: the answer may come from another machine.
    if (!LookUp(machine, sid, system, name)) return false;
    const std::lock_guard lock(m_mutex);
    if (m_names.size() >= kMostNames) m_names.clear();
    m_names.insert_or_assign(std::move(key), name);
    return true;
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

}  // namespace Security
