#include "fileutils/links/reparse.h"

namespace FileUtils {
namespace {

constexpr uint32_t kMountPointTag = 0xA0000003;
constexpr size_t kHeaderSize = 8;    // tag, data length, reserved
constexpr size_t kNamesOffset = 16;  // after the header and the four fields that describe the names
constexpr size_t kUnitSize = 2;      // of UTF-16
constexpr size_t kZeroUnits = 2;     // one after each name, though no length counts it

void PutNumber16(std::vector<uint8_t>& bytes, size_t offset, size_t value) {
    bytes[offset] = static_cast<uint8_t>(value);
    bytes[offset + 1] = static_cast<uint8_t>(value >> 8);
}

}  // namespace

std::optional<ReparseBuffer> JunctionReparseBuffer(std::wstring_view substituteName) {
    constexpr size_t kLongestName = (kReparseBufferSize - kNamesOffset) / kUnitSize - kZeroUnits;
    if (substituteName.size() > kLongestName) return std::nullopt;
    const size_t nameSize = substituteName.size() * kUnitSize;
    const size_t usedSize = kNamesOffset + nameSize + kZeroUnits * kUnitSize;

    ReparseBuffer buffer{std::vector<uint8_t>(kReparseBufferSize), static_cast<uint32_t>(usedSize)};
    PutNumber16(buffer.bytes, 0, kMountPointTag & 0xFFFF);
    PutNumber16(buffer.bytes, 2, kMountPointTag >> 16);
    PutNumber16(buffer.bytes, 4, usedSize - kHeaderSize);
    PutNumber16(buffer.bytes, 8, 0);  // the substitute name comes first
    PutNumber16(buffer.bytes, 10, nameSize);
    PutNumber16(buffer.bytes, 12, nameSize + kUnitSize);  // the name to print, after the zero
    PutNumber16(buffer.bytes, 14, 0);
    for (size_t at = 0; at < substituteName.size(); ++at)
        PutNumber16(buffer.bytes, kNamesOffset + at * kUnitSize, substituteName[at]);
    return buffer;
}

}  // namespace FileUtils
