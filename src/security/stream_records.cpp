#include "security/stream_records.h"

#include <cstddef>

namespace Security {
namespace {

constexpr size_t kAllocationOffset = 16;
constexpr size_t kHeaderSize = 24;  // a record without its name

uint64_t NumberAt(std::span<const uint8_t> bytes, size_t offset, size_t size) {
    uint64_t number = 0;
    for (size_t at = 0; at < size; ++at) number |= uint64_t{bytes[offset + at]} << (8 * at);
    return number;
}

}  // namespace

StreamFigures FiguresOfStreams(std::span<const uint8_t> block) {
    StreamFigures figures;
    std::span<const uint8_t> record = block;
    while (record.size() >= kHeaderSize) {
        const uint64_t next = NumberAt(record, 0, 4);
        if (next < kHeaderSize || next > record.size() || record.size() - next < kHeaderSize) break;
        record = record.subspan(static_cast<size_t>(next));
        ++figures.count;
        figures.allocatedSize += NumberAt(record, kAllocationOffset, 8);
    }
    return figures;
}

}  // namespace Security
