// Owners and access lists. What this system can do is done to real files; single calls are replaced where it lacks them
// or where the test must see what would be written.
#include "security/ntfs_tools.h"

#include "security/account_names.h"
#include "security/ntfs_prop.h"
#include "support/temporary_folder.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace {

using namespace Security;
using QVTest::TemporaryFolder;

/// What the replaced calls give, and what they have seen.
struct Replaced {
    const wchar_t* given = L"O:SY";  // a descriptor in the system's text form; this one has no list
    DWORD writeError = ERROR_SUCCESS;
    std::vector<std::wstring> writes;  // the object's type, the parts, and the list
    std::wstring machine = L"(none)";  // that was asked for a name
    std::wstring universalName = L"\\\\server\\share";
    int universalQuestions = 0;
};
Replaced g_replaced;

DWORD WINAPI GiveList(LPCWSTR, SE_OBJECT_TYPE, SECURITY_INFORMATION, PSID*, PSID*, PACL* list, PACL*,
                      PSECURITY_DESCRIPTOR* descriptor) {
    EXPECT_TRUE(
        ConvertStringSecurityDescriptorToSecurityDescriptorW(g_replaced.given, SDDL_REVISION_1, descriptor, nullptr));
    BOOL isPresent = FALSE, isDefault = FALSE;
    *list = nullptr;
    EXPECT_TRUE(GetSecurityDescriptorDacl(*descriptor, &isPresent, list, &isDefault));
    return ERROR_SUCCESS;
}

std::wstring Write(SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, ACL* list) {
    SECURITY_DESCRIPTOR taken;
    InitializeSecurityDescriptor(&taken, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&taken, list != nullptr, list, FALSE);
    const std::wstring text = list ? QVTest::TextOfAccessList(&taken) : L"none";
    return std::to_wstring(type) + L" " + std::to_wstring(parts) + L" " + text;
}

DWORD WINAPI TakeList(LPWSTR, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID, PSID, PACL list, PACL) {
    g_replaced.writes.push_back(Write(type, parts, list));
    return g_replaced.writeError;
}

DWORD WINAPI GiveUniversalName(LPCWSTR path, DWORD level, LPVOID buffer, LPDWORD size) {
    ++g_replaced.universalQuestions;
    EXPECT_STREQ(path, L"Q:\\");
    EXPECT_EQ(level, 1u);
    const size_t bytes = (g_replaced.universalName.size() + 1) * sizeof(wchar_t);
    EXPECT_LE(bytes + sizeof(void*), *size);
    auto* const text = reinterpret_cast<wchar_t*>(static_cast<std::byte*>(buffer) + sizeof(void*));
    g_replaced.universalName.copy(text, g_replaced.universalName.size() + 1);
    text[g_replaced.universalName.size()] = 0;
    *static_cast<const wchar_t**>(buffer) = text;
    return ERROR_SUCCESS;
}

BOOL WINAPI NoteMachine(LPCWSTR machine, PSID sid, LPWSTR name, LPDWORD nameSize, LPWSTR domain, LPDWORD domainSize,
                        PSID_NAME_USE use) {
    g_replaced.machine = machine ? machine : L"";
    return LookupAccountSidW(nullptr, sid, name, nameSize, domain, domainSize, use);
}

BOOL WINAPI GiveDescriptorOfThisFolder(LPCWSTR, SECURITY_INFORMATION parts, PSECURITY_DESCRIPTOR descriptor, DWORD size,
                                       LPDWORD needed) {
    return GetFileSecurityW(L".", parts, descriptor, size, needed);
}

SecuritySystem SystemWithLists() {
    g_replaced = {};
    SecuritySystem system = RealSystem();
    system.getNamedSecurityInfo = GiveList;
    system.setNamedSecurityInfo = TakeList;
    return system;
}

constexpr SECURITY_INFORMATION kList = DACL_SECURITY_INFORMATION;

TEST(NTFSTools, GrantRewritesEveryEntryAsOneThatAllows) {
    const SecuritySystem system = SystemWithLists();
    PACL expected = nullptr;
    PSECURITY_DESCRIPTOR raw = nullptr;
    g_replaced.given = L"D:(A;OICI;0x2;;;AU)(A;OICI;FA;;;SY)(A;OICI;0x1;;;BA)(A;OICI;0x1200A9;;;WD)";
    GiveList(nullptr, SE_FILE_OBJECT, kList, nullptr, nullptr, &expected, nullptr, &raw);
    const Win32::LocalMemory descriptor(raw);
    g_replaced.given = L"D:(D;;0x2;;;AU)(A;ID;FA;;;SY)(A;;0x1;;;BA)";
    EXPECT_EQ(NTFSTools(system).GrantAccess(L"C:\\a", L"Everyone", 0x1200A9), 0u);
    EXPECT_EQ(g_replaced.writes, std::vector{Write(SE_FILE_OBJECT, kList, expected)});
    g_replaced.writeError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(NTFSTools(system).GrantAccess(L"C:\\a", L"Everyone", 1), 0u) << "the list was built";
    g_replaced.given = L"O:SY";
    EXPECT_EQ(NTFSTools(system).GrantAccess(L"C:\\a", L"Everyone", 1), 87u);
    EXPECT_EQ(g_replaced.writes.size(), 2u);
}

TEST(NTFSTools, ResetInheritsBeforeTheEmptiedListIsWritten) {
    for (const wchar_t* given : {L"D:(D;;0x2;;;AU)(A;;0x1;;;SY)", L"O:SY"}) {
        const SecuritySystem system = SystemWithLists();
        g_replaced.given = given;
        g_replaced.writeError = ERROR_ACCESS_DENIED;
        EXPECT_EQ(NTFSTools(system).RemoveAllEntries(L"C:\\a"), 5u);
        ACL empty = {ACL_REVISION, 0, sizeof(ACL), 0, 0};  // no list at all would be access for everybody
        EXPECT_EQ(g_replaced.writes,
                  (std::vector{Write(SE_FILE_OBJECT, kList | UNPROTECTED_DACL_SECURITY_INFORMATION, nullptr),
                               Write(SE_FILE_OBJECT, kList, &empty)}));
    }
}

TEST(NTFSTools, RefusesWhatIsNoPathOrAccount) {
    const SecuritySystem system = SystemWithLists();
    const NTFSTools tools(system);
    const std::wstring zero(L"C:\\a\0b", 6);
    for (const std::wstring& path : {std::wstring(), zero})
        for (const uint32_t error : {tools.GrantAccess(path, L"Everyone", 1), tools.SetOwner(path, L"Everyone"),
                                     tools.RemoveAllEntries(path), tools.ResetInheritance(path)})
            EXPECT_EQ(error, 87u);
    EXPECT_EQ(tools.GrantAccess(L"C:\\a", L"Everyone", 0), 87u);
    EXPECT_EQ(tools.GrantAccess(L"C:\\a", L"no such account", 1), static_cast<uint32_t>(ERROR_NONE_MAPPED));
    EXPECT_EQ(tools.SetOwner(L"C:\\a", L""), 87u);
    EXPECT_TRUE(g_replaced.writes.empty());
    EXPECT_EQ(ObjectTypeOf(L"C:\\a"), 1);
    EXPECT_EQ(ObjectTypeOf(L"\\\\server\\share\\a"), 4);
}

TEST(NTFSTools, ChangesRealFilesOfEveryKindOfName) {
    const TemporaryFolder folder;
    const std::wstring deep = std::wstring(120, L'd') + L'\\' + std::wstring(120, L'd');
    folder.MakeFolder(deep.substr(0, 120));
    const std::wstring paths[] = {folder.Write(L"\x4E2D\xD83D\xDE00.txt", "x"), folder.Path(), folder.MakeFolder(deep)};
    const NTFSTools tools;
    std::wstring owner;
    for (const std::wstring& path : paths) {
        EXPECT_EQ(tools.SetOwner(path, CurrentUserName()), 0u);
        EXPECT_TRUE(tools.GetOwnerName(path, false, owner));
        EXPECT_EQ(owner, CurrentAccountName());
        EXPECT_EQ(tools.GrantAccess(path, L"Everyone", 0x1F01FF), 0u);
        PSECURITY_DESCRIPTOR raw = nullptr;
        ASSERT_EQ(GetNamedSecurityInfoW(Win32::ExtendedPath(path).c_str(), SE_FILE_OBJECT, kList, nullptr, nullptr,
                                        nullptr, nullptr, &raw),
                  0u);
        const Win32::LocalMemory descriptor(raw);
        EXPECT_TRUE(QVTest::IsOpenToAll(raw));
        EXPECT_EQ(tools.RemoveAllEntries(path), 0u);
    }
    EXPECT_NE(tools.SetOwner(folder / L"none", CurrentUserName()), 0u);
    EXPECT_FALSE(tools.GetOwnerName(folder / L"none", false, owner));
}

TEST(NTFSTools, AsksTheMachineThatHoldsTheFileForTheOwnersName) {
    SecuritySystem system = SystemWithLists();
    system.getFileSecurity = GiveDescriptorOfThisFolder;
    system.lookupAccountSid = NoteMachine;
    system.getUniversalName = GiveUniversalName;
    const NTFSTools tools(system);
    const struct {
        const wchar_t* path;
        bool remotely;
        const wchar_t* machine;  // "(none)": the name is known already
    } cases[] = {
        {L"Q:\\a", false, L""},
        {L"Q:\\a", true, L"server"},
        {L"q:\\b", true, L"(none)"},
        {L"\\\\other\\share\\a", true, L"other"},
        {L"\\\\?\\UNC\\third\\share\\a", true, L"third"},
        {L"\\\\fourth\\share\\a", false, L"(none)"},  // this machine, which has been asked
        {L"a", true, L"(none)"},
    };
    NTFSTools::ClearCaches();
    for (const auto& c : cases) {
        g_replaced.machine = L"(none)";
        std::wstring owner;
        EXPECT_TRUE(tools.GetOwnerName(c.path, c.remotely, owner));
        EXPECT_EQ(owner, CurrentAccountName());
        EXPECT_EQ(g_replaced.machine, c.machine) << testing::PrintToString(c.path);
    }
    EXPECT_EQ(g_replaced.universalQuestions, 1) << "both paths lie on one drive";
    NTFSTools::ClearCaches();
}

TEST(RightsText, NeedsAllBitsOfALetter) {
    const std::pair<uint32_t, const wchar_t*> cases[] = {
        {0, L"   "},    {0x1F01FF, L"RWX"}, {0x1200A9, L"R X"}, {0x1, L"   "},   {0x81, L"R  "}, {0x21, L"  X"},
        {0xA1, L"R X"}, {0x116, L" W "},    {0x16, L"   "},     {0x114, L"   "}, {0x197, L"RW "}};
    for (const auto& [mask, text] : cases) EXPECT_EQ(RightsText(mask), text) << mask;
}

/// One named stream of 4,096 bytes on disk.
LONG WINAPI GiveOneStream(HANDLE, void*, void* buffer, ULONG, ULONG) {
    auto* const bytes = static_cast<uint8_t*>(buffer);
    bytes[0] = 40;
    bytes[40 + 17] = 0x10;
    return 0;
}

TEST(Streams, AreQueriedOfFilesAndFolders) {
    const TemporaryFolder folder;
    SecuritySystem system = RealSystem();
    system.queryInformationFile = GiveOneStream;
    for (const std::wstring& path : {folder.Write(L"a", "x"), folder.Path()})
        EXPECT_EQ(QueryStreamFigures(path, system), (StreamFigures{1, 4096}));
    EXPECT_EQ(QueryStreamFigures(folder / L"none", system), StreamFigures());
}

}  // namespace
