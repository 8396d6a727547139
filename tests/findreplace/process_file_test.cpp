#include "findreplace/process_file.h"

#include <optional>
#include <random>

#include "findreplace/recording_callback.h"
#include "support/temporary_folder.h"

using namespace QVFindAndReplace;
using namespace std::string_literals;
using namespace QVTest;

namespace {

constexpr uint32_t kBase = Option::ModeOne | Option::DropBackup;
const std::string kUtf8Mark = "\xEF\xBB\xBF";

int64_t Process(const std::wstring& path, uint32_t options, const std::wstring& find, const std::wstring& replacement,
                RecordingCallback& callback, FileNotes* notes = nullptr, QVUtils::TellProgress tell = {}) {
    Request request(options, find, replacement, ToNarrow);
    FileNotes ignored;
    return ProcessFile(path, path, options, request, callback, notes ? *notes : ignored, std::move(tell));
}

}  // namespace

/// In blocks, and as one text where a callback is asked.
TEST(ProcessFile, KeepsTheEncodingAndEveryByteAroundTheMatchesOrFailsTheFile) {
    const std::string e = "\xC3\xA9", mark16 = "\xFF\xFE", w(200'000, 'w');
    constexpr uint32_t kCut = kBase | Option::Wildcard;
    const struct {
        const char* why;
        std::string content;
        uint32_t options;
        const wchar_t *find, *replacement;
        std::optional<std::string> expected;  // none: refused, as the match cuts a character
    } cases[] = {
        {"the thread's code page", "so gro\xDF\r\n", kBase, L"\xDF", L"ss", "so gross\r\n"},
        {"UTF-8 by its mark", kUtf8Mark + "na\xC3\xAFve\n", kBase, L"\xEF", L"\x4E2D",
         kUtf8Mark + "na\xE4\xB8\xADve\n"},
        {"UTF-8 by demand", "na\xC3\xAFve\n", kBase | Option::ForceUtf8, L"\xEF", L"i", "naive\n"},
        {"the mark is not part of the first line", kUtf8Mark + "abc\n", kCut, L"*", L"x", kUtf8Mark + "x\n"},
        {"UTF-16 with mark", mark16 + Utf16(L"\x4E2D x\r\n"), kBase, L"x", L"\xD83D\xDE00",
         mark16 + Utf16(L"\x4E2D \xD83D\xDE00\r\n")},
        {"UTF-16 without mark, cut in a unit", Utf16(L"abcdef\n") + "!", kBase, L"f", L"F", Utf16(L"abcdeF\n") + "!"},
        {"zero bytes", "ab\0cd\nab\n"s, kBase, L"b", L"x", "ax\0cd\nax\n"s},
        {"empty", "", kBase, L"b", L"x", ""},
        {"its first byte taken", kUtf8Mark + "ab n" + e, kCut, L"n?", L"X", {}},
        {"from one to the next", kUtf8Mark + "\xF0\x9F\x98\x80 \xF0\x9F\x98\x80", kCut, L"?? ??", L"X", {}},
        {"something put inside", kUtf8Mark + "a" + e, kCut, L"x{0}", L"-", {}},
        {"after a change in its line", kUtf8Mark + "nxnx n" + e, kCut, L"n?", L"a text", {}},
        {"in another block", kUtf8Mark + "na\n" + std::string(300'000, '\n') + "n" + e, kCut, L"n?", L"X", {}},
        {"half of a pair", mark16 + Utf16(L"a\xD83D\xDE00"), kCut, L"a?", L"X", {}},
        {"over lines",
         mark16 + Utf16(L"\xD83D\xDE00\nb"),
         Option::ModeMultiline | Option::DropBackup,
         L"\xDE00\nb",
         L"X",
         {}},
        {"a whole character", kUtf8Mark + "n" + e + "n", kCut, L"n??", L"X", kUtf8Mark + "Xn"},
        {"bytes that are none", kUtf8Mark + "n\x80\xC3n", kCut, L"n?", L"X", kUtf8Mark + "X\xC3n"},
        {"a code page", "a word na" + e, kCut, L"na?", L"X", "a word X\xA9"},
        {"a code page's letters",
         "\xC4 \xE4"
         "b a",
         kCut | Option::IgnoreCase, L"\xE4", L"X", "X Xb a"},
        {"no letters of UTF-8", kUtf8Mark + "\xC3\x84 \xC3\xA4 A a", kCut | Option::IgnoreCase, L"\xE4 ?", L"X",
         kUtf8Mark + "\xC3\x84 X a"},
        {"a line added before the first break", "a\r" + w + "\re\r\nf\r\n", Option::ModeMultiline | Option::DropBackup,
         L"a", L"1\n2", "12\r\n" + w + "e\r\nf\r\n"},
    };
    for (const auto& c : cases)
        for (const uint32_t way : {0u, uint32_t{Option::Silent}}) {
            const TemporaryFolder folder;
            RecordingCallback callback({Answer::ReplaceAll});
            const std::wstring path = folder.Write(L"file", c.content);
            const int64_t changes = Process(path, c.options | way, c.find, c.replacement, callback);
            EXPECT_EQ(changes == kFileFailed, !c.expected) << c.why;
            EXPECT_TRUE(folder.ReadAll() == (Contents{{L"file", c.expected.value_or(c.content)}})) << c.why;
            EXPECT_EQ(callback.errors.empty() ? 0u : callback.errors[0].second, c.expected ? 0u : 1113u) << c.why;
        }
}

TEST(ProcessFile, NotesUtf8ThatNothingCallsSo) {
    const std::string words = "W\xC3\xB6rter und W\xC3\xB6rter, Text\n";
    std::string quotes;  // a match that may begin at a block's end begins inside of a character
    while (quotes.size() < 300'000) quotes += "a line that ends with \xC2\xAB\n";
    const std::tuple<std::string, uint32_t, const wchar_t*, const wchar_t*, bool> cases[] = {
        {quotes, Option::ModeMultiline | Option::DropBackup, L"\xAB\na", L"b", true},
        {words, kBase, L"Text", L"W\xF6rter", true},  // would be put in by code page
        {words, kBase, L"W\xF6rter", L"x", true},     // is not found
        {words, kBase, L"Text", L"\x4E2D", true},     // has no place in the code page
        {words, kBase | Option::ForceUtf8, L"Text", L"\xF6", false},
        {words + std::string(300'000, '\n') + "W\xF6rter", kBase, L"Text", L"\xF6", false},  // no UTF-8 later on
    };
    for (const auto& [content, options, find, replacement, expected] : cases) {
        const TemporaryFolder folder;
        RecordingCallback callback({});
        FileNotes notes;
        Process(folder.Write(L"file", content), options | Option::Silent, find, replacement, callback, &notes);
        EXPECT_EQ(notes.looksLikeUtf8, expected) << testing::PrintToString(replacement);
    }
}

// A callback that is asked gets the whole text at once and a table of its lines, so the two ways can be compared.
TEST(ProcessFile, BlocksGiveWhatTheWholeTextGives) {
    std::mt19937 random(5);
    const auto oneOf = [&](const auto& list) { return list[random() % std::size(list)]; };
    const std::wstring finds[] = {L"a\nb",       L"b\na\n",         L"\na", L"a\n\nb",
                                  L"a\nx\ny\nb", L"ab\nx\ny\nb\nb", L"a",   L"aab\nb"};
    const std::wstring replacements[] = {L"x", L"ab\na", L"b\n\nab\nb", L"\nb", L"aaba\nbb"};
    // Breaks of all kinds, of one kind, hardly any, and with zero characters.
    const std::string alphabets[] = {"aaabb\n\n\n\r\r\n", "aaabb\n\n", std::string(4000, 'a') + "bbbbb\r\n",
                                     "aabb\0\n"s};
    const uint32_t modes[] = {Option::ModeOne, Option::ModeManySame, Option::ModeMultiline, Option::ModeMultiline};
    for (int round = 0; round < 60; ++round) {
        std::string text;
        if (round % 10 == 0)  // the first change comes after the first blocks
            for (int line = 0; line < 30'000; ++line) text += "ccccccccc\n";
        const std::string alphabet = oneOf(alphabets);
        const size_t size = text.size() + 130'000 + random() % 300'000;
        while (text.size() < size) text += oneOf(alphabet);
        if (round % 3 == 0) text = "\xFF\xFE" + Utf16(std::wstring(text.begin(), text.end()));
        if (round % 3 == 1) text.insert(0, kUtf8Mark);
        const TemporaryFolder folder;
        const std::wstring whole = folder.Write(L"whole", text);
        const std::wstring inBlocks = folder.Write(L"blocks", text);
        const std::wstring find = oneOf(finds), replacement = oneOf(replacements);
        RecordingCallback callback({Answer::ReplaceAll});
        const uint32_t options = oneOf(modes) | Option::DropBackup;
        const int64_t changes = Process(whole, options, find, replacement, callback);
        ASSERT_EQ(Process(inBlocks, options | Option::Silent, find, replacement, callback), changes) << round;
        ASSERT_TRUE(folder.Read(L"blocks") == folder.Read(L"whole")) << round;
    }
}

// Most calls of a work of seconds come from its middle; without them it would be done after few.
TEST(ProcessFile, IsCancelledInTheMiddleOfALine) {
    std::string longLine;
    for (int i = 0; i < 3500; ++i) longLine += std::string(299, 'x') + "z";
    for (const uint32_t way : {0u, uint32_t{Option::Silent}}) {
        const TemporaryFolder folder;
        const std::wstring path = folder.Write(L"file", "y" + longLine + "y");
        RecordingCallback callback({Answer::ReplaceAll});
        int calls = 0;
        EXPECT_EQ(Process(path, kBase | way | Option::Wildcard, L"?{1,300}y", L"X", callback, nullptr,
                          [&](uint32_t percent) { return percent <= 100 && ++calls < 8; }),
                  kFileCancelled);
        EXPECT_TRUE(callback.errors.empty());
        EXPECT_TRUE(folder.ReadAll() == (Contents{{L"file", "y" + longLine + "y"}}));
    }
}

TEST(ProcessFile, WritesNothingWhenCancelledOrWithoutAMatch) {
    const std::string content = "a\nb\ra\nb\r\n";  // saving it would change its breaks
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"file", content);
    RecordingCallback single({Answer::Replace, Answer::Cancel});
    EXPECT_EQ(Process(path, kBase, L"a", L"x", single), kFileCancelled);
    RecordingCallback multiline({Answer::Replace, Answer::Cancel});
    EXPECT_EQ(Process(path, Option::ModeMultiline | Option::DropBackup, L"a\nb", L"x\ny", multiline), 1);
    EXPECT_EQ(multiline.lastReplacement, "x\r\ny");
    EXPECT_EQ(multiline.lastLength, kZeroTerminated);
    RecordingCallback unasked({Answer::ReplaceAll});
    EXPECT_EQ(Process(path, Option::ModeOne | Option::KeepBackup, L"four", L"x", unasked), 0);
    EXPECT_TRUE(single.errors.empty() && multiline.errors.empty() && unasked.errors.empty());
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"file", content}}));
}
