#include "findreplace/lines.h"

#include <functional>

#include <gtest/gtest.h>

#include "findreplace/request.h"

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

template <class CharT>
void Load(Lines<CharT>& lines, const std::string& bytes, uint32_t chunkSize = 32768, uint32_t markSize = 0) {
    MemoryDataReader reader(bytes.data(), static_cast<uint32_t>(bytes.size()), false);
    lines.Load(reader, bytes.size() / 2, markSize, chunkSize);  // a size that is too small must not matter
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
    lines.Save(writer);
    return writer.text;
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
        for (const uint32_t chunkSize : {1u, 2u, 3u, 4u}) {
            Lines<CharT> lines;
            Load(lines, Widened<CharT>(text), chunkSize);
            ASSERT_EQ(lines.GetCount(), expected.size());
            for (uint32_t i = 0; i < lines.GetCount(); ++i) {
                const auto line = lines.GetLine(i);
                ASSERT_EQ(std::string(line.begin(), line.end()), expected[i].first);
                ASSERT_EQ(static_cast<int>(lines.GetRecord(i).lineBreak), expected[i].second);
                ASSERT_EQ(lines.GetRecord(i).breakLength, expected[i].second == 0 ? 0 : expected[i].second - 1);
            }
            ASSERT_EQ(Saved(lines), Widened<CharT>(SavedModel(expected)));
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

TEST(Lines, MarksAndHalfUnitsComeBackWhereTheyWere) {
    const std::string bytes = "\xFF\xFE" + Widened<wchar_t>("a\nb") + "!";
    Lines<wchar_t> lines;
    Load(lines, bytes, 3, 2);
    ASSERT_EQ(lines.GetCount(), 2u);
    EXPECT_EQ(lines.GetLine(0), L"a");
    EXPECT_EQ(lines.GetLine(1), L"b");
    EXPECT_EQ(Saved(lines), bytes);
}

TEST(Lines, EditsShowInTheLinesAndInWhatIsSaved) {
    Lines<char> lines;
    Load(lines, "one\r\ntwo\nthree\nfour");
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
    Load(lines, text);
    for (uint32_t first : {0u, 1u, 500u, 999u})
        for (uint32_t line = first; line < 1000; line += 7)
            ASSERT_EQ(lines.FindLineOf(lines.GetRecord(line).text, first, 1000), line);
}

TEST(Lines, FourGigabytesAreRefusedBeforeLoading) {
    Lines<char> lines;
    MemoryDataReader reader("", 0, false);
    EXPECT_THROW(lines.Load(reader, 0x100000000, 0), QVUtils::QVUtilsException);
}
