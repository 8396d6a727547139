#include "sdk/text_format.h"

#include <gtest/gtest.h>

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
