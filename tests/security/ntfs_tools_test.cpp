// Owners and access lists of real files.
#include "security/ntfs_tools.h"

#include "security/account_names.h"
#include "security/ntfs_prop.h"
#include "support/temporary_folder.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace {

using namespace Security;
using QVTest::TemporaryFolder;

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
        ASSERT_EQ(GetNamedSecurityInfoW(Win32::ExtendedPath(path).c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                        nullptr, nullptr, nullptr, nullptr, &raw),
                  0u);
        const Win32::LocalMemory descriptor(raw);
        EXPECT_TRUE(QVTest::IsOpenToAll(raw));
        EXPECT_EQ(tools.RemoveAllEntries(path), 0u);
    }
    EXPECT_NE(tools.SetOwner(folder / L"none", CurrentUserName()), 0u);
    EXPECT_FALSE(tools.GetOwnerName(folder / L"none", false, owner));
}

TEST(RightsText, NeedsAllBitsOfALetter) {
    const std::pair<uint32_t, const wchar_t*> cases[] = {
        {0, L"   "},    {0x1F01FF, L"RWX"}, {0x1200A9, L"R X"}, {0x1, L"   "},   {0x81, L"R  "}, {0x21, L"  X"},
        {0xA1, L"R X"}, {0x116, L" W "},    {0x16, L"   "},     {0x114, L"   "}, {0x197, L"RW "}};
    for (const auto& [mask, text] : cases) EXPECT_EQ(RightsText(mask), text) << mask;
}

}  // namespace
