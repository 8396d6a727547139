// Line ends and tabs: the bytes, against a plain model and at every cut, and the commands from selection to file.
#include "fileutils/conversions/text_conversion.h"

#include "fileutils/command_runner.h"
#include "support/small_texts.h"

namespace {

using namespace QVTest;

constexpr int kTabsToSpaces = static_cast<int>(FileUtils::TextConversion::TabsToSpaces);

// By each conversion, whole and in blocks of one to seven bytes.
TEST(TextConverter, FollowsThePlainRulesWhereverTheBlocksAreCut) {
    for (const std::string& text : SmallTexts(std::string("\0\r\n", 3)))
        for (const int conversion : {0, 1, 2})
            for (const int blockSize : {0, 1, 2, 3, 6})
                RunTarget(QVFuzz::RunTextConversion, {conversion, blockSize}, text);
    for (const std::string& text : SmallTexts("a\t"))
        for (const int tabWidth : {0, 1, 2, 20})
            RunTarget(QVFuzz::RunTextConversion, {tabWidth * 4 + kTabsToSpaces, 2}, text);
}

// Texts are gone through in blocks, and short pieces copied in steps: a hit at each place of a block, and pieces of all
// kinds of length up to it.
TEST(TextConverter, FollowsThePlainRulesWhereverAHitLiesInALongText) {
    for (size_t length = 0; length < 70; ++length) {
        for (const std::string hit : {"\r\n", "\n\r", "\t\t"}) {
            const std::string piece(length, 'a');
            const std::string text =
                piece + hit + std::string(200, 'b') + hit + piece + hit + std::string(1100, 'c') + hit + piece;
            for (const int conversion : {0, 1, 2, 20 * 4 + kTabsToSpaces})
                RunTarget(QVFuzz::RunTextConversion, {conversion, 63}, text);
        }
    }
}

// What is kept of a file that is replaced, and of one that cannot be, is held by the tests of the one writer.
TEST(TextConversionCommand, ConvertsTheSelectionAndNamesWhatFails) {
    const std::tuple<const wchar_t*, Names, std::string> cases[] = {
        {L"30101", {L"yes"}, "a\tb\n\nc\n"},
        {L"30103", {L"yes"}, "a\tb\r\rc\r"},
        {L"30110", {L"yes", L"3"}, "a   b\r\n\nc\r"},
        {L"30110", {L"yes", L"cancel"}, "a\tb\r\n\nc\r"},
    };
    for (const auto& [id, answers, expected] : cases) {
        const CommandRunner runner;
        const std::wstring first = runner.Write(L"a.txt", "a\tb\r\n\nc\r");
        const std::wstring longest(255, L'n');  // none is left for the ending of a temporary name
        const std::wstring second = runner.Write(longest, "a\tb\r\n\nc\r");
        SetFileAttributesW(first.c_str(), FILE_ATTRIBUTE_HIDDEN);
        const HostRun run = runner.Run({L"command", id, runner / L"A.TXT", second}, answers);
        EXPECT_EQ(run.status, 0) << run.error;
        EXPECT_TRUE(Holds(run.error, "[question] Convert text: Files that will be changed: 2."));
        EXPECT_EQ(runner.ReadAll(), (Contents{{L"a.txt", expected}, {longest, expected}})) << run.error;
        EXPECT_EQ(GetFileAttributesW(first.c_str()) & FILE_ATTRIBUTE_HIDDEN, DWORD{FILE_ATTRIBUTE_HIDDEN});
    }
    const CommandRunner runner;
    const HostRun run =
        runner.Run({L"command", L"30101", runner.MakeFolder(L"sub"), runner.Write(L"other", "\r\n")}, {L"yes"});
    EXPECT_TRUE(run.status == 1 && Holds(run.out, "\\sub ")) << run.out;
    EXPECT_EQ(runner.Read(L"other"), "\n");
}

}  // namespace
