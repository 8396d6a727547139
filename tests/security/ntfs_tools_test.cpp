// Owners and access lists. What this system can do is done to real files; single calls are replaced where it lacks them
// or where the test must see what would be written.
#include "security/ntfs_tools.h"

#include <algorithm>

#include "security/account_names.h"
#include "security/ntfs_prop.h"
#include "support/temporary_folder.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace {

using namespace Security;
using QVTest::TemporaryFolder;

struct Entry {
    BYTE type;
    BYTE flags;
    ACCESS_MASK mask;
    BYTE account;  // last part of its identifier S-1-5-n, or S-1-1-0 for 0
    bool operator==(const Entry&) const = default;
};
using Entries = std::vector<Entry>;

Entries EntriesOf(ACL* list) {
    Entries entries;
    for (WORD index = 0; list && index < list->AceCount; ++index) {
        void* raw = nullptr;
        EXPECT_TRUE(GetAce(list, index, &raw));
        auto* const entry = static_cast<ACCESS_ALLOWED_ACE*>(raw);
        EXPECT_TRUE(IsValidSid(&entry->SidStart));
        entries.push_back({entry->Header.AceType, entry->Header.AceFlags, entry->Mask,
                           static_cast<BYTE>(*GetSidSubAuthority(&entry->SidStart, 0))});
    }
    return entries;
}

void AppendEntry(ACL* list, const Entry& entry) {
    SID_IDENTIFIER_AUTHORITY authority = {{0, 0, 0, 0, 0, 5}};
    SID sid = {SID_REVISION, 1, authority, {entry.account}};
    const bool isAllowed = entry.type == ACCESS_ALLOWED_ACE_TYPE;
    EXPECT_TRUE(isAllowed ? AddAccessAllowedAceEx(list, ACL_REVISION, entry.flags, entry.mask, &sid)
                          : AddAccessDeniedAceEx(list, ACL_REVISION, entry.flags, entry.mask, &sid));
}

/// What the replaced calls give, and what they have seen.
struct Replaced {
    Entries given;
    bool hasList = true;
    DWORD writeError = ERROR_SUCCESS;
    struct Write {
        SE_OBJECT_TYPE type;
        SECURITY_INFORMATION parts;
        bool hasList;
        Entries entries;
    };
    std::vector<Write> writes;
    std::wstring machine = L"(none)";  // that was asked for a name
    std::wstring universalName = L"\\\\server\\share";
    int universalQuestions = 0;
};
Replaced g_replaced;

DWORD WINAPI GiveList(LPCWSTR, SE_OBJECT_TYPE, SECURITY_INFORMATION, PSID*, PSID*, PACL* list, PACL*,
                      PSECURITY_DESCRIPTOR* descriptor) {
    *list = nullptr;
    *descriptor = LocalAlloc(LPTR, 1024);
    if (!g_replaced.hasList) return ERROR_SUCCESS;
    *list = static_cast<ACL*>(*descriptor);
    InitializeAcl(*list, 1024, ACL_REVISION);
    for (const Entry& entry : g_replaced.given) AppendEntry(*list, entry);
    return ERROR_SUCCESS;
}

DWORD WINAPI TakeList(LPWSTR, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID, PSID, PACL list, PACL) {
    g_replaced.writes.push_back({type, parts, list != nullptr, EntriesOf(list)});
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

constexpr BYTE kAllow = ACCESS_ALLOWED_ACE_TYPE;
constexpr BYTE kDeny = ACCESS_DENIED_ACE_TYPE;
constexpr SECURITY_INFORMATION kList = DACL_SECURITY_INFORMATION;

TEST(NTFSTools, GrantRewritesEveryEntryAsOneThatAllows) {
    const SecuritySystem system = SystemWithLists();
    g_replaced.given = {{kDeny, 0, 0x2, 11}, {kAllow, INHERITED_ACE, 0x1F01FF, 18}, {kAllow, 0, 0x1, 32}};
    EXPECT_EQ(NTFSTools(system).GrantAccess(L"C:\\a", L"Everyone", 0x1200A9), 0u);
    ASSERT_EQ(g_replaced.writes.size(), 1u);
    EXPECT_EQ(g_replaced.writes[0].type, SE_FILE_OBJECT);
    EXPECT_EQ(g_replaced.writes[0].parts, kList);
    EXPECT_EQ(
        g_replaced.writes[0].entries,
        (Entries{{kAllow, 3, 0x2, 11}, {kAllow, 3, 0x1F01FF, 18}, {kAllow, 3, 0x1, 32}, {kAllow, 3, 0x1200A9, 0}}));
    g_replaced.writeError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(NTFSTools(system).GrantAccess(L"C:\\a", L"Everyone", 1), 0u) << "the list was built";
    g_replaced.hasList = false;
    EXPECT_EQ(NTFSTools(system).GrantAccess(L"C:\\a", L"Everyone", 1), 87u);
    EXPECT_EQ(g_replaced.writes.size(), 2u);
}

TEST(NTFSTools, ResetInheritsBeforeTheEmptiedListIsWritten) {
    for (const bool hasList : {true, false}) {
        const SecuritySystem system = SystemWithLists();
        g_replaced.given = {{kDeny, 0, 0x2, 11}, {kAllow, 0, 0x1, 18}};
        g_replaced.hasList = hasList;
        g_replaced.writeError = ERROR_ACCESS_DENIED;
        EXPECT_EQ(NTFSTools(system).RemoveAllEntries(L"C:\\a"), 5u);
        ASSERT_EQ(g_replaced.writes.size(), 2u);
        EXPECT_EQ(g_replaced.writes[0].parts, kList | UNPROTECTED_DACL_SECURITY_INFORMATION);
        EXPECT_FALSE(g_replaced.writes[0].hasList);
        EXPECT_EQ(g_replaced.writes[1].parts, kList);
        EXPECT_TRUE(g_replaced.writes[1].hasList) << "no list at all would be access for everybody";
        EXPECT_TRUE(g_replaced.writes[1].entries.empty());
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
        PACL list = nullptr;
        PSECURITY_DESCRIPTOR raw = nullptr;
        ASSERT_EQ(GetNamedSecurityInfoW(Win32::ExtendedPath(path).c_str(), SE_FILE_OBJECT, kList, nullptr, nullptr,
                                        &list, nullptr, &raw),
                  0u);
        const Win32::LocalMemory descriptor(raw);
        const Entries entries = EntriesOf(list);
        EXPECT_TRUE(std::ranges::any_of(entries, [](const Entry& e) { return e.account == 0 && (e.mask & 0x2); }));
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
void GiveOneStream(HANDLE, void* buffer, ULONG size) {
    EXPECT_EQ(size, 65536u);
    auto* const bytes = static_cast<uint8_t*>(buffer);
    bytes[0] = 40;
    bytes[40 + 17] = 0x10;
}

TEST(Streams, AreQueriedOfFilesAndFolders) {
    const TemporaryFolder folder;
    SecuritySystem system = RealSystem();
    system.queryStreams = GiveOneStream;
    for (const std::wstring& path : {folder.Write(L"a", "x"), folder.Path()})
        EXPECT_EQ(QueryStreamFigures(path, system), (StreamFigures{1, 4096}));
    EXPECT_EQ(QueryStreamFigures(folder / L"none", system), StreamFigures());
}

}  // namespace
