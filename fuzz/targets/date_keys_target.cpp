// Dates read from lines by a format, in both widths.
#include "linesorter/date_key.h"

#include "fuzz/input.h"

namespace QVFuzz {
namespace {

template <class CharT>
size_t Read(std::string_view formatBytes, std::string_view textBytes, QVLineSorter::CalendarFields& fields) {
    const Exact<CharT> format(Widened<CharT>(formatBytes));
    const Exact<CharT> text(Widened<CharT>(textBytes));
    const size_t length = QVLineSorter::ParseDate(text.View(), format.View(), fields);
    Require(length == QVLineSorter::kNoDate || length <= text.View().size(), "a date lies in its text");
    static QVLineSorter::DateKeyReader remembering;
    const int64_t key = remembering.Read(text.View(), format.View());
    Require(key == QVLineSorter::DateKeyReader().Read(text.View(), format.View()), "what is remembered changes no key");
    Require(key >= -1, "no key lies before 1970");
    return length;
}

}  // namespace

void RunDateKeys(Bytes bytes) {
    Input input(bytes);
    const std::string format = input.Text();
    const std::string text(input.Rest());
    if (format.size() > 127 || QVLineSorter::FindUnsupportedConversion(Widened<wchar_t>(format)) != 0) return;
    QVLineSorter::CalendarFields narrow;
    QVLineSorter::CalendarFields wide;
    const size_t narrowLength = Read<char>(format, text, narrow);
    const size_t wideLength = Read<WideChar>(format, text, wide);
    const auto isAscii = [](char unit) { return static_cast<uint8_t>(unit) < 0x80; };
    if (std::ranges::all_of(format + text, isAscii))
        Require(narrowLength == wideLength && narrow == wide, "both widths read the same");
}

}  // namespace QVFuzz
