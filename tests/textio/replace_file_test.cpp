#include "textio/replace_file.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "win32/handle.h"

using namespace QVUtils;
using QVTest::TemporaryFolder;

namespace {

using Names = std::vector<std::wstring>;

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
        ReplaceRequest request;  // names without folder
        bool fails;
        uint32_t error;
        std::vector<std::pair<std::wstring, std::string>> expected;
    } cases[] = {
        {"keep", {L"a", L"a", false, true, false, true}, false, 0, {{L"a", "new"}, {L"a.bak", "old"}}},
        {"drop", {L"a", L"a", false, false, true, true}, false, 0, {{L"a", "new"}}},
        {"keep, failing, restored", {L"a", L"a", false, true, false, true}, true, 112, {{L"a", "old"}}},
        {"drop, failing, restored", {L"a", L"a", false, false, true, true}, true, 112, {{L"a", "old"}}},
        {"keep, failing, left", {L"a", L"a", false, true, false, false}, true, 112, {{L"a.bak", "old"}}},
        {"onto itself", {L"a", L"a", true, false, false, true}, false, 0, {{L"a", "new"}}},
        {"onto itself in another case", {L"a", L"A", true, false, false, true}, false, 0, {{L"a", "new"}}},
        {"onto itself, failing", {L"a", L"a", true, false, false, true}, true, 112, {{L"a", "old"}}},
        {"onto itself without leave", {L"a", L"a", false, false, false, true}, false, 80, {{L"a", "old"}}},
        {"to a new name", {L"a", L"b", false, false, false, true}, false, 0, {{L"a", "old"}, {L"b", "new"}}},
        {"to a new name, failing", {L"a", L"b", false, false, false, true}, true, 112, {{L"a", "old"}}},
        {"into no folder", {L"a", L"no\\b", true, false, false, true}, false, 3, {{L"a", "old"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        const TemporaryFolder folder;
        folder.Write(L"a", "old");
        ReplaceRequest request = c.request;
        request.source = folder / request.source;
        request.target = folder / request.target;
        EXPECT_EQ(ErrorOf(request, c.fails ? WriteHalfAndFail : WriteNew), c.error);
        Names names;
        for (const auto& [name, content] : c.expected) {
            names.push_back(name);
            EXPECT_EQ(folder.Read(name), content);
        }
        Names listed = folder.List();
        for (std::wstring& name : listed) name[0] = static_cast<wchar_t>(towlower(name[0]));
        EXPECT_EQ(listed, names);
    }
}

TEST(ReplaceFileContent, ReadOnlyFilesAreReplacedAndStayReadOnly) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "old");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(ErrorOf({path, path, false, false, true, true}, WriteNew), 0u);
    EXPECT_EQ(folder.Read(L"a"), "new");
    EXPECT_EQ(folder.List(), Names{L"a"});
    EXPECT_TRUE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY);
}

TEST(ReplaceFileContent, AFileHeldByAnotherProgramStaysAsItIs) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "old");
    {
        const Win32::FileHandle holder(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(ErrorOf({path, path, false, true, false, true}, WriteNew), ERROR_SHARING_VIOLATION);
    }
    EXPECT_EQ(folder.Read(L"a"), "old");
    EXPECT_EQ(folder.List(), Names{L"a"});
}

TEST(ReplaceFileContent, AHardLinkToTheSourceIsNotWrittenThrough) {
    const TemporaryFolder folder;
    const std::wstring source = folder.Write(L"a", "old");
    const std::wstring link = folder / L"link";
    ASSERT_TRUE(CreateHardLinkW(link.c_str(), source.c_str(), nullptr));
    EXPECT_EQ(ErrorOf({source, link, true, false, false, true}, WriteNew), 0u);
    EXPECT_EQ(folder.Read(L"a"), "old");
    EXPECT_EQ(folder.Read(L"link"), "new");
}
