// The walk over stream records: blocks as the system writes them, and blocks as nobody should.
#include "security/stream_records.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using Security::FiguresOfStreams;
using Security::StreamFigures;
using Bytes = std::vector<uint8_t>;

void Append(Bytes& bytes, uint64_t number, int size) {
    for (int at = 0; at < size; ++at) bytes.push_back(static_cast<uint8_t>(number >> (8 * at)));
}

/// A record of 32 bytes with a name of 8: where the next one is, and what the stream takes on disk.
Bytes Record(uint32_t next, uint64_t allocated) {
    Bytes bytes;
    Append(bytes, next, 4);
    Append(bytes, 8, 4);
    Append(bytes, 10, 8);  // bytes of data: they do not count
    Append(bytes, allocated, 8);
    bytes.resize(32, 'n');
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
        {"the content alone", Record(0, 4096), {}},
        {"one named stream", Record(32, 4096) + Record(0, 16), {1, 16}},
        {"three, and room behind them",
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
