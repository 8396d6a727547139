#include "linesorter/write_lines.h"

namespace QVLineSorter {

template <class CharT>
void WriteLines(const SortableLinesData<CharT>& data, QVUtils::DataWriter& writer) {
    const auto write = [&](const auto& text) { QVUtils::WriteAll(writer, text.data(), text.size() * sizeof(text[0])); };
    // Sorted lines lie all over the text: asking for them some lines ahead hides the memory's answer time.
    constexpr size_t kAhead = 16;
    write(data.ByteOrderMark());
    const auto& lines = data.Lines();
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i + kAhead < lines.size()) __builtin_prefetch(data.LineText(lines[i + kAhead]).data());
        const auto text = data.LineWithBreak(lines[i]);
        write(text);
        if (text.size() == lines[i].length) write(data.PrevailingLineBreak());
    }
    write(data.OddByte());
}

template void WriteLines(const SortableLinesData<char>&, QVUtils::DataWriter&);
#ifdef _WIN32
template void WriteLines(const SortableLinesData<wchar_t>&, QVUtils::DataWriter&);
#else
template void WriteLines(const SortableLinesData<char16_t>&, QVUtils::DataWriter&);
#endif

}  // namespace QVLineSorter
