#include "sdk/text_format.h"

#include <gtest/gtest.h>

#include "sdk/words.h"

using Quorvane::SDK::FormatText;

TEST(FormatText, FillsPlaceholdersWhateverTheLanguageFileSays) {
    EXPECT_EQ(FormatText(L"%d of %s", {3, L"nine"}), L"3 of nine");
    EXPECT_EQ(FormatText(L"%I64d, %llu, %5", {int64_t(-1), uint64_t(2)}), L"-1, 2, %5");
    EXPECT_EQ(FormatText(L"100 %% of %d", {1}), L"100 % of 1");
    EXPECT_EQ(FormatText(L"%s for a number", {7}), L"7 for a number");
    EXPECT_EQ(FormatText(L"%n %s %s", {L"one"}), L"%n one %s");
    EXPECT_EQ(FormatText(L"%s", {L"%d"}), L"%d");
    EXPECT_EQ(FormatText(L"ends in %", {1}), L"ends in %");
}

TEST(Words, AreTheHostsWhereItHasThemElseEnglish) {
    using namespace Quorvane::SDK;
    constexpr CountedText kFiles = {{1_d, L"%d file"}, {2_d, L"%d files"}};
    constexpr OwnText kKnown[] = {{3_d, L"\"%s\" waits for %s."}, {4_d, L"another"}, {5_d, L"%s: no"}};
    const Words say([](TextId id) {
        return id == 1_d ? L"%d Datei" : id == 3_d ? L"%s wartet: %s" : id == 4_d ? L"andere" : id == 5_d ? L"" : L"2d";
    });
    EXPECT_EQ(say(kFiles, 1), L"1 Datei");
    EXPECT_EQ(say(kFiles, 0), L"0 files") << "the name of an id is no text";
    EXPECT_EQ(Words()(kFiles, 1), L"1 file");
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"\"a\" waits for another.", L"a wartet: andere"},
        {L"\"a\" waits for b", L"\"a\" waits for b"},
        {L"another one", L"another one"},
        {L"a: no", L"a: no"},
        {L"no", L"no"},
        {L"", L""},
    };
    for (const auto& [english, translated] : cases) EXPECT_EQ(say.Translated(english, {kKnown}), translated);
}
