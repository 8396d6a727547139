// What kind of text some bytes are: against the rules in their plainest form.
#include "textio/encoding.h"

#include "fuzz/input.h"

namespace QVFuzz {
namespace {

using QVUtils::EncodingKind;

EncodingKind Plainly(std::string_view text) {
    const auto at = [&](size_t index) { return static_cast<uint8_t>(text[index]); };
    if (text.starts_with("\xFF\xFE")) return EncodingKind::Utf16;
    bool isWide = text.size() >= 10;
    for (size_t i = 0; isWide && i < 10; ++i) isWide = (at(i) == 0) == (i % 2 == 1);
    if (isWide) return EncodingKind::Utf16;
    if (text.starts_with("\xEF\xBB\xBF")) return EncodingKind::Utf8;
    const size_t end = text.find('\n');
    const std::string_view line = end == text.npos ? std::string_view() : text.substr(0, end);
    if (line.starts_with("<?xml ") && line.find('\0') == line.npos && line.find("UTF-8") != line.npos)
        return EncodingKind::Utf8;
    size_t suspicious = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isFine = at(i) == '\t' || at(i) == '\n' || at(i) == '\r' || (at(i) >= 0x20 && at(i) <= 0x7E) ||
                            (at(i) >= 0xB0 && at(i) <= 0xDF);
        suspicious += !isFine;
    }
    return suspicious > static_cast<size_t>(static_cast<double>(text.size()) * 0.2) ? EncodingKind::NotText
                                                                                    : EncodingKind::CodePage;
}

}  // namespace

void RunEncoding(Bytes bytes) {
    const Exact<char> sample(Input(bytes).Rest().substr(0, 1024));
    const auto* const data = reinterpret_cast<const uint8_t*>(sample.View().data());
    const size_t size = sample.View().size();
    const EncodingKind kind = QVUtils::DetectEncoding(data, size);
    Require(kind == Plainly(sample.View()), "the kind is the plain rules' kind");
    Require(QVUtils::ByteOrderMarkSize(kind, data, size) <= size, "a mark lies in the sample");
}

}  // namespace QVFuzz
