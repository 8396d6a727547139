#include "linesorter/sort_file.h"

#include "support/temporary_folder.h"

namespace {

using namespace QVLineSorter;
using namespace QVTest;
namespace Option = SortOption;
const std::string kMark = "\xFF\xFE";

SortRequest RequestWith(uint32_t options) {
    SortRequest request;
    request.options = Option::AsText | options;
    return request;
}

TEST(SortFile, KeepsEveryByteButTheOrderOfLines) {
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"each break goes with its line", "c\r\nb\na\r\n", "a\r\nb\nc\r\n"},
        {"a last line without a break gets the first one's", "c\r\nb\na", "a\r\nb\nc\r\n"},
        {"one line without any break gets LF", "a", "a\n"},
        {"a lone CR ends a line and is not written", "b\ra\r\nc\n", "a\r\nb\r\nc\n"},
        {"an empty file stays empty", "", ""},
        {"an empty line at the end is a line", "b\n\n", "\nb\n"},
        {"UTF-16 with its mark", kMark + Utf16(L"b\r\na\r\n"), kMark + Utf16(L"a\r\nb\r\n")},
        {"UTF-16 without", Utf16(L"beta1\nalpha"), Utf16(L"alpha\nbeta1\n")},
        {"an odd last byte stays at the end", kMark + Utf16(L"b\na\n") + "x", kMark + Utf16(L"a\nb\n") + "x"},
        {"bytes of the code page's upper half", "\xD6 ab\nz ab\n\xC4 ab\n", "z ab\n\xC4 ab\n\xD6 ab\n"},
    };
    for (const auto& [why, before, after] : cases) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a.txt", before);
        EXPECT_EQ(SortFile(path, path, RequestWith(Option::DeleteBackup)).errorCode, 0u) << why;
        EXPECT_EQ(folder.ReadAll(), (Contents{{L"a.txt", after}})) << why;
    }
}

TEST(SortFile, LeavesWhatItCannotSortAsItIs) {
    const std::string lines = "b\na\n";
    SortRequest bad = RequestWith(Option::DeleteBackup | Option::AsNumber);
    bad.substringLength = 64;
    SortRequest foreign = RequestWith(Option::DeleteBackup | Option::AsDate);
    foreign.dateFormat = L"%d\x5E74";
    const std::tuple<const char*, std::string, SortRequest, uint32_t> cases[] = {
        {"UTF-8", "\xEF\xBB\xBF" + lines, RequestWith(Option::DeleteBackup), 1630},
        {"no text", std::string("\x01\x02\x03\x04\x05\x06", 6), RequestWith(Option::DeleteBackup), 1630},
        {"a request that has a fault", lines, bad, 87},
        {"a date format that 8-bit text cannot hold", lines, foreign, 1113},
    };
    for (const auto& [why, content, request, errorCode] : cases) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a.txt", content);
        EXPECT_EQ(SortFile(path, path, request).errorCode, errorCode) << why;
        EXPECT_EQ(folder.ReadAll(), (Contents{{L"a.txt", content}})) << why;
    }
}

TEST(SortFile, TakesSeparatorsInTheFilesOwnCharacters) {
    const TemporaryFolder folder;
    SortRequest request = RequestWith(Option::Item | Option::DeleteBackup);
    request.itemNumber = 2;
    const auto sorted = [&](wchar_t separator, const char* text) {
        const std::wstring path = folder.Write(L"a.txt", text);
        request.separator = separator;
        EXPECT_EQ(SortFile(path, path, request).errorCode, 0u);
        return folder.Read(L"a.txt");
    };
    EXPECT_EQ(sorted(L'\xC4', "a1\xC4 2\nb \xC4 1\n"), "b \xC4 1\na1\xC4 2\n");
    EXPECT_EQ(sorted(L'\x4E2D', "b?1\na?2\n"), "b?1\na?2\n") << "the code page lacks it, so it matches nothing";
}

}  // namespace
