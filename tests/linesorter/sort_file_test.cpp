#include "linesorter/sort_file.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "win32/handle.h"

namespace {

using namespace QVLineSorter;
using QVTest::TemporaryFolder;
using QVTest::Utf16;
namespace Option = SortOption;
using Names = std::vector<std::wstring>;

SortRequest RequestWith(uint32_t options) {
    SortRequest request;
    request.options = Option::AsText | options;
    return request;
}

TEST(SortFile, KeepsEveryByteButTheOrderOfLines) {
    const struct {
        const char* why;
        std::string before;
        std::string after;
    } cases[] = {
        {"LF", "b\na\n", "a\nb\n"},
        {"each break goes with its line", "c\r\nb\na\r\n", "a\r\nb\nc\r\n"},
        {"a last line without a break gets the first one's", "c\r\nb\na", "a\r\nb\nc\r\n"},
        {"one line without any break gets LF", "a", "a\n"},
        {"a lone CR ends a line and is not written", "b\ra\r\nc\n", "a\r\nb\r\nc\n"},
        {"an empty file stays empty", "", ""},
        {"an empty line at the end is a line", "b\n\n", "\nb\n"},
        {"UTF-16 with its mark",
         Utf16(L"\xFEFF"
               L"b\r\na\r\n"),
         Utf16(L"\xFEFF"
               L"a\r\nb\r\n")},
        {"UTF-16 without", Utf16(L"beta1\nalpha"), Utf16(L"alpha\nbeta1\n")},
        {"nothing but a mark", Utf16(L"\xFEFF"), Utf16(L"\xFEFF")},
        {"an odd last byte stays at the end",
         Utf16(L"\xFEFF"
               L"b\na\n") +
             "x",
         Utf16(L"\xFEFF"
               L"a\nb\n") +
             "x"},
        {"bytes of the code page's upper half", "\xD6 ab\nz ab\n\xC4 ab\n", "z ab\n\xC4 ab\n\xD6 ab\n"},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a.txt", c.before);
        EXPECT_EQ(SortFile(path, path, RequestWith(Option::DeleteBackup)).errorCode, 0u) << c.why;
        EXPECT_EQ(folder.Read(L"a.txt"), c.after) << c.why;
        EXPECT_EQ(folder.List(), Names{L"a.txt"}) << c.why;
    }
}

TEST(SortFile, SortsLinesLongerThanAnyBlock) {
    const TemporaryFolder folder;
    const std::string longLine(3'000'000, 'b');
    const std::wstring path = folder.Write(L"a.txt", longLine + "z\r\n" + longLine + "a\r\n" + "c\r\n");
    EXPECT_EQ(SortFile(path, path, RequestWith(Option::DeleteBackup)).errorCode, 0u);
    EXPECT_TRUE(folder.Read(L"a.txt") == longLine + "a\r\n" + longLine + "z\r\n" + "c\r\n");
}

TEST(SortFile, WritesWhereTheRequestSays) {
    const struct {
        const char* why;
        uint32_t options;
        const wchar_t* target;
        uint32_t errorCode;
        std::string source;
        Names names;
    } cases[] = {
        {"a backup is kept", Option::KeepBackup, L"a.txt", 0, "a\nb\n", {L"a.txt", L"a.txt.bak"}},
        {"a backup is deleted", Option::DeleteBackup, L"a.txt", 0, "a\nb\n", {L"a.txt"}},
        {"saved under another name", Option::SaveAs, L"new.txt", 0, "b\na\n", {L"a.txt", L"new.txt"}},
        {"saved onto itself", Option::SaveAs | Option::Overwrite, L"a.txt", 0, "a\nb\n", {L"a.txt"}},
        {"an existing target is refused", Option::SaveAs, L"a.txt", 80, "b\na\n", {L"a.txt"}},
        {"no mode and nothing overwritten", 0, L"a.txt", 80, "b\na\n", {L"a.txt"}},
        {"a folder that is missing", Option::SaveAs, L"x\\a.txt", 3, "b\na\n", {L"a.txt"}},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a.txt", "b\na\n");
        const SortFileResult result = SortFile(path, folder / c.target, RequestWith(c.options));
        EXPECT_EQ(result.errorCode, c.errorCode) << c.why;
        EXPECT_EQ(result.errorText.empty(), c.errorCode == 0) << c.why;
        EXPECT_EQ(folder.Read(L"a.txt"), c.source) << c.why;
        EXPECT_EQ(folder.List(), c.names) << c.why;
    }
}

TEST(SortFile, LeavesWhatItCannotSortAsItIs) {
    SortRequest bad = RequestWith(Option::DeleteBackup);
    bad.options |= Option::AsNumber;
    bad.substringLength = 64;
    SortRequest foreign = RequestWith(Option::DeleteBackup | Option::AsDate);
    foreign.dateFormat = L"%d\x5E74";
    const struct {
        const char* why;
        std::string content;
        SortRequest request;
        uint32_t errorCode;
    } cases[] = {
        {"UTF-8",
         "\xEF\xBB\xBF"
         "b\na\n",
         RequestWith(Option::DeleteBackup), 1630},
        {"no text", std::string("\x01\x02\x03\x04\x05\x06", 6), RequestWith(Option::DeleteBackup), 1630},
        {"a request that has a fault", "b\na\n", bad, 87},
        {"a date format that 8-bit text cannot hold", "b\na\n", foreign, 1113},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a.txt", c.content);
        EXPECT_EQ(SortFile(path, path, c.request).errorCode, c.errorCode) << c.why;
        EXPECT_EQ(folder.Read(L"a.txt"), c.content) << c.why;
        EXPECT_EQ(folder.List(), Names{L"a.txt"}) << c.why;
    }
    const TemporaryFolder folder;
    foreign.options = RequestWith(Option::DeleteBackup).options;  // as text: the format is of no use
    const std::wstring path = folder.Write(L"a.txt", "b\na\n");
    EXPECT_EQ(SortFile(path, path, foreign).errorCode, 0u);
    EXPECT_TRUE(DeleteFileW(path.c_str()));
    EXPECT_EQ(SortFile(folder / L"none.txt", folder / L"none.txt", RequestWith(Option::KeepBackup)).errorCode, 2u);
    EXPECT_EQ(folder.List(), Names{});
}

TEST(SortFile, LeavesATargetThatSomebodyHoldsAndItsSource) {
    const TemporaryFolder folder;
    const std::wstring source = folder.Write(L"a.txt", "b\na\n");
    const std::wstring target = folder.Write(L"held.txt", "precious");
    {
        const Win32::FileHandle held(
            CreateFileW(target.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_EQ(SortFile(source, target, RequestWith(Option::SaveAs | Option::Overwrite)).errorCode, 32u);
        EXPECT_EQ(SortFile(target, target, RequestWith(Option::KeepBackup)).errorCode, 32u);
    }
    EXPECT_EQ(folder.Read(L"a.txt"), "b\na\n");
    EXPECT_EQ(folder.Read(L"held.txt"), "precious");
    EXPECT_EQ(folder.List(), (Names{L"a.txt", L"held.txt"}));
}

TEST(SortFile, TakesSeparatorsInTheFilesOwnCharacters) {
    const struct {
        const char* why;
        wchar_t separator;
        std::string before;
        std::string after;
    } cases[] = {
        {"a letter of the code page", L'\xC4', "a1\xC4 2\nb \xC4 1\n", "b \xC4 1\na1\xC4 2\n"},
        {"a letter that the code page lacks matches nothing", L'\x4E2D', "b?1\na?2\n", "b?1\na?2\n"},
        {"in UTF-16 it is itself", L'\x4E2D',
         Utf16(L"\xFEFF"
               L"a\x4E2D"
               L"2\nb\x4E2D"
               L"1\n"),
         Utf16(L"\xFEFF"
               L"b\x4E2D"
               L"1\na\x4E2D"
               L"2\n")},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a.txt", c.before);
        SortRequest request = RequestWith(Option::Item | Option::DeleteBackup);
        request.separator = c.separator;
        request.itemNumber = 2;
        EXPECT_EQ(SortFile(path, path, request).errorCode, 0u) << c.why;
        EXPECT_EQ(folder.Read(L"a.txt"), c.after) << c.why;
    }
}

}  // namespace
