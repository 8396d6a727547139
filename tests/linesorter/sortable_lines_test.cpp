#include "linesorter/sortable_lines.h"

#include "linesorter/sample_lines.h"
#include "support/string_writer.h"

namespace {

using namespace QVLineSorter;
using QVTest::As;

/// A CR that no LF follows ends a line, and is part of none.
template <class CharT>
std::vector<std::basic_string<CharT>> LinesPlainly(const std::basic_string<CharT>& text) {
    std::vector<std::basic_string<CharT>> lines;
    bool isOpen = false;
    for (size_t at = 0; at < text.size(); ++at) {
        if (!isOpen) lines.emplace_back();
        isOpen = text[at] != CharT('\r') && text[at] != CharT('\n');
        if (isOpen) lines.back() += text[at];
        if (text[at] == CharT('\r') && at + 1 < text.size() && text[at + 1] == CharT('\n')) ++at;
    }
    return lines;
}

template <class CharT>
void ExpectPlainLines(const std::basic_string<CharT>& text, uint64_t expectedSize, uint32_t threads,
                      const std::string& what) {
    std::basic_string<CharT> marked = text;
    if constexpr (sizeof(CharT) > 1) marked.insert(0, 1, CharT(0xFEFF));  // part of no line
    const std::string_view bytes(reinterpret_cast<const char*>(marked.data()), marked.size() * sizeof(CharT));
    QVUtils::MemoryDataReader reader(bytes.data(), static_cast<uint32_t>(bytes.size()), false);
    QVUtils::Progress progress;
    Workers workers(progress, threads);
    const SortableLinesData<CharT> data(reader, expectedSize, workers);
    std::vector<std::basic_string<CharT>> lines;
    for (const SortableLine& line : data.Lines()) lines.emplace_back(data.LineText(line));
    EXPECT_TRUE(lines == LinesPlainly(text)) << what;
    EXPECT_EQ(data.HasZeroCharacter(), text.find(CharT(0)) != text.npos) << what;
    if (text.find(CharT('\r')) != text.npos) return;  // one of them may be lost
    QVTest::StringWriter writer;
    WriteLines(data, writer, workers);
    EXPECT_TRUE(writer.text == bytes) << what;
}

TEST(SortableLines, AreThePlainOnesWhereverBlocksEnd) {
    QVTest::InBothWidths([]<class CharT>(CharT) {
        constexpr size_t kUnits = SortableLinesData<CharT>::kBlockSize / sizeof(CharT);
        for (const char* around : {"\r\n", "\n\n", "\r\r", "a\r", "\n\r", "ab", "\r\n\r\n"}) {
            for (const size_t before : {0, 1, 2, 3}) {
                auto text =
                    std::basic_string<CharT>(kUnits - before, CharT('x')) + As<CharT>(around) + As<CharT>("y\n");
                const std::string what =
                    "block ends " + std::to_string(before) + " into " + testing::PrintToString(around);
                ExpectPlainLines(text, (text.size() + 1) * sizeof(CharT), 2, what);
                ExpectPlainLines(text, 0, 0, what + ", grown");
            }
        }
        QVTest::Random random(11);
        for (const std::string_view letters : {std::string_view("\r\nabc"), std::string_view("\nabcdefgh\0", 10)}) {
            const auto units = As<CharT>(letters);
            std::basic_string<CharT> text;
            while (text.size() < 3 * kUnits + 100) text += units[random.Below(static_cast<uint32_t>(units.size()))];
            text += CharT('\n');
            ExpectPlainLines(text, text.size() * sizeof(CharT), 3, "random text");
        }
    });
}

}  // namespace
