#include "textio/replace_file.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "win32/files.h"
#include "win32/handle.h"

#include <sddl.h>

using namespace QVUtils;
using QVTest::Contents;
using QVTest::TemporaryFolder;

namespace {

void WriteNew(DataWriter& writer) {
    writer.Write("new", 3);
}
void WriteHalfAndFail(DataWriter& writer) {
    writer.Write("ne", 2);
    throw QVUtilsException(112, "Failed to write data to file");
}

uint32_t ErrorOf(const ReplaceRequest& request, const WriteContent& write) {
    try {
        return ReplaceFileContent(request, write);
    } catch (const QVUtilsException& failure) {
        return failure.GetErrorCode();
    }
}

}  // namespace

/// Every way to replace a file, with and without a failure half way: what lies in the folder afterwards.
TEST(ReplaceFileContent, KeepsTheOriginalUntilTheReplacementIsComplete) {
    const struct {
        const char* why;
        ReplaceRequest request;  // the target without its folder
        bool fails;
        uint32_t error;
        Contents expected;
    } cases[] = {
        {"keep", {L"a", false, true, false}, false, 0, {{L"a", "new"}, {L"a.bak", "old"}}},
        {"drop", {L"a", false, false, true}, false, 0, {{L"a", "new"}}},
        {"keep, failing", {L"a", false, true, false}, true, 112, {{L"a", "old"}}},
        {"drop, failing", {L"a", false, false, true}, true, 112, {{L"a", "old"}}},
        {"over it", {L"a", true, false, false}, false, 0, {{L"a", "new"}}},
        {"over it, failing", {L"a", true, false, false}, true, 112, {{L"a", "old"}}},
        {"over it without leave", {L"a", false, false, false}, false, 80, {{L"a", "old"}}},
        {"to a new name", {L"b", false, false, false}, false, 0, {{L"a", "old"}, {L"b", "new"}}},
        {"to a new name, failing", {L"b", true, false, false}, true, 112, {{L"a", "old"}}},
        {"a backup of nothing", {L"b", false, true, false}, false, 0, {{L"a", "old"}, {L"b", "new"}}},
        {"into no folder", {L"no\\b", true, false, false}, false, 3, {{L"a", "old"}}},
        {"onto a folder", {L".", true, false, false}, false, 5, {{L"a", "old"}}},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        folder.Write(L"a", "old");
        ReplaceRequest request = c.request;
        request.target = folder / request.target;
        EXPECT_EQ(ErrorOf(request, c.fails ? WriteHalfAndFail : WriteNew), c.error) << c.why;
        EXPECT_EQ(folder.ReadAll(), c.expected) << c.why;
    }
}

TEST(ReplaceFileContent, ASecondBackupGetsANumber) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "old");
    for (int time = 0; time < 2; ++time) EXPECT_EQ(ErrorOf({path, false, true, false}, WriteNew), 0u);
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "new"}, {L"a.bak", "old"}, {L"a_(0002).bak", "new"}}));
}

TEST(ReplaceFileContent, ReadOnlyFilesAreReplacedAndStayReadOnly) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "old");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(ErrorOf({path, false, false, true}, WriteNew), 0u);
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "new"}}));
    EXPECT_TRUE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY);
}

TEST(ReplaceFileContent, WhoMayWriteTheOldFileMayWriteTheNewOne) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "old");
    const auto usual = Win32::AttributesAndAccessOf(path).accessList;
    PSECURITY_DESCRIPTOR raw = nullptr;
    ASSERT_TRUE(
        ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:(A;;FA;;;WD)", SDDL_REVISION_1, &raw, nullptr));
    const Win32::LocalMemory everybody(raw);
    ASSERT_TRUE(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, raw));
    const auto wide = Win32::AttributesAndAccessOf(path).accessList;
    ASSERT_NE(wide, usual);
    EXPECT_EQ(ErrorOf({path, true, false, false}, WriteNew), 0u);
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "new"}}));
    EXPECT_EQ(Win32::AttributesAndAccessOf(path).accessList, wide);
}

TEST(ReplaceFileContent, AFileHeldByAnotherProgramStaysAsItIs) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "old");
    {
        const Win32::FileHandle holder(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(ErrorOf({path, false, true, false}, WriteNew), ERROR_SHARING_VIOLATION);
    }
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "old"}}));
}

TEST(ReplaceFileContent, AHardLinkToTheSourceIsNotWrittenThrough) {
    const TemporaryFolder folder;
    const std::wstring source = folder.Write(L"a", "old");
    const std::wstring link = folder / L"link";
    ASSERT_TRUE(CreateHardLinkW(link.c_str(), source.c_str(), nullptr));
    EXPECT_EQ(ErrorOf({link, true, false, false}, WriteNew), 0u);
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "old"}, {L"link", "new"}}));
}
