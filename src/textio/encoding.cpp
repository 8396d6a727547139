#include "textio/encoding.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace QVUtils {
namespace {

bool StartsWith(const uint8_t* sample, size_t size, std::string_view bytes) {
    return size >= bytes.size() && std::memcmp(sample, bytes.data(), bytes.size()) == 0;
}

/// UTF-16 without a mark shows by its first five units: ASCII letters have a zero in every second byte.
bool LooksLikeUtf16(const uint8_t* sample, size_t size) {
    if (size < 10) return false;
    for (size_t i = 0; i < 10; i += 2)
        if (sample[i] == 0 || sample[i + 1] != 0) return false;
    return true;
}

/// The declaration counts only when its line ends inside the sample, before any zero byte.
bool HasXmlDeclarationOfUtf8(const uint8_t* sample, size_t size) {
    if (!StartsWith(sample, size, "<?xml ")) return false;
    const uint8_t* const end = std::find_if(sample, sample + size, [](uint8_t b) { return b == '\n' || b == 0; });
    if (end == sample + size || *end == 0) return false;
    const std::string_view line(reinterpret_cast<const char*>(sample), static_cast<size_t>(end - sample));
    return line.find("UTF-8") != std::string_view::npos;
}

/// The middle of the upper half (0xB0 to 0xDF) is accepted and the rest of it is not (compatibility: 10): the share
/// that this lets through is what existing selections of files were made with.
constexpr bool IsSuspicious(uint8_t byte) {
    const bool printable = byte >= 0x20 && byte <= 0x7E;
    const bool acceptedUpperHalf = byte >= 0xB0 && byte <= 0xDF;
    return !printable && !acceptedUpperHalf && byte != '\t' && byte != '\n' && byte != '\r';
}

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

}  // namespace

EncodingKind DetectEncoding(const uint8_t* sample, size_t size) {
    if (StartsWith(sample, size, kUtf16Mark) || LooksLikeUtf16(sample, size)) return EncodingKind::Utf16;
    if (StartsWith(sample, size, kUtf8Mark) || HasXmlDeclarationOfUtf8(sample, size)) return EncodingKind::Utf8;
    const auto suspicious = static_cast<size_t>(std::count_if(sample, sample + size, IsSuspicious));
    const auto tolerated = static_cast<size_t>(static_cast<double>(size) * 0.2);
    return suspicious > tolerated ? EncodingKind::NotText : EncodingKind::CodePage;
}

size_t ByteOrderMarkSize(EncodingKind kind, const uint8_t* sample, size_t size) {
    std::string_view mark;
    if (kind == EncodingKind::Utf16) mark = kUtf16Mark;
    if (kind == EncodingKind::Utf8) mark = kUtf8Mark;
    return !mark.empty() && StartsWith(sample, size, mark) ? mark.size() : 0;
}

}  // namespace QVUtils
