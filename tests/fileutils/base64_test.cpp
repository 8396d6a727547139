// Base64: the letters and lines against a plain model, headers by their bytes, and the commands there and back.
#include "fileutils/conversions/base64.h"

#include <algorithm>

#include "fileutils/command_runner.h"
#include "fileutils/conversions/mime_header.h"
#include "fuzz/plain_base64.h"
#include "support/small_texts.h"
#include "win32/handle.h"
#include "win32/windows.h"

namespace {

using namespace FileUtils;
using namespace QVTest;

/// Bytes without a pattern that repeats with the groups.
std::string BytesOf(size_t size) {
    std::string bytes;
    uint32_t state = 1;
    while (bytes.size() < size) {
        state = state * 1664525 + 1013904223;
        bytes += static_cast<char>(state >> 24);
    }
    return bytes;
}

constexpr char kHeader[] =
    "MIME-Version: 1.0\r\n"
    "Content-Type: application/octet-stream; name=\"a.bin\"\r\n"
    "Content-Transfer-Encoding: base64\r\n"
    "Content-Disposition: attachment; filename=\"a.bin\"\r\n"
    "\r\n";

TEST(CBase64, GivesBackWhatWasEncodedWhereverTheBlocksAreCut) {
    for (size_t size = 0; size <= 200; ++size)
        for (const int blockSize : {0, 1, 2, 3, 4, 75, 99}) RunTarget(QVFuzz::RunBase64, {blockSize}, BytesOf(size));
}

TEST(MimeHeader, GivesItsEndAndTheNameOfItsSecondLine) {
    const std::tuple<const char*, std::string, bool, const char*> cases[] = {
        {"our own", kHeader, true, "a.bin"},
        {"of another writer, another order",
         "Content-Type: text/plain;\n\tcharset=x\nMIME-Version: 1.0\ncontent-transfer-encoding: base64\n\n", true, ""},
        {"lines that are no fields", "MIME-Version 1\r\nname=\"a\"\r\nsomething\r\n\r\n", true, "a"},
        {"without an end of the second line", "x MIME-Version\nname=\"q\"", false, "q"},
        {"in the third line", "MIME-Version: 1.0\r\nContent-Type: x\r\nname=\"a\"\r\n", false, ""},
        {"no closing quote", "MIME-Version: 1.0\r\nname=\"a\r\n\"", false, ""},
        {"cut off by the area", "MIME-Version: 1.0\r\nname=\"" + std::string(1000, 'a') + "\"", false, ""},
    };
    for (const auto& [why, header, isWhole, name] : cases) {
        EXPECT_EQ(NameInHeader(header), name) << why;
        EXPECT_EQ(HeaderSize(header + "YWJj\r\n\r\nYWJj\r\n") == header.size(), isWhole) << why;
    }
    EXPECT_EQ(MimeHeader("a.bin"), kHeader);
    for (const char* none : {"", "YWJj\r\n\r\n", "\r\nYWJj", "Note: no MIME here\r\n\r\nYWJj", "MIME-Version: 1.0\r\n"})
        EXPECT_EQ(HeaderSize(none), 0u) << none;
}

TEST(Base64Command, WritesTheseBytesAndReadsThemBack) {
    const CommandRunner runner;
    for (const size_t size :
         {0, 1, 56, 57, 58, 75, 76, 3071, 3072, 3073, 3102, 3128, 3129, 4096, 6144, 3072 * 64 + 40}) {
        const std::string bytes = BytesOf(size);
        const std::wstring path = runner.Write(L"a.bin", bytes);
        const auto says = [&](const wchar_t* id, const std::wstring& file, const std::string& said) {
            const std::string out = runner.Run({L"command", id, file}, {L"yes"}).out;
            EXPECT_EQ(out.find(said), 0u) << out;
            EXPECT_EQ(out.find('\n'), out.size() - 1) << "and no more: " << out;
        };
        says(L"30210", path, "[Base64] - Encoded file : ");
        ASSERT_EQ(runner.Read(L"a.bin.b64"), kHeader + QVFuzz::Base64TextOf(bytes, 3072)) << size;
        runner.Write(L"a.bin", "overwritten");
        says(L"30211", path + L".b64", "[Base64] - Decoded file : ");
        ASSERT_EQ(runner.Read(L"a.bin"), bytes) << size;
    }
}

TEST(Base64Command, DecodesIntoAPlainNameOfItsOwnFolderAndSaysWhatItDidNotUse) {
    const struct {
        std::string text;
        const char *said, *decoded;
        const wchar_t* target = L"x.txt";
    } cases[] = {
        {MimeHeader("y.bin") + "YWJj", "", "abc", L"y.bin"},
        {MimeHeader("..\\y.bin") + "YWJj", "", "abc"},
        {MimeHeader("C:/y.bin") + "YWJj", "", "abc"},
        {MimeHeader("y:z") + "YWJj", "", "abc"},
        {MimeHeader("nul.txt") + "YWJj", "", "abc"},
        {"====", "( There is no Base64 text, 0 characters were ignored, ErrorCode : 13 )", ""},
        {std::string(5000, '\0'), "( There is no Base64 text, 0 characters were ignored, ErrorCode : 13 )", ""},
        {"-_-_\r\n", "( There is no Base64 text, 4 characters were ignored, ErrorCode : 13 )", ""},
        {"Y-W\xE4Jj", "[Base64] - Note : 2 characters were ignored ", "abc"},
        {"YWJjY", "( The Base64 text is cut off, ErrorCode : 13 )", "abc"},
        {"YQ==\r\n\r\nY", "[Base64] - Note : 1 character was ignored ", "a"},
        {"YQ==\r\n \t\r\n", "", "a"},
        {"Y\r\nW\nJ j\r\n\tZGU=\r\n", "", "abcde"},
        {"YWI", "", "ab"},
        {"", "", ""},
    };
    for (const auto& c : cases) {
        const CommandRunner runner;
        const HostRun run = runner.Run({L"command", L"30211", runner.Write(L"x.txt.b64", c.text)}, {L"no"});
        EXPECT_TRUE(*c.said ? Holds(run.out, c.said) : !Holds(run.out, "Note")) << run.Said();
        EXPECT_EQ(runner.ReadAll(), (Contents{{L"x.txt.b64", c.text}, {c.target, c.decoded}}));
    }
}

TEST(Base64Command, AsksBeforeATargetIsReplacedAndRefusesTheSourceAsItsOwn) {
    const CommandRunner runner;
    const std::wstring same = runner.Write(L"same.b64", MimeHeader("SAME.B64") + "YWJj");
    const std::wstring linked = runner.Write(L"linked.b64", MimeHeader("link") + "YWJj");
    ASSERT_TRUE(CreateHardLinkW((runner / L"link").c_str(), linked.c_str(), nullptr));
    const std::wstring plain = runner.Write(L"plain", "YWJj");
    const Contents before = runner.ReadAll();
    const HostRun run = runner.Run({L"command", L"30211", same, linked, plain}, {L"yes"});
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 3) << run.out;
    EXPECT_EQ(runner.ReadAll(), before);
    const HostRun nameless = runner.Run({L"command", L"30211", runner.Write(L".b64", "YWJj")}, {L"yes"});
    EXPECT_TRUE(Holds(nameless.out, "( The target cannot be a file name, ErrorCode : 123 )")) << nameless.Said();
    const std::string notes = runner.Run({L"command", L"30210", runner.Write(L"same", "x")}, {L"no"}).error;
    EXPECT_TRUE(Holds(notes, "[question] Encode as Base64 (MIME): The file already exists:"));
    EXPECT_EQ(runner.Read(L"same.b64"), before.at(L"same.b64"));
}

// What a target keeps where the source ends early is held by the tests of the one writer.
TEST(Base64Command, LeavesWhatAnotherProgramWritesAndFolders) {
    const CommandRunner runner;
    const std::wstring busy = runner.Write(L"busy", "half of i");
    const Win32::FileHandle writer(CreateFileW(busy.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                               OPEN_EXISTING, 0, nullptr));
    const std::wstring folder = runner.MakeFolder(L"sub");
    for (const wchar_t* command : {L"30210", L"30211"}) {
        const HostRun run = runner.Run({L"command", command, busy, folder});
        EXPECT_TRUE(Holds(run.out, "\\busy ( Unable to open file, ErrorCode : 32 )")) << run.out;
        EXPECT_TRUE(Holds(run.out, "\\sub ( Unable to open file, ErrorCode : 5 )")) << run.out;
        EXPECT_EQ(runner.List(), (Names{L"busy", L"sub"}));
    }
}

}  // namespace
