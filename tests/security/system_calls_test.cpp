// What the system is asked for, argument by argument, by the functions that do little else: each call is replaced by
// one that writes down what it gets and what the process may do at that moment.
#include <cstring>
#include <sstream>

#include <sddl.h>

#include "security/account_names.h"
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
const wchar_t* g_given = L"O:SY";  // what a file has, in the system's text form; this has no list
DWORD g_writeError = ERROR_SUCCESS;
bool g_hasOwnerName = true;

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
std::wstring ShownList(ACL* list) {
    SECURITY_DESCRIPTOR holder;
    InitializeSecurityDescriptor(&holder, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&holder, list != nullptr, list, FALSE);
    return list ? QVTest::TextOfAccessList(&holder) : L"-";
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
    BOOL isPresent = FALSE, isDefault = FALSE;
    *list = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(g_given, SDDL_REVISION_1, descriptor, nullptr) &&
                GetSecurityDescriptorDacl(*descriptor, &isPresent, list, &isDefault));
    return ERROR_SUCCESS;
}

DWORD WINAPI Set(LPWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID owner, PSID group, PACL list,
                 PACL systemList) {
    Note(L"Set", path, Shown(type), Shown(parts), ShownSid(owner), ShownSid(group), ShownList(list),
         ShownList(systemList));
    return g_writeError;
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

BOOL WINAPI FindSid(LPCWSTR machine, PSID sid, LPWSTR name, LPDWORD nameSize, LPWSTR domain, LPDWORD domainSize,
                    PSID_NAME_USE use) {
    if (!name) Note(L"FindSid", Shown(machine));  // the first call asks for the size
    return g_hasOwnerName && LookupAccountSidW(nullptr, sid, name, nameSize, domain, domainSize, use);
}

DWORD WINAPI FindShare(LPCWSTR path, DWORD level, LPVOID buffer, LPDWORD size) {
    constexpr wchar_t kShare[] = L"\\\\server\\share";
    Note(L"FindShare", path, Shown(level));
    EXPECT_LE(sizeof(void*) + sizeof(kShare), *size);
    void* const text = static_cast<std::byte*>(buffer) + sizeof(void*);
    std::memcpy(text, kShare, sizeof(kShare));
    *static_cast<void**>(buffer) = text;
    return ERROR_SUCCESS;
}

/// One named stream of 4,096 bytes on disk.
LONG WINAPI Query(HANDLE file, void*, void* buffer, ULONG size, ULONG informationClass) {
    Note(L"Query", GetFileType(file) == FILE_TYPE_DISK ? L"file" : L"?", Shown(size), Shown(informationClass));
    auto* const bytes = static_cast<uint8_t*>(buffer);
    bytes[0] = 40;
    bytes[40 + 17] = 0x10;
    return 0;
}

decltype(&CreateFileW) g_open = nullptr;
HANDLE WINAPI Open(LPCWSTR path, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security, DWORD creation,
                   DWORD flags, HANDLE pattern) {
    Note(L"Open", Shown(access), Shown(sharing), Shown(creation), Shown(flags));
    return g_open(path, access, sharing, security, creation, flags, pattern);
}

const SecuritySystem& NotingSystem() {
    static SecuritySystem system = RealSystem();
    system.getFileSecurity = GetFile;
    system.getNamedSecurityInfo = Get;
    system.setNamedSecurityInfo = Set;
    system.getEffectiveRights = GetRights;
    system.lookupAccountName = FindName;
    system.lookupAccountSid = FindSid;
    system.getUniversalName = FindShare;
    system.queryInformationFile = Query;
    return system;
}

TEST(SecurityCalls, HaveTheseArguments) {
    const SecuritySystem& system = NotingSystem();
    const NTFSTools tools(system);
    const TemporaryFolder folder;
    const std::wstring file = folder.Write(L"a", "x");
    const QVTest::ReplacedImport open(GetModuleHandleW(nullptr), "CreateFileW", reinterpret_cast<void*>(&Open));
    g_open = reinterpret_cast<decltype(g_open)>(open.Original());
    std::wstring text;
    uint32_t mask = 0;
    const auto tell = [](uint32_t result) { Note(L"= " + std::to_wstring(result)); };
    const auto give = [&](const wchar_t* path) { tell(tools.SetOwner(path, L"Everyone")); };
    const auto grant = [&] { tell(tools.GrantAccess(L"C:\\a", L"Everyone", 0x1200A9)); };
    const auto reset = [&] { tell(tools.RemoveAllEntries(L"C:\\a")); };
    const auto look = [&](const std::wstring& path) {
        EXPECT_EQ(QueryStreamFigures(path, system), (StreamFigures{1, 4096}));
    };
    const std::wstring findName = L"FindName - Everyone 100 100", get = L"Get C:\\a 1 4 list";
    const wchar_t* const denied = L"D:(D;;0x2;;;AU)(A;ID;FA;;;SY)(A;;0x1;;;BA)";
    const std::wstring granted =
        L"Set C:\\a 1 4 - - D:(A;OICI;DC;;;AU)(A;OICI;FA;;;SY)(A;OICI;CC;;;BA)(A;OICI;0x1200a9;;;WD) -";
    const std::wstring inherits = L"Set C:\\a 1 20000004 - - - - SeSecurityPrivilege";
    const std::wstring emptied = L"Set C:\\a 1 4 - - D: -", backup = L" SeBackupPrivilege";
    const struct {
        const char* why;
        std::function<void()> ask;
        Words calls;
        const wchar_t* given = L"O:SY";
        DWORD writeError = 0;
    } cases[] = {
        {"the log's words", [&] { text = tools.DescribeOwnerAndList(L"C:\\a"); }, {L"GetFile C:\\a 5"}},
        {"the list for rights",
         [&] { CACLInfo(L"a", system).GetEffectiveRights(mask); },
         {L"GetFile a 4", L"GetRights CURRENT_USER"}},
        {"a new owner", [&] { give(L"C:\\a"); }, {findName, L"Set C:\\a 1 1 S-1-1-0 - - -", L"= 0"}},
        {"on a share", [&] { give(L"\\\\s\\a"); }, {findName, L"Set \\\\s\\a 4 1 S-1-1-0 - - -", L"= 5"}, L"", 5},
        {"a grant rewrites every entry as one that allows", grant, {findName, get, granted, L"= 0"}, denied},
        {"one that is built and not written", grant, {findName, get, granted, L"= 0"}, denied, 5},
        {"one without a list", grant, {findName, get, L"= 87"}},
        {"a reset inherits first", reset, {get, inherits, emptied, L"= 5"}, denied, 5},
        {"without a list, which is access for everybody", reset, {get, inherits, emptied, L"= 0"}},
        {"a file's streams", [&] { look(file); }, {L"Open 0 3 3 0", L"Query file 10000 16"}},
        {"a folder's", [&] { look(folder.Path()); }, {L"Open 0 3 3 2000000" + backup, L"Query file 10000 16" + backup}},
    };
    for (const auto& c : cases) {
        g_calls.clear();
        g_given = c.given;
        g_writeError = c.writeError;
        c.ask();
        EXPECT_EQ(g_calls, c.calls) << c.why;
    }
    EXPECT_EQ(QueryStreamFigures(folder / L"none", system), StreamFigures());
    EXPECT_EQ(mask, 7u);
    EXPECT_TRUE(text.starts_with(L"O:S-1-") && text.find(L"D:") != text.npos) << testing::PrintToString(text);
    EXPECT_EQ(NTFSTools().DescribeOwnerAndList(folder / L"none"), L"");
    Note(L"");
    EXPECT_EQ(g_calls.back(), L"") << "every privilege is given back";
}

TEST(SecurityCalls, AskTheMachineThatHoldsTheFileForTheOwnersNameOnce) {
    const NTFSTools tools(NotingSystem());
    std::wstring owner;
    const auto callsFor = [&](const wchar_t* path, bool remotely) {
        g_calls.clear();
        EXPECT_EQ(tools.GetOwnerName(path, remotely, owner), g_hasOwnerName);
        EXPECT_TRUE(!g_calls.empty() && g_calls.front() == std::wstring(L"GetFile ") + path + L" 1");
        return Words(g_calls.begin() + 1, g_calls.end());
    };
    const std::tuple<const wchar_t*, bool, Words> cases[] = {
        {L"Q:\\a", false, {L"FindSid -"}},
        {L"Q:\\a", true, {L"FindShare Q:\\ 1", L"FindSid server"}},
        {L"q:\\b", true, {}},  // on the same drive
        {L"\\\\other\\share\\a", true, {L"FindSid other"}},
        {L"\\\\?\\UNC\\third\\share\\a", true, {L"FindSid third"}},
        {L"\\\\fourth\\share\\a", false, {}},  // this machine, which has been asked
        {L"a", true, {}},
    };
    NTFSTools::ClearCaches();
    for (const auto& [path, remotely, calls] : cases) {
        EXPECT_EQ(callsFor(path, remotely), calls) << testing::PrintToString(path);
        EXPECT_EQ(owner, CurrentAccountName());
    }
    NTFSTools::ClearCaches();
    g_hasOwnerName = false;
    EXPECT_EQ(callsFor(L"a", false), Words{L"FindSid -"});
    EXPECT_EQ(callsFor(L"a", false), Words()) << "that there is no name is remembered too";
    g_hasOwnerName = true;
    NTFSTools::ClearCaches();
}

TEST(SecurityCalls, ChangeNothingForWhatIsNoPathOrAccount) {
    const NTFSTools tools(NotingSystem());
    g_calls.clear();
    for (const std::wstring& path : {std::wstring(), std::wstring(L"C:\\a\0b", 6)})
        for (const uint32_t error : {tools.GrantAccess(path, L"Everyone", 1), tools.SetOwner(path, L"Everyone"),
                                     tools.RemoveAllEntries(path), tools.ResetInheritance(path)})
            EXPECT_EQ(error, 87u);
    EXPECT_EQ(tools.GrantAccess(L"C:\\a", L"Everyone", 0), 87u);
    EXPECT_EQ(tools.SetOwner(L"C:\\a", L""), 87u);
    EXPECT_TRUE(g_calls.empty());
    EXPECT_EQ(tools.GrantAccess(L"C:\\a", L"no such account", 1), static_cast<uint32_t>(ERROR_NONE_MAPPED));
    EXPECT_EQ(g_calls, Words{L"FindName - no such account 100 100"});
}

}  // namespace
