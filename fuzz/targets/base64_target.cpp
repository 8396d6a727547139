// Base64 both ways: blocks of any size give the same bytes, within the size that was promised.
#include "fileutils/conversions/base64.h"

#include "fuzz/input.h"
#include "fuzz/plain_base64.h"

namespace QVFuzz {
namespace {

using FileUtils::CBase64;

std::string Decoded(std::string_view text, size_t blockSize, bool& isWhole) {
    CBase64 decoder;
    std::string bytes;
    for (size_t at = 0; at < text.size(); at += blockSize) {
        const Exact<char> block(text.substr(at, blockSize));
        const size_t capacity = CBase64::LargestDecoded(block.View().size());
        const auto data = std::make_unique<uint8_t[]>(capacity);
        const size_t size = decoder.Decode(block.View().data(), block.View().size(), data.get());
        Require(size <= capacity, "the capacity is enough");
        bytes.append(reinterpret_cast<const char*>(data.get()), size);
    }
    uint8_t last[2] = {};
    const size_t size = decoder.Finish(last);
    bytes.append(reinterpret_cast<const char*>(last), size);
    isWhole = decoder.IsWhole();
    return bytes;
}

std::string Encoded(std::string_view bytes, size_t blockSize) {
    FileUtils::Base64Lines lines;
    std::string text;
    for (size_t at = 0; at < bytes.size(); at += blockSize) {
        const Exact<char> block(bytes.substr(at, blockSize));
        const size_t encodedSize = CBase64::EncodedSize(block.View().size());
        const auto encoded = std::make_unique<char[]>(encodedSize);
        Require(CBase64::Encode(reinterpret_cast<const uint8_t*>(block.View().data()), block.View().size(),
                                encoded.get()) == encodedSize,
                "encoded text is as long as promised");
        const size_t capacity = FileUtils::Base64Lines::LargestResult(encodedSize);
        const auto out = std::make_unique<char[]>(capacity);
        const size_t length = lines.Put(encoded.get(), encodedSize, out.get());
        Require(length <= capacity, "the lines' capacity is enough");
        text.append(out.get(), length);
    }
    return text;
}

}  // namespace

void RunBase64(Bytes bytes) {
    Input input(bytes);
    const size_t blockSize = size_t{1} + input.Byte() % 100;
    const std::string_view rest = input.Rest();
    bool isWhole = false;
    bool isWholeAtOnce = false;
    const std::string inBlocks = Decoded(rest, blockSize, isWhole);
    Require(inBlocks == Decoded(rest, rest.size() + 1, isWholeAtOnce) && isWhole == isWholeAtOnce,
            "blocks change nothing");
    const std::string encoded = Encoded(rest, blockSize * 3);
    Require(encoded == Base64TextOf(std::string(rest), blockSize * 3), "the text is the one by the rules");
    Require(Decoded(encoded, blockSize, isWhole) == rest && isWhole, "what is encoded comes back");
}

}  // namespace QVFuzz
