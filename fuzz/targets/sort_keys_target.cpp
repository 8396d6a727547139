// Where a line's sort key lies, and what number it holds.
#include "linesorter/sort_key.h"

#include <cerrno>

#include "fuzz/input.h"

namespace QVFuzz {
namespace {

template <class CharT>
void Look(Input input, std::string_view lineBytes, const std::string& narrow) {
    using Rule = QVLineSorter::KeyRule<CharT>;
    Rule rule;
    const uint8_t shape = input.Byte();
    rule.kind = static_cast<typename Rule::Kind>(shape % 3);
    rule.skipLeadingSpaces = (shape & 4) != 0;
    rule.endAtWhiteSpace = (shape & 8) != 0;
    rule.endAtCharacter = (shape & 16) != 0;
    const auto separator = static_cast<CharT>(input.Byte());
    if (shape & 32) rule.separator = separator;
    rule.lineOffset = (shape & 64) ? input.Number() : input.Byte();
    rule.substringLength = (shape & 128) ? input.Number() : input.Byte();
    rule.itemNumber = input.Byte();
    const Exact<CharT> line(Widened<CharT>(lineBytes));
    const auto view = line.View();
    const QVLineSorter::KeySpan key = QVLineSorter::FindKey(view, rule);
    Require(key.offset <= view.size() && key.length <= view.size() - key.offset, "a key lies in its line");
    const auto number = QVLineSorter::ParseInteger(view);
    Require(number.length <= view.size(), "a number lies in its text");
    QVLineSorter::NumberKey(view.substr(key.offset), rule.substringLength);
    if (narrow.size() != view.size()) return;
    char* end = nullptr;
    const long long expected = std::strtoll(narrow.c_str(), &end, 10);
    Require(number.value == expected && number.length == static_cast<size_t>(end - narrow.c_str()),
            "a number is what the runtime reads");
}

}  // namespace

void RunSortKeys(Bytes bytes) {
    const Input input(bytes);
    const std::string_view line = Input(bytes.size() > 12 ? bytes.subspan(12) : Bytes()).Rest();
    // The runtime's own reading ends at a zero.
    const std::string narrow(line.find('\0') == line.npos ? line : std::string_view("\0", 0));
    Look<char>(input, line, narrow);
    Look<WideChar>(input, line, narrow);
}

}  // namespace QVFuzz
