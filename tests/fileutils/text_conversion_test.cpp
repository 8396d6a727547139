// Line ends and tabs: the bytes, against a plain model and at every cut, and the commands from selection to file.
#include "fileutils/text_conversion.h"

#include <vector>

#include <gtest/gtest.h>

#include "fileutils/command_runner.h"
#include "win32/files.h"
#include "win32/handle.h"

namespace {

using FileUtils::TextConversion;
using FileUtils::TextConverter;
using QVTest::CommandRun;
using QVTest::CommandRunner;
using Names = std::vector<std::wstring>;

/// `text` converted in blocks of `blockSize` bytes.
std::string Converted(TextConverter converter, const std::string& text, size_t blockSize) {
    std::string result;
    for (size_t at = 0; at < text.size(); at += blockSize) {
        // A copy of exactly the block: reading beyond it would leave the string.
        const std::string block = text.substr(at, blockSize);
        std::string out(converter.LargestResult(block.size()), '?');
        out.resize(converter.Convert(block.data(), block.size(), out.data()));
        result += out;
    }
    return result;
}

/// The rules, one byte after the other.
std::string Model(TextConversion conversion, const std::string& text) {
    std::string result;
    for (size_t at = 0; at < text.size(); ++at) {
        const bool isPair = text.compare(at, 2, "\r\n") == 0;
        const bool isLast = at + 1 == text.size();
        if (conversion == TextConversion::ToCr) {
            result += isPair || text[at] == '\n' ? '\r' : text[at];
        } else if (text[at] != '\r' && text[at] != '\n') {
            result += text[at];
        } else if (conversion == TextConversion::ToLf) {
            result += '\n';
        } else if (text[at] == '\n' || !isLast) {
            result += "\r\n";
        }
        if (isPair) ++at;
    }
    return result;
}

TEST(TextConverter, FollowsTheRulesWhereverTheBlocksAreCut) {
    std::vector<std::string> texts = {""};
    for (size_t from = 0, length = 1; length <= 7; ++length) {
        const size_t to = texts.size();
        for (; from < to; ++from)
            for (const char byte : {'a', '\r', '\n'}) texts.push_back(texts[from] + byte);
    }
    ASSERT_EQ(texts.size(), 3280u);
    for (const auto conversion : {TextConversion::ToLf, TextConversion::ToCrLf, TextConversion::ToCr})
        for (const std::string& text : texts) {
            const std::string expected = Model(conversion, text);
            for (const size_t blockSize : {1, 2, 3, 4, 7})
                ASSERT_EQ(Converted(TextConverter(conversion), text, blockSize), expected)
                    << testing::PrintToString(text) << " in blocks of " << blockSize;
        }
}

TEST(TextConverter, HasTheseResults) {
    const struct {
        TextConverter converter;
        std::string text;
        std::string expected;
    } cases[] = {
        {TextConverter(TextConversion::ToCrLf), "a\rb", "a\r\nb"},
        {TextConverter(TextConversion::ToCrLf), "a\r", "a"},
        {TextConverter(TextConversion::ToCrLf), "a\r\r\n", "a\r\n\r\n"},
        {TextConverter(TextConversion::ToLf), "a\r", "a\n"},
        {TextConverter(TextConversion::ToCr), "a\r\n\n", "a\r\r"},
        {TextConverter(TextConversion::TabsToSpaces, 4), "x\ty", "x    y"},
        {TextConverter(TextConversion::TabsToSpaces, 0), "\tx\t", "x"},
        {TextConverter(TextConversion::TabsToSpaces, 2), "\t\t\r\n", "    \r\n"},
        {TextConverter(TextConversion::ToLf), std::string("\r\0\n\0", 4), std::string("\n\0\n\0", 4)},
    };
    for (const auto& c : cases) EXPECT_EQ(Converted(c.converter, c.text, 3), c.expected) << c.text;
}

TEST(TextConversionCommand, ConvertsTheSelectionAndKeepsAttributes) {
    const struct {
        const wchar_t* id;
        Names answers;
        std::string expected;
    } cases[] = {
        {L"30101", {L"yes"}, "a\tb\n\nc\n"},
        {L"30102", {L"yes"}, "a\tb\r\n\r\nc"},
        {L"30103", {L"yes"}, "a\tb\r\rc\r"},
        {L"30110", {L"yes", L"3"}, "a   b\r\n\nc\r"},
        {L"30110", {L"yes", L"cancel"}, "a\tb\r\n\nc\r"},
        {L"30101", {L"no"}, "a\tb\r\n\nc\r"},
    };
    for (const auto& c : cases) {
        const CommandRunner runner;
        const std::wstring first = runner.Folder().Write(L"a.txt", "a\tb\r\n\nc\r");
        const std::wstring second = runner.Folder().Write(L"b", "a\tb\r\n\nc\r");
        SetFileAttributesW(first.c_str(), FILE_ATTRIBUTE_HIDDEN);
        const CommandRun run = runner.Run({L"command", c.id, first, second}, c.answers);
        EXPECT_EQ(run.status, 0) << run.notes;
        EXPECT_NE(run.notes.find("[question] Convert text: Files that will be changed: 2."), std::string::npos)
            << run.notes;
        EXPECT_EQ(runner.Folder().Read(L"a.txt"), c.expected) << run.notes;
        EXPECT_EQ(runner.Folder().Read(L"b"), c.expected);
        EXPECT_EQ(GetFileAttributesW(first.c_str()) & FILE_ATTRIBUTE_HIDDEN, DWORD{FILE_ATTRIBUTE_HIDDEN});
        EXPECT_EQ(runner.Folder().List(), (Names{L"a.txt", L"b"}));
    }
}

TEST(TextConversionCommand, ConvertsFilesLongerThanABlock) {
    const CommandRunner runner;
    std::string text(1 << 18, 'x');
    text += std::string((1 << 18) - 1, 'y') + "\r\nz";  // the two bytes of a line end in two blocks
    const CommandRun run = runner.Run({L"command", L"30101", runner.Folder().Write(L"a", text)}, {L"yes"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(runner.Folder().Read(L"a"), Model(TextConversion::ToLf, text));
}

TEST(TextConversionCommand, LosesNothingWhenAFileCannotBeReplaced) {
    const CommandRunner runner;
    const std::wstring held = runner.Folder().Write(L"held", "a\r\n");
    const std::wstring other = runner.Folder().Write(L"other", "b\r\n");
    const std::wstring folder = runner.Folder() / L"sub";
    ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    {
        const Win32::FileHandle holder(
            CreateFileW(held.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        const CommandRun run = runner.Run({L"command", L"30101", folder, held, other}, {L"yes"});
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.log.find("held.temp"), std::string::npos) << run.log;

        EXPECT_NE(run.log.find("\\sub "), std::string::npos) << run.log;
    }
    // The file that could not be replaced is whole, and so is its new content under the temporary name.
    EXPECT_EQ(runner.Folder().Read(L"held"), "a\r\n");
    EXPECT_EQ(runner.Folder().Read(L"other"), "b\n");
    const Names names = runner.Folder().List();
    ASSERT_EQ(names.size(), 4u);
    EXPECT_TRUE(names[1].starts_with(L"held.temp"));
    EXPECT_EQ(runner.Folder().Read(names[1]), "a\n");
}

}  // namespace
