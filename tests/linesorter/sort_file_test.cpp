#include "linesorter/sort_file.h"

#include "support/temporary_folder.h"

namespace {

using namespace QVLineSorter;
using namespace QVTest;
namespace Option = SortOption;
const std::string kMark = "\xFF\xFE";

TEST(SortFile, KeepsEveryByteButTheOrderOfLinesAndLeavesWhatItCannotSort) {
    SortRequest plain;
    plain.options = Option::AsText | Option::DeleteBackup;
    SortRequest bad = plain, foreign = plain, items = plain;
    bad.options = Option::AsNumber | Option::DeleteBackup;
    bad.substringLength = 64;
    foreign.options = Option::AsDate | Option::DeleteBackup;
    foreign.dateFormat = L"%d\x5E74";
    items.options |= Option::Item;
    items.itemNumber = 2;
    items.separator = L'\xC4';
    SortRequest foreignItems = items;
    foreignItems.separator = L'\x4E2D';
    const struct {
        const char* why;
        std::string before, after;
        const SortRequest& request;
        uint32_t error = 0;
    } cases[] = {
        {"each break goes with its line", "c\r\nb\na\r\n", "a\r\nb\nc\r\n", plain},
        {"a last line without a break gets the first one's", "c\r\nb\na", "a\r\nb\nc\r\n", plain},
        {"one line without any break gets LF", "a", "a\n", plain},
        {"a lone CR ends a line and is not written", "b\ra\r\nc\n", "a\r\nb\r\nc\n", plain},
        {"an empty file stays empty", "", "", plain},
        {"an empty line at the end is a line", "b\n\n", "\nb\n", plain},
        {"UTF-16 with its mark", kMark + Utf16(L"b\r\na\r\n"), kMark + Utf16(L"a\r\nb\r\n"), plain},
        {"UTF-16 without", Utf16(L"beta1\nalpha"), Utf16(L"alpha\nbeta1\n"), plain},
        {"an odd last byte stays at the end", kMark + Utf16(L"b\na\n") + "x", kMark + Utf16(L"a\nb\n") + "x", plain},
        {"bytes of the code page's upper half", "\xD6 ab\nz ab\n\xC4 ab\n", "z ab\n\xC4 ab\n\xD6 ab\n", plain},
        {"a separator of the file's own characters", "a1\xC4 2\nb \xC4 1\n", "b \xC4 1\na1\xC4 2\n", items},
        {"one that the code page lacks matches nothing", "b-2\na-1\n", "b-2\na-1\n", foreignItems},
        {"UTF-8",
         "\xEF\xBB\xBF"
         "b\na\n",
         "", plain, 1630},
        {"no text", "\x01\x02\x03\x04\x05\x06", "", plain, 1630},
        {"a request that has a fault", "b\na\n", "", bad, 87},
        {"a date format that 8-bit text cannot hold", "b\na\n", "", foreign, 1113},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"a.txt", c.before);
        EXPECT_EQ(SortFile(path, path, c.request).errorCode, c.error) << c.why;
        EXPECT_EQ(folder.ReadAll(), (Contents{{L"a.txt", c.error ? c.before : c.after}})) << c.why;
    }
}

}  // namespace
