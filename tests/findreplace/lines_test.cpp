#include "findreplace/lines.h"

#include "findreplace/text_blocks.h"
#include "support/small_texts.h"
#include "support/temporary_folder.h"

using namespace QVFindAndReplace;
using QVUtils::MemoryDataReader;

// In blocks and chunks that end everywhere, in both widths, with a byte too many and after a mark.
TEST(Lines, OfEverySmallTextAreCutAndSavedByThePlainRules) {
    for (const std::string& text : QVTest::SmallTexts("a\r\n")) {
        const std::string wide = QVTest::Utf16(std::wstring(text.begin(), text.end()));
        for (const int shape : {0, 18, 127})
            for (const std::string& bytes : {text, "\xEF\xBB\xBF" + text, wide, "\xFF\xFE" + wide + "!"})
                QVTest::RunTarget(QVFuzz::RunDocument, {shape}, bytes);
    }
}

TEST(TextBlocks, FourGigabytesAreRefusedBeforeLoadingWhereAllIsHeld) {
    MemoryDataReader reader("", 0, false);
    EXPECT_THROW(TextBlocks<char>(reader, 0, TextBlocks<char>::kWholeText, 0x100000000), QVUtils::QVUtilsException);
    std::string_view block;
    EXPECT_FALSE(TextBlocks<char>(reader, 0, 1, 0x100000000).Next(block));
}

TEST(Lines, ThePlaceOfATextTellsItsLine) {
    std::string text;
    for (int i = 0; i < 1000; ++i) text += std::string(static_cast<size_t>(i % 5), 'x') + "\n";
    Lines<char> lines;
    lines.Reset(text);
    for (uint32_t first : {0u, 1u, 500u, 999u})
        for (uint32_t line = first; line < 1000; line += 7)
            ASSERT_EQ(lines.FindLineOf(lines.GetRecord(line).text, first, 1000), line);
}
