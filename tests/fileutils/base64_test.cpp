// Base64: the letters and lines against a plain model, headers by their bytes, and the commands there and back.
#include "fileutils/conversions/base64.h"

#include <algorithm>

#include "fileutils/command_runner.h"
#include "fileutils/conversions/mime_header.h"
#include "fuzz/plain_base64.h"
#include "support/small_texts.h"
#include "win32/files.h"
#include "win32/handle.h"
#include "win32/windows.h"

namespace {

using namespace FileUtils;
using namespace QVTest;

/// Bytes without a pattern that repeats with the groups.
std::string Bytes(size_t size) {
    std::string bytes;
    uint32_t state = 1;
    while (bytes.size() < size) {
        state = state * 1664525 + 1013904223;
        bytes += static_cast<char>(state >> 24);
    }
    return bytes;
}

std::string Decoded(const std::string& text, bool& isWhole) {
    CBase64 decoder;
    std::string result(CBase64::LargestDecoded(text.size()) + 2, '?');
    auto* const bytes = reinterpret_cast<uint8_t*>(result.data());
    const size_t size = decoder.Decode(text.data(), text.size(), bytes);
    result.resize(size + decoder.Finish(bytes + size));
    isWhole = decoder.IsWhole();
    return result;
}

constexpr char kHeader[] =
    "MIME-Version: 1.0\r\n"
    "Content-Type: application/octet-stream; name=\"a.bin\"\r\n"
    "Content-Transfer-Encoding: base64\r\n"
    "Content-Disposition: attachment; filename=\"a.bin\"\r\n"
    "\r\n";

TEST(CBase64, GivesBackWhatWasEncodedWhereverTheBlocksAreCut) {
    for (size_t size = 0; size <= 200; ++size)
        for (const int blockSize : {0, 1, 2, 3, 4, 75, 99}) RunTarget(QVFuzz::RunBase64, {blockSize}, Bytes(size));
}

TEST(CBase64, SkipsWhatIsNoLetterAndStopsAtThePadding) {
    const struct {
        const char* why;
        std::string text, bytes;
        bool isWhole;
    } cases[] = {
        {"line breaks in groups", "Y\r\nW\nJ j\r\n\tZ\xFFGU=\r\n", "abcde", true},
        {"nothing behind the padding", "YQ==YWJj", "a", true},
        {"missing padding of two bytes", "YWI", "ab", true},
        {"half a byte", "YWJjY", "abc", false},
        {"zero bytes", std::string("Y\0W\0J\0j", 7), "abc", true},
    };
    for (const auto& c : cases) {
        bool isWhole = false;
        EXPECT_EQ(Decoded(c.text, isWhole), c.bytes) << c.why;
        EXPECT_EQ(isWhole, c.isWhole) << c.why;
    }
}

TEST(MimeHeader, GivesTheNameOfItsSecondLine) {
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"our own", kHeader, "a.bin"},
        {"without an end of the second line", "x MIME-Version\nname=\"q\"", "q"},
        {"no name", "MIME-Version: 1.0\r\nContent-Type: x\r\nname=\"a\"\r\n", ""},
        {"no closing quote", "MIME-Version: 1.0\r\nname=\"a\r\n\"", ""},
        {"cut off by the area", "MIME-Version: 1.0\r\nname=\"" + std::string(1000, 'a') + "\"", ""},
        {"empty", "", ""},
    };
    for (const auto& [why, bytes, name] : cases) EXPECT_EQ(NameInHeader(bytes), name) << why;
    EXPECT_EQ(MimeHeader("a.bin"), kHeader);
}

TEST(MimeHeader, EndsAtItsEmptyLine) {
    const std::pair<const char*, std::string> cases[] = {
        {"our own", kHeader},
        {"of another writer, another order",
         "Content-Type: text/plain;\n\tcharset=x\nMIME-Version: 1.0\ncontent-transfer-encoding: base64\n\n"},
        {"lines that are no fields", "MIME-Version 1\r\nname=\"a\"\r\nsomething\r\n\r\n"},
    };
    for (const auto& [why, header] : cases)
        EXPECT_EQ(HeaderSize(header + "YWJj\r\n\r\nYWJj\r\n"), header.size()) << why;
    for (const char* none : {"", "YWJj\r\n\r\n", "\r\nYWJj", "Note: no MIME here\r\n\r\nYWJj", "MIME-Version: 1.0\r\n"})
        EXPECT_EQ(HeaderSize(none), 0u) << none;
}

TEST(Base64Command, WritesTheseBytesAndReadsThemBack) {
    const CommandRunner runner;
    for (const size_t size :
         {0, 1, 56, 57, 58, 75, 76, 3071, 3072, 3073, 3102, 3128, 3129, 4096, 6144, 3072 * 64 + 40}) {
        const std::string bytes = Bytes(size);
        const std::wstring path = runner.Write(L"a.bin", bytes);
        EXPECT_EQ(runner.Run({L"command", L"30210", path}, {L"yes"}).out, "");
        ASSERT_EQ(runner.Read(L"a.bin.b64"), kHeader + QVFuzz::Base64TextOf(bytes, 3072)) << size;
        runner.Write(L"a.bin", "overwritten");
        EXPECT_EQ(runner.Run({L"command", L"30211", path + L".b64"}, {L"yes"}).out, "");
        ASSERT_EQ(runner.Read(L"a.bin"), bytes) << size;
    }
}

TEST(Base64Command, DecodesIntoAPlainNameOfItsOwnFolder) {
    for (const char* name : {"y.bin", "..\\y.bin", "C:/y.bin", "y:z", "nul.txt"}) {
        const CommandRunner runner;
        const std::string text = MimeHeader(name) + "YWJj";
        const HostRun run = runner.Run({L"command", L"30211", runner.Write(L"x.txt.b64", text)}, {L"no"});
        EXPECT_EQ(run.out + run.error, "") << name;
        const wchar_t* const target = name == std::string("y.bin") ? L"y.bin" : L"x.txt";
        EXPECT_EQ(runner.ReadAll(), (Contents{{L"x.txt.b64", text}, {target, "abc"}})) << name;
    }
}

TEST(Base64Command, SaysHowMuchOfATextItDidNotUse) {
    const struct {
        const char* text;
        const char* said;  // a part; "": nothing
        const char* decoded;
    } cases[] = {
        {"-_-_\r\n", "( There is no Base64 text, 4 characters were ignored, ErrorCode : 13 )", ""},
        {"Y-W\xE4Jj", "[Base64] - Note : 2 characters were ignored ", "abc"},
        {"YQ==\r\n\r\nYg==", "[Base64] - Note : 2 characters were ignored ", "a"},
        {"YQ==\r\n \t\r\n", "", "a"},
        {"", "", ""},
    };
    for (const auto& c : cases) {
        const CommandRunner runner;
        const HostRun run = runner.Run({L"command", L"30211", runner.Write(L"a.b64", c.text)});
        EXPECT_TRUE(Holds(run.out, c.said)) << c.text;
        EXPECT_EQ(run.out.empty(), *c.said == 0) << c.text;
        EXPECT_EQ(runner.Read(L"a"), c.decoded) << c.text;
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
    const std::string notes = runner.Run({L"command", L"30210", runner.Write(L"same", "x")}, {L"no"}).error;
    EXPECT_TRUE(Holds(notes, "[question] Encode as Base64 (MIME): The file already exists:"));
    EXPECT_EQ(runner.Read(L"same.b64"), before.at(L"same.b64"));
}

TEST(Base64Command, OpensTheSourceBeforeTheTargetAndGoesOn) {
    const CommandRunner runner;
    const std::wstring folder = runner.MakeFolder(L"sub");
    runner.Write(L"sub.b64", "old");
    const std::wstring cut = runner.Write(L"cut.b64", "YWJjY");
    HostRun run = runner.Run({L"command", L"30210", folder}, {L"yes"});
    EXPECT_TRUE(Holds(run.out, "[Base64] - Failed to encode file : "));
    EXPECT_EQ(runner.Read(L"sub.b64"), "old");
    run = runner.Run({L"command", L"30211", cut}, {L"yes"});
    EXPECT_TRUE(Holds(run.out, "( The Base64 text is cut off, ErrorCode : 13 )"));
    EXPECT_EQ(runner.Read(L"cut"), "abc") << "what could be decoded stays";
    runner.Write(L"cut", "old");
    run = runner.Run({L"command", L"30211", cut}, {L"yes"});
    EXPECT_TRUE(Holds(run.out, "( The Base64 text is cut off, ErrorCode : 13 )"));
    EXPECT_EQ(runner.Read(L"cut"), "old") << "an existing target keeps its content until all is decoded";
    const std::wstring busy = runner.Write(L"busy", "half of i");
    const Win32::FileHandle writer(CreateFileW(busy.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                               OPEN_EXISTING, 0, nullptr));
    run = runner.Run({L"command", L"30210", busy});
    EXPECT_TRUE(Holds(run.out, "( Unable to open file, ErrorCode : 32 )"));
    EXPECT_FALSE(Win32::Exists(runner / L"busy.b64")) << "a copy of a file that is being written";
}

}  // namespace
