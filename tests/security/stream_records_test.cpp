// The walk over stream records: blocks as the system writes them, and blocks as nobody should.
#include "security/stream_records.h"

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Security::FiguresOfStreams;
using Security::StreamFigures;
using Bytes = std::vector<uint8_t>;

/// A record of 32 bytes with a name of 8: where the next one is, and what the stream takes on disk.
Bytes Record(uint32_t next, uint64_t allocated) {
    Bytes bytes(32, 'n');  // bytes of data among them: they do not count
    const uint32_t nameSize = 8;
    std::memcpy(&bytes[0], &next, sizeof(next));
    std::memcpy(&bytes[4], &nameSize, sizeof(nameSize));
    std::memcpy(&bytes[16], &allocated, sizeof(allocated));
    return bytes;
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST(FiguresOfStreams, CountAllRecordsButTheFirst) {
    constexpr uint64_t kHuge = uint64_t{1} << 63;
    const std::tuple<const char*, Bytes, StreamFigures> cases[] = {
        {"zeros: no stream, or a query that failed", Bytes(65536), {}},
        {"one named stream", Record(32, 4096) + Record(0, 16), {1, 16}},
        {"three, and more after them",
         Record(32, 1) + Record(32, 2) + Record(32, 3) + Record(0, 4) + Bytes(99),
         {3, 9}},
        {"a gap before the next one", Record(40, 1) + Bytes(8) + Record(0, 5), {1, 5}},
        {"the sum wraps as 64 bits do", Record(32, 1) + Record(32, kHuge) + Record(0, kHuge), {2, 0}},
        {"a first record that leads to itself", Record(4, 1) + Record(0, 5), {}},
        {"one that leads into itself", Record(32, 1) + Record(8, 5), {1, 5}},
        {"one that leads out of the block", Record(32, 1) + Record(33, 5), {1, 5}},
        {"backwards, as a signed number", Record(32, 1) + Record(0xFFFFFFE0, 5), {1, 5}},
        {"to a record that is cut", Record(32, 1) + Bytes(23), {}},
        {"a record too short for a name", Record(32, 1) + Bytes(24), {1, 0}},
    };
    for (const auto& [why, block, figures] : cases) EXPECT_EQ(FiguresOfStreams(block), figures) << why;
}

}  // namespace
