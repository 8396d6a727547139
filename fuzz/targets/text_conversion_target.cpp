// Line ends and tabs: blocks change nothing, the buffer is long enough, and the result is what the plain rules give.
#include "fileutils/conversions/text_conversion.h"

#include "fuzz/input.h"

namespace QVFuzz {
namespace {

using FileUtils::TextConversion;

std::string Converted(TextConversion conversion, uint32_t tabWidth, std::string_view text, size_t blockSize) {
    FileUtils::TextConverter converter(conversion, tabWidth);
    std::string result;
    for (size_t at = 0; at < text.size(); at += blockSize) {
        const Exact<char> block(text.substr(at, blockSize));
        const size_t capacity = converter.LargestResult(block.View().size());
        const auto out = std::make_unique<char[]>(capacity);
        const size_t size = converter.Convert(block.View().data(), block.View().size(), out.get());
        Require(size <= capacity, "the capacity is enough");
        result.append(out.get(), size);
    }
    return result;
}

std::string Plainly(TextConversion conversion, uint32_t tabWidth, std::string_view text) {
    std::string result;
    for (size_t at = 0; at < text.size(); ++at) {
        const bool isCr = text[at] == '\r';
        const bool isCrLf = isCr && at + 1 < text.size() && text[at + 1] == '\n';
        const bool isLast = at + 1 == text.size();
        const bool isBreak = isCr || text[at] == '\n';
        if (conversion == TextConversion::TabsToSpaces) {
            result += text[at] == '\t' ? std::string(tabWidth, ' ') : std::string(1, text[at]);
            continue;
        }
        if (!isBreak) result += text[at];
        if (isBreak && conversion == TextConversion::ToLf) result += '\n';
        if (isBreak && conversion == TextConversion::ToCr) result += '\r';
        if (isBreak && conversion == TextConversion::ToCrLf && !(isCr && isLast)) result += "\r\n";
        at += isCrLf;
    }
    return result;
}

}  // namespace

void RunTextConversion(Bytes bytes) {
    Input input(bytes);
    const uint8_t shape = input.Byte();
    const auto conversion = static_cast<TextConversion>(shape % 4);
    const uint32_t tabWidth = shape / 4 % 21;
    const size_t blockSize = size_t{1} + input.Byte() % 64;
    const std::string_view text = input.Rest();
    const std::string expected = Plainly(conversion, tabWidth, text);
    Require(Converted(conversion, tabWidth, text, blockSize) == expected, "blocks give what the plain rules give");
    Require(Converted(conversion, tabWidth, text, text.size() + 1) == expected, "one block does too");
}

}  // namespace QVFuzz
