#include "textio/replace_file.h"

#include <set>

#include "support/temporary_folder.h"
#include "win32/handle.h"
#include "win32/successor.h"

using namespace QVUtils;
using namespace QVTest;

namespace {

void WriteNew(DataWriter& writer) {
    writer.Write("new", 3);
}
void WriteHalfAndFail(DataWriter& writer) {
    writer.Write("ne", 2);
    throw QVUtilsException(112, "Failed to write data to file");
}

uint32_t ErrorOf(const ReplaceRequest& request, const WriteContent& write,
                 const std::optional<Win32::FileState>& original = std::nullopt) {
    try {
        return ReplaceFileContent(request, write, original);
    } catch (const QVUtilsException& failure) {
        return failure.GetErrorCode();
    }
}

/// Over the file, with a backup that stays, and with one that goes.
const ReplaceRequest kWays[] = {{L"", true, false, false}, {L"", false, true, false}, {L"", false, false, true}};

ReplaceRequest To(const std::wstring& target, ReplaceRequest way) {
    way.target = target;
    return way;
}

/// Gives a file a write time of long ago.
void MakeOld(const std::wstring& path) {
    const Win32::FileHandle file(CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                             nullptr, OPEN_EXISTING, 0, nullptr));
    const FILETIME longAgo = {0, 0x01C00000};
    ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &longAgo));
}

}  // namespace

/// Every way to replace a file, with and without a failure half way: what lies in the folder afterwards.
TEST(ReplaceFileContent, KeepsTheOriginalUntilTheReplacementIsComplete) {
    const auto keeping = [](const wchar_t* to) -> ReplaceRequest {
        return {.target = to, .mayOverwrite = true, .keepsPart = true};
    };
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
        {"over it", {L"a", true, false, false}, false, 0, {{L"a", "new"}}},
        {"over it without leave", {L"a", false, false, false}, false, 80, {{L"a", "old"}}},
        {"to a new name", {L"b", false, false, false}, false, 0, {{L"a", "old"}, {L"b", "new"}}},
        {"to a new name, failing", {L"b", true, false, false}, true, 112, {{L"a", "old"}}},
        {"to a new name, keeping the part", keeping(L"b"), true, 112, {{L"a", "old"}, {L"b", "ne"}}},
        {"over it, where no part is kept", keeping(L"a"), true, 112, {{L"a", "old"}}},
        {"into no folder", {L"no\\b", true, false, false}, false, 3, {{L"a", "old"}}},
        {"onto a folder", {L".", true, false, false}, false, 123, {{L"a", "old"}}},
        {"to a device", {L"NUL", true, false, false}, false, 123, {{L"a", "old"}}},
        {"to a stream", {L"a:b", true, false, true}, false, 123, {{L"a", "old"}}},
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

/// What other programs do to a file between its opening and its replacement.
TEST(ReplaceFileContent, AnotherProgramsSaveEndsTheReplacement) {
    const struct {
        const char* why;
        void (*save)(const TemporaryFolder&);
        Contents expected;
    } cases[] = {
        {"longer, with the old time",
         [](const TemporaryFolder& folder) { MakeOld(folder.Write(L"a", "longer")); },
         {{L"a", "longer"}}},
        {"as long and with the old time, by a file of its own",
         [](const TemporaryFolder& folder) {
             MakeOld(folder.Write(L"b", "two"));
             ASSERT_EQ(Win32::MoveFileOver(folder / L"b", folder / L"a"), 0u);
         },
         {{L"a", "two"}}},
        {"as long and with the old time",
         [](const TemporaryFolder& folder) { MakeOld(folder.Write(L"a", "two")); },
         {{L"a", "two"}}},
        {"removed", [](const TemporaryFolder& folder) { Win32::RemoveFile(folder / L"a"); }, {}},
    };
    for (const auto& c : cases)
        for (const ReplaceRequest& way : kWays)
            for (const bool isRead : {true, false}) {
                const TemporaryFolder folder;
                const std::wstring path = folder.Write(L"a", "old");
                MakeOld(path);
                std::optional<Win32::FileState> original;
                if (isRead) original = OriginalOf(FileDataReader(path), path, path);
                const auto write = [&](DataWriter& writer) {
                    WriteNew(writer);
                    c.save(folder);
                };
                EXPECT_EQ(ErrorOf(To(path, way), write, original), ErrorCode::ReadFault) << c.why;
                EXPECT_EQ(folder.ReadAll(), c.expected) << c.why;
            }
}

TEST(ReplaceFileContent, AReadOnlyFileHeldByAnotherProgramStaysAsItIsAndIsReplacedLater) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "old");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);  // which the removed replacement has by then as well
    {
        const Win32::FileHandle holder(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(ErrorOf({path, false, true, false}, WriteNew), ERROR_SHARING_VIOLATION);
    }
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "old"}}));
    EXPECT_EQ(ErrorOf({path, false, false, true}, WriteNew), 0u);
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "new"}}));
    EXPECT_TRUE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY);
}

TEST(ReplaceFileContent, AFileOfSeveralNamesStaysAsItIs) {
    for (const ReplaceRequest& way : kWays) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a", "old");
        ASSERT_TRUE(CreateHardLinkW((folder / L"link").c_str(), path.c_str(), nullptr));
        EXPECT_EQ(ErrorOf(To(path, way), WriteNew), uint32_t{ERROR_NOT_SUPPORTED});
        EXPECT_EQ(ErrorOf(To(path, way), WriteNew, StateOf(path)), uint32_t{ERROR_NOT_SUPPORTED});
        EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "old"}, {L"link", "old"}}));
    }
}

/// A name has 255 characters at most, those of ".bak" included.
TEST(ReplaceFileContent, ANameOfFullLengthNeedsABackupsNameOnlyForABackupThatStays) {
    const std::wstring longest(255, L'n');
    for (const ReplaceRequest& way : kWays)
        for (const bool isRead : {true, false}) {
            const TemporaryFolder folder;
            const std::wstring path = folder.Write(longest, "old");
            const std::optional<Win32::FileState> original = isRead ? std::optional(StateOf(path)) : std::nullopt;
            const uint32_t error = way.keepBackup ? ERROR_FILENAME_EXCED_RANGE : 0;
            EXPECT_EQ(ErrorOf(To(path, way), WriteNew, original), error);
            EXPECT_EQ(folder.ReadAll(), (Contents{{longest, error ? "old" : "new"}}));
        }
}

/// A record is under its name whole or not at all, and never takes a name that it may not take.
TEST(ReplaceRecord, TakesItsNameWhenItIsComplete) {
    const struct {
        const char* why;
        bool mayOverwrite;
        bool isTakenMeanwhile;
        uint32_t error;
        Contents expected;
    } cases[] = {
        {"free", false, false, 0, {{L"a", "new"}}},
        {"taken meanwhile", false, true, ERROR_ALREADY_EXISTS, {{L"a", "other"}}},
        {"taken meanwhile, may be overwritten", true, true, 0, {{L"a", "new"}}},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const auto write = [&](DataWriter& writer) {
            WriteNew(writer);
            EXPECT_FALSE(Win32::Exists(folder / L"a")) << c.why;
            if (c.isTakenMeanwhile) folder.Write(L"a", "other");
        };
        EXPECT_EQ(ErrorOf({.target = folder / L"a", .mayOverwrite = c.mayOverwrite, .isRecord = true}, write), c.error)
            << c.why;
        EXPECT_EQ(folder.ReadAll(), c.expected) << c.why;
    }
    const TemporaryFolder folder;
    folder.Write(L"a", "other");
    EXPECT_EQ(ReplaceRecord(folder / L"a", "new", false), uint32_t{ERROR_ALREADY_EXISTS});
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"a", "other"}}));
}
