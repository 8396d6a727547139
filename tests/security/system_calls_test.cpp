// What the system is asked for, argument by argument, by the functions that do little else: each call is replaced by
// one that writes down what it gets and what the process may do at that moment.
#include <sstream>

#include <sddl.h>

#include "security/enabled_privileges.h"
#include "security/ntfs_prop.h"
#include "security/ntfs_tools.h"
#include "support/replaced_imports.h"
#include "support/temporary_folder.h"

namespace {

using namespace Security;
using QVTest::TemporaryFolder;
using Words = std::vector<std::wstring>;

Words g_calls;

std::wstring Shown(const wchar_t* text) {
    return text ? text : L"-";
}
std::wstring Shown(uint32_t number) {
    std::wostringstream text;
    text << std::hex << number;
    return text.str();
}
std::wstring ShownSid(PSID sid) {
    wchar_t* text = nullptr;
    if (!sid || !ConvertSidToStringSidW(sid, &text)) return L"-";
    const Win32::LocalMemory memory(text);
    return text;
}
std::wstring ShownList(const ACL* list) {
    return list ? std::to_wstring(list->AceCount) : L"-";
}

template <class... Arguments>
void Note(std::wstring call, const Arguments&... arguments) {
    ((call += L' ' + std::wstring(arguments)), ...);
    for (const wchar_t* privilege : {SE_SECURITY_NAME, SE_BACKUP_NAME, SE_RESTORE_NAME, SE_TAKE_OWNERSHIP_NAME})
        if (QVTest::IsEnabled(privilege)) call += std::wstring(L" ") + privilege;
    g_calls.push_back(call);
}

BOOL WINAPI GetFile(LPCWSTR path, SECURITY_INFORMATION parts, PSECURITY_DESCRIPTOR descriptor, DWORD size,
                    LPDWORD needed) {
    Note(L"GetFile", path, Shown(parts));
    return GetFileSecurityW(L".", parts, descriptor, size, needed);
}

DWORD WINAPI Get(LPCWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID* owner, PSID* group, PACL* list,
                 PACL* systemList, PSECURITY_DESCRIPTOR* descriptor) {
    const bool isListAlone = !owner && !group && list && !systemList;
    Note(L"Get", path, Shown(type), Shown(parts), isListAlone ? L"list" : L"more");
    *descriptor = LocalAlloc(LPTR, sizeof(ACL));
    *list = static_cast<ACL*>(*descriptor);
    InitializeAcl(*list, sizeof(ACL), ACL_REVISION);
    return ERROR_SUCCESS;
}

DWORD WINAPI Set(LPWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID owner, PSID group, PACL list,
                 PACL systemList) {
    Note(L"Set", path, Shown(type), Shown(parts), ShownSid(owner), ShownSid(group), ShownList(list),
         ShownList(systemList));
    return ERROR_SUCCESS;
}

DWORD WINAPI GetRights(PACL, PTRUSTEEW trustee, PACCESS_MASK mask) {
    Note(L"GetRights", trustee->TrusteeForm == TRUSTEE_IS_NAME ? trustee->ptstrName : L"?");
    *mask = 7;
    return ERROR_SUCCESS;
}

BOOL WINAPI FindName(LPCWSTR machine, LPCWSTR account, PSID sid, LPDWORD sidSize, LPWSTR domain, LPDWORD domainSize,
                     PSID_NAME_USE use) {
    Note(L"FindName", Shown(machine), account, Shown(*sidSize), Shown(*domainSize));
    return LookupAccountNameW(nullptr, account, sid, sidSize, domain, domainSize, use);
}

LONG WINAPI Query(HANDLE file, void*, void*, ULONG size, ULONG informationClass) {
    Note(L"Query", GetFileType(file) == FILE_TYPE_DISK ? L"file" : L"?", Shown(size), Shown(informationClass));
    return 0;
}

decltype(&CreateFileW) g_open = nullptr;
HANDLE WINAPI Open(LPCWSTR path, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security, DWORD creation,
                   DWORD flags, HANDLE pattern) {
    Note(L"Open", Shown(access), Shown(sharing), Shown(creation), Shown(flags));
    return g_open(path, access, sharing, security, creation, flags, pattern);
}

TEST(SecurityCalls, HaveTheseArguments) {
    SecuritySystem system = RealSystem();
    system.getFileSecurity = GetFile;
    system.getNamedSecurityInfo = Get;
    system.setNamedSecurityInfo = Set;
    system.getEffectiveRights = GetRights;
    system.lookupAccountName = FindName;
    system.queryInformationFile = Query;
    const NTFSTools tools(system);
    const TemporaryFolder folder;
    const std::wstring file = folder.Write(L"a", "x");
    const QVTest::ReplacedImport open(GetModuleHandleW(nullptr), "CreateFileW", reinterpret_cast<void*>(&Open));
    g_open = reinterpret_cast<decltype(g_open)>(open.Original());
    std::wstring text;
    uint32_t mask = 0;
    const std::wstring findName = L"FindName - Everyone 100 100";
    const std::tuple<const char*, std::function<void()>, Words> cases[] = {
        {"the owner's name", [&] { tools.GetOwnerName(L"C:\\a", false, text); }, {L"GetFile C:\\a 1"}},
        {"what the log keeps", [&] { text = tools.DescribeOwnerAndList(L"C:\\a"); }, {L"GetFile C:\\a 5"}},
        {"the rights",
         [&] { CACLInfo(L"C:\\a", system).GetEffectiveRights(mask); },
         {L"GetFile C:\\a 4", L"GetRights CURRENT_USER"}},
        {"a new owner", [&] { tools.SetOwner(L"C:\\a", L"Everyone"); }, {findName, L"Set C:\\a 1 1 S-1-1-0 - - -"}},
        {"on a share",
         [&] { tools.SetOwner(L"\\\\s\\a", L"Everyone"); },
         {findName, L"Set \\\\s\\a 4 1 S-1-1-0 - - -"}},
        {"a grant",
         [&] { tools.GrantAccess(L"C:\\a", L"Everyone", 1); },
         {findName, L"Get C:\\a 1 4 list", L"Set C:\\a 1 4 - - 1 -"}},
        {"a reset",
         [&] { tools.RemoveAllEntries(L"C:\\a"); },
         {L"Get C:\\a 1 4 list", L"Set C:\\a 1 20000004 - - - - SeSecurityPrivilege", L"Set C:\\a 1 4 - - 0 -"}},
        {"streams of a file", [&] { QueryStreamFigures(file, system); }, {L"Open 0 3 3 0", L"Query file 10000 16"}},
        {"streams of a folder",
         [&] { QueryStreamFigures(folder.Path(), system); },
         {L"Open 0 3 3 2000000 SeBackupPrivilege", L"Query file 10000 16 SeBackupPrivilege"}},
    };
    for (const auto& [why, ask, calls] : cases) {
        g_calls.clear();
        ask();
        EXPECT_EQ(g_calls, calls) << why;
    }
    EXPECT_EQ(mask, 7u);
    EXPECT_TRUE(text.starts_with(L"O:S-1-") && text.find(L"D:") != text.npos) << testing::PrintToString(text);
    EXPECT_EQ(NTFSTools().DescribeOwnerAndList(folder / L"none"), L"");
    Note(L"");
    EXPECT_EQ(g_calls.back(), L"") << "every privilege is given back";
}

TEST(AccountNames, RemembersThatAnAccountHasNoName) {
    SecuritySystem system = RealSystem();
    static int lookUps = 0;
    system.lookupAccountSid = [](LPCWSTR, PSID, LPWSTR, LPDWORD, LPWSTR, LPDWORD, PSID_NAME_USE) -> BOOL {
        ++lookUps;
        return FALSE;
    };
    const NTFSTools tools(system);
    std::wstring name;
    NTFSTools::ClearCaches();
    for (int time = 0; time < 2; ++time) EXPECT_FALSE(tools.GetOwnerName(L".", false, name));
    EXPECT_EQ(lookUps, 1);
    NTFSTools::ClearCaches();
    EXPECT_TRUE(NTFSTools().GetOwnerName(L".", false, name));
}

}  // namespace
