// Texts cut into blocks and lines, by find and replace and by the sorter, in both widths: what comes in goes out.
#include <vector>

#include "findreplace/lines.h"
#include "findreplace/text_blocks.h"
#include "fuzz/input.h"
#include "fuzz/text_writer.h"
#include "linesorter/sortable_lines.h"

namespace QVFuzz {
namespace {

template <class CharT>
std::string BytesOf(std::basic_string_view<CharT> text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(CharT)};
}

/// Line by line, every break in the style of the first one; a lone CR is lost.
template <class CharT>
std::string SavedPlainly(std::basic_string_view<CharT> text) {
    using Text = std::basic_string<CharT>;
    std::vector<std::pair<Text, Text>> lines;  // with its break
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find_first_of(Text{CharT('\r'), CharT('\n')}, at), text.size());
        size_t breakLength = end < text.size() ? 1 : 0;
        if (end + 1 < text.size() && text[end] == CharT('\r') && text[end + 1] == CharT('\n')) breakLength = 2;
        Text lineBreak(text.substr(end, breakLength));
        if (lineBreak == Text{CharT('\r')}) lineBreak.clear();
        lines.emplace_back(text.substr(at, end - at), lineBreak);
        at = end + breakLength;
    }
    Text style;
    for (const auto& line : lines)
        if (style.empty()) style = line.second;
    Text saved;
    for (const auto& line : lines) saved += line.first + (line.second.empty() ? Text() : style);
    return BytesOf<CharT>(saved);
}

template <class CharT>
void ReadInBlocks(std::string_view bytes, uint32_t markSize, size_t blockSize, uint32_t chunkSize) {
    using Blocks = QVFindAndReplace::TextBlocks<CharT>;
    QVUtils::MemoryDataReader reader(bytes.data(), static_cast<uint32_t>(bytes.size()), false);
    Blocks blocks(reader, markSize, blockSize, bytes.size(), Blocks::Cut::AfterLines, chunkSize);
    QVFindAndReplace::Lines<CharT> lines;
    auto style = QVUtils::LineBreak::None;
    TextWriter saved;
    std::string whole;
    for (typename Blocks::View block; blocks.Next(block);) {
        // The first block begins the text, mark or not.
        const size_t before = whole.empty() ? 0 : blocks.GetMark().size() + whole.size();
        Require(!block.empty() && blocks.GetOffset() == before, "blocks follow on");
        whole += BytesOf<CharT>(block);
        const Exact<CharT> exact(block);
        lines.Reset(exact.View());
        Require(lines.GetCount() > 0, "a block has a line");
        lines.Save(saved, style);
    }
    Require(blocks.GetMark() + whole + blocks.GetHalfUnit() == bytes, "no byte is lost between the blocks");
    const Exact<CharT> text({reinterpret_cast<const CharT*>(whole.data()), whole.size() / sizeof(CharT)});
    Require(saved.text == SavedPlainly<CharT>(text.View()), "lines are saved as the plain rules say");
}

template <class CharT>
void SortNothing(std::string_view bytes, uint64_t expectedSize) {
    QVUtils::MemoryDataReader reader(bytes.data(), static_cast<uint32_t>(bytes.size()), false);
    QVUtils::Progress progress;
    QVLineSorter::Workers workers(progress);
    QVLineSorter::SortableLinesData<CharT> data(reader, expectedSize, workers);
    TextWriter saved;
    QVLineSorter::WriteLines(data, saved, workers);
    // Unsorted lines come out as they were, but for a break after those that had none.
    size_t at = 0;
    for (const char byte : saved.text) at += at < bytes.size() && bytes[at] == byte;
    const bool losesCr = bytes.find('\r') != bytes.npos;
    Require(at == bytes.size() || losesCr, "every byte is written again");
}

}  // namespace

void RunDocument(Bytes bytes) {
    Input input(bytes);
    const uint8_t shape = input.Byte();
    // Chunks of whole units, and big enough for a mark; blocks of any size.
    const uint32_t chunkSize = (1 + shape % 8) * 4;
    const size_t blockSize = (shape & 0x80) ? SIZE_MAX : size_t{1} + (shape / 8) % 16;
    const Exact<char> text(input.Rest());
    const std::string_view all = text.View();
    ReadInBlocks<char>(all, all.starts_with("\xEF\xBB\xBF") ? 3 : 0, blockSize, chunkSize);
    ReadInBlocks<WideChar>(all, all.starts_with("\xFF\xFE") ? 2 : 0, blockSize, chunkSize);
    SortNothing<char>(all, shape % 3 == 0 ? all.size() : shape);
    SortNothing<WideChar>(all, shape % 3 == 0 ? all.size() : shape);
}

}  // namespace QVFuzz
