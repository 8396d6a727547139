#include "findreplace/match_count.h"

#include "findreplace/process_file.h"
#include "findreplace/recording_callback.h"
#include "support/temporary_folder.h"
#include "win32/text.h"

using namespace QVFindAndReplace;
using namespace QVTest;

namespace {

/// What a run does is what was counted before, and nothing is written for the count.
TEST(MatchCount, CountsWhatARunChangesAndTellsEachLine) {
    const std::string e = "\xC3\xA9", longLine(1000, 'x'), many = std::string(40'000, 'y') + "\n";
    const std::string blocks = many + many + many + many + "a\n";
    const struct {
        const char* why;
        std::string content;
        uint32_t options;
        const wchar_t *find, *replacement;
        std::string told;
    } cases[] = {
        {"two in a line", "a b a\nb\na", Option::ModeOne, L"a", L"x", "1-a b a 1+x b x 3-a 3+x "},
        {"the fixed step", "foo foo foo foo\n", Option::ModeOne, L"foo", L"x", "1-foo foo foo foo 1+x foo x foo "},
        {"equal again", "a\n", Option::ModeOne, L"a", L"a", ""},
        {"wildcards", "n" + e + "!\n", Option::ModeOne | Option::Wildcard | Option::ForceUtf8, L"n??", L"X",
         "1-n" + e + "! 1+X! "},
        {"lines added and removed", "a\nb\nc\nd\n", Option::ModeMultiline, L"a\nb\nc", L"1\n2\n3",
         "1-a 1+1 1+2 2-b 3-c 3+3 "},
        {"one line by two", "ab\n", Option::ModeMultiline, L"b", L"1\n2", "1-ab 1+a1 1+2 "},
        {"in another block", blocks, Option::ModeOne, L"a", L"b", "5-a 5+b "},
        {"a long line", longLine + "a" + longLine, Option::ModeOne, L"a", L"b",
         "1-\xE2\x80\xA6" + std::string(60, 'x') + "a" + std::string(179, 'x') + "\xE2\x80\xA6 1+\xE2\x80\xA6" +
             std::string(60, 'x') + "b" + std::string(179, 'x') + "\xE2\x80\xA6 "},
        {"UTF-16", "\xFF\xFE" + Utf16(L"\x4E2D a\r\n"), Option::ModeOne, L"a", L"b",
         "1-\xE4\xB8\xAD a 1+\xE4\xB8\xAD b "},
        {"one that fails", "\xEF\xBB\xBFn" + e, Option::ModeOne | Option::Wildcard, L"n?", L"X", ""},
    };
    for (const auto& c : cases) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"file", c.content);
        Request request(c.options, c.find, c.replacement, ToNarrow);
        std::string told;
        const FileCount count = CountMatches(path, request, {}, [&](const LineChange& change) {
            const std::string number = std::to_string(change.line);
            if (change.before) told += number + "-" + Win32::ToUtf8(*change.before) + " ";
            if (change.after) told += number + "+" + Win32::ToUtf8(*change.after) + " ";
        });
        EXPECT_EQ(told, c.told) << c.why;
        EXPECT_EQ(folder.ReadAll(), (Contents{{L"file", c.content}})) << c.why;
        RecordingCallback callback({Answer::ReplaceAll});
        FileNotes notes;
        const int64_t changes =
            ProcessFile(path, path, c.options | Option::DropBackup | Option::Silent, request, callback, notes);
        EXPECT_EQ(static_cast<int64_t>(count.changes), std::max<int64_t>(changes, 0)) << c.why;
        EXPECT_EQ(count.errorCode != 0, changes < 0) << c.why;
    }
}

TEST(MatchCount, SaysWhatAFileIsAndWhereItStopped) {
    int looks = 0;
    uint32_t told = 0;
    const auto goesOn = [&](uint32_t percent) {
        told = percent;
        return ++looks <= 1;
    };
    const CountBounds none, four = {.bytes = 4}, stopped = {.goesOn = goesOn};
    const std::string block(32768, 'y');
    const std::tuple<std::string, const CountBounds&, std::string> cases[] = {
        {"a\r\nb\r\n", none, "kind 1: 1"},
        {"a W\xC3\xB6rter\n", none, "kind 1: 1 utf8"},
        {"a W\xF6rter\n", none, "kind 1: 1"},
        {"\xEF\xBB\xBF" + block + "\na\n", none, "kind 3: 1"},
        {"a\rb\n", none, "kind 1: 1 lone"},
        {"a\nb\r\n", none, "kind 1: 1 mixed"},
        {"a\nb\n", four, "kind 1: 1"},
        {"a b\r\na\n", four, "kind 1: 1 cut"},
        {"a" + block + "\na" + block, stopped, "kind 1: 1 cut"},
        {"a\x01\x02\x03\x04\x05", none, "kind 4: 0"},
    };
    const TemporaryFolder folder;
    for (const auto& [content, bounds, expected] : cases) {
        Request request(Option::ModeOne, L"a", L"\xF6", ToNarrow);
        const FileCount count = CountMatches(folder.Write(L"file", content), request, bounds);
        std::string said =
            "kind " + std::to_string(static_cast<int>(count.kind)) + ": " + std::to_string(count.changes);
        if (count.looksLikeUtf8) said += " utf8";
        if (count.hasLoneBreaks) said += " lone";
        if (count.hasMixedBreaks) said += " mixed";
        if (!count.isWhole) said += " cut";
        EXPECT_EQ(said, expected) << content.substr(0, 20);
    }
    EXPECT_TRUE(told > 0 && told < 100) << told << " % of the file that was stopped in its middle";
}

TEST(MatchCount, KnowsWhatAnotherRunWouldReplaceAnew) {
    const std::tuple<uint32_t, const wchar_t*, const wchar_t*, bool> cases[] = {
        {Option::ModeOne, L"a", L"b\na", true},
        {Option::ModeMany, L"a\nb", L"b\na", false},
        {Option::ModeMultiline, L"a\nb", L"a b", true},
        {Option::ModeMultiline, L"a\nb", L"1\na\nb", false},
        {Option::ModeManySame, L"a\nb", L"", true},
        {Option::ModeOne | Option::Wildcard, L"*", L"", false},
        {Option::ModeOne | Option::Wildcard, L"n?", L"n\xD83D\xDE00", false},
    };
    for (const auto& [options, find, replacement, expected] : cases) {
        Request request(options, find, replacement, ToNarrow);
        EXPECT_EQ(MayBeRunAgain(request), expected) << Win32::ToUtf8(find);
    }
}

}  // namespace
