#include "findreplace/lines.h"

#include <functional>

#include <gtest/gtest.h>

#include "findreplace/text_blocks.h"

using namespace QVFindAndReplace;
using QVUtils::MemoryDataReader;

namespace {

/// A line as a test names it: its text and the kind of its break.
using Line = std::pair<std::string, int>;

/// Cuts text into lines the obvious way.
std::vector<Line> Model(const std::string& text) {
    std::vector<Line> lines;
    std::string line;
    bool isOpen = false;
    for (size_t i = 0; i < text.size(); ++i) {
        isOpen = true;
        if (text[i] == '\n' || text[i] == '\r') {
            const bool isPair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
            lines.emplace_back(line, isPair ? 3 : text[i] == '\n' ? 2 : 0);
            line.clear();
            isOpen = false;
            i += isPair;
        } else {
            line += text[i];
        }
    }
    if (isOpen) lines.emplace_back(line, 0);
    return lines;
}

/// What saving these lines must give: the style of the first break for all of them.
std::string SavedModel(const std::vector<Line>& lines) {
    int style = 2;
    for (const Line& line : lines) {
        if (line.second == 0) continue;
        style = line.second;
        break;
    }
    std::string text;
    for (const Line& line : lines) text += line.first + (line.second == 0 ? "" : style == 2 ? "\n" : "\r\n");
    return text;
}

template <class CharT>
std::string Widened(const std::string& text) {
    const std::basic_string<CharT> wide(text.begin(), text.end());
    return {reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(CharT)};
}

/// Collects what is written.
class StringWriter final : public QVUtils::DataWriter {
public:
    uint32_t WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) override {
        text.append(static_cast<const char*>(buffer), size);
        *bytesWritten = size;
        return 1;
    }
    std::string text;
};

template <class CharT>
std::string Saved(const Lines<CharT>& lines) {
    StringWriter writer;
    auto style = QVUtils::LineBreak::None;
    lines.Save(writer, style);
    return writer.text;
}

/// Cuts a text into blocks, and saves the lines of each.
template <class CharT>
std::string SavedByBlocks(const std::string& bytes, uint32_t markSize, size_t blockSize, uint32_t chunkSize,
                          std::vector<Line>& cut) {
    MemoryDataReader reader(bytes.data(), static_cast<uint32_t>(bytes.size()), false);
    TextBlocks<CharT> blocks(reader, markSize, blockSize, bytes.size() / 2, chunkSize);  // a wrong size must not matter
    StringWriter writer;
    auto style = QVUtils::LineBreak::None;
    Lines<CharT> lines;
    size_t offset = 0;
    for (std::basic_string_view<CharT> block; blocks.Next(block); offset += block.size() * sizeof(CharT)) {
        EXPECT_EQ(blocks.GetOffset(), offset + (offset > 0 ? blocks.GetMark().size() : 0));
        lines.Reset(block);
        lines.Save(writer, style);
        for (uint32_t i = 0; i < lines.GetCount(); ++i) {
            const auto line = lines.GetLine(i);
            const auto kind = static_cast<int>(lines.GetRecord(i).lineBreak);
            EXPECT_EQ(lines.GetRecord(i).breakLength, kind == 0 ? 0 : kind - 1);
            cut.emplace_back(std::string(line.begin(), line.end()), kind);
        }
    }
    return blocks.GetMark() + writer.text + blocks.GetHalfUnit();
}

template <class CharT>
class LinesOf : public testing::Test {};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(LinesOf, Widths);

}  // namespace

/// All 3,279 texts of up to seven units over a letter, CR and LF, read in chunks that end everywhere.
TYPED_TEST(LinesOf, SmallTextsAreCutAndSavedAsTheModelSays) {
    using CharT = TypeParam;
    std::string text;
    const auto check = [&] {
        const std::vector<Line> expected = Model(text);
        for (const auto& [blockSize, chunkSize] : {std::pair(1u, 1u), {2u, 3u}, {4u, 2u}, {7u, 4u}, {4096u, 3u}}) {
            std::vector<Line> cut;
            const std::string saved = SavedByBlocks<CharT>(Widened<CharT>(text), 0, blockSize, chunkSize, cut);
            ASSERT_EQ(cut, expected) << testing::PrintToString(text);
            ASSERT_EQ(saved, Widened<CharT>(SavedModel(expected))) << testing::PrintToString(text);
        }
    };
    const std::function<void()> grow = [&] {
        check();
        if (text.size() == 7) return;
        for (const char unit : {'a', '\r', '\n'}) {
            text += unit;
            grow();
            text.pop_back();
        }
    };
    grow();
}

TEST(TextBlocks, MarksAndHalfUnitsComeBackWhereTheyWere) {
    const std::string bytes = "\xFF\xFE" + Widened<wchar_t>("a\nb\n") + "!";
    for (const size_t blockSize : {size_t(1), size_t(5), TextBlocks<wchar_t>::kWholeText}) {
        for (const uint32_t chunkSize : {1u, 3u, 100u}) {
            std::vector<Line> cut;
            EXPECT_EQ(SavedByBlocks<wchar_t>(bytes, 2, blockSize, chunkSize, cut), bytes);
            EXPECT_EQ(cut, (std::vector<Line>{{"a", 2}, {"b", 2}}));
        }
    }
}

TEST(TextBlocks, FourGigabytesAreRefusedBeforeLoading) {
    MemoryDataReader reader("", 0, false);
    EXPECT_THROW(TextBlocks<char>(reader, 0, 1, 0x100000000), QVUtils::QVUtilsException);
}

TEST(Lines, EditsShowInTheLinesAndInWhatIsSaved) {
    Lines<char> lines;
    lines.Reset("one\r\ntwo\nthree\nfour");
    lines.SetLine(0, "", "");
    lines.RemoveLine(1);
    lines.InsertLine(1, "after the removed one");
    lines.SetLine(2, "th", lines.GetLine(2).substr(3));
    lines.SetLine(2, lines.GetLine(2), "!");
    lines.InsertLine(3, "five");
    lines.InsertLine(3, "six");
    EXPECT_EQ(lines.GetLine(0), "");
    EXPECT_FALSE(lines.IsUntouched(0));
    EXPECT_EQ(lines.GetLine(2), "thee!");
    // The last line had no break: the lines added behind it are set off from it, and the last of them has none.
    EXPECT_EQ(Saved(lines), "\r\nafter the removed one\r\nthee!\r\nfour\r\nfive\r\nsix");
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
