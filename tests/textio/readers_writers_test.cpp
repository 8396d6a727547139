
#include "support/limited_memory.h"
#include "support/string_writer.h"
#include "textio/data_writer.h"
#include "textio/text_file.h"

using namespace QVUtils;

namespace {

/// Takes at most `most` bytes a call, and none after `limit` bytes.
class ReluctantWriter final : public QVTest::StringWriter {
public:
    ReluctantWriter(uint32_t most, size_t limit) : m_most(most), m_limit(limit) {}
    uint32_t WriteData(const void* buffer, uint32_t size, uint32_t* bytesWritten) override {
        ++calls;
        const auto taken = static_cast<uint32_t>(std::min<size_t>({size, m_most, m_limit - text.size()}));
        return StringWriter::WriteData(buffer, taken, bytesWritten);
    }
    int calls = 0;

private:
    uint32_t m_most;
    size_t m_limit;
};

}  // namespace

TEST(MemoryDataWriter, DropsWhatDoesNotFit) {
    MemoryDataWriter<wchar_t> writer(10);
    EXPECT_EQ(writer.Write("0123456789ABCDEF", 16), 10u);
    EXPECT_EQ(writer.Write("x", 1), 0u);
    writer.WriteData("x", 1, nullptr);
    const auto block = writer.Release();
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(block.get()), 10), "0123456789");
    EXPECT_EQ(writer.Write("x", 1), 0u);
}

TEST(WriteAll, GoesOnAfterShortWritesAndFailsWhenNothingIsTaken) {
    ReluctantWriter slow(3, 100);
    WriteAll(slow, "0123456789", 10);
    EXPECT_EQ(slow.text, "0123456789");
    EXPECT_EQ(slow.Write("nothing", 0x100000000), 0u) << "the low 32 bits count";
    ReluctantWriter full(3, 7);
    try {
        WriteAll(full, "0123456789", 10);
        FAIL();
    } catch (const QVUtilsException& failure) {
        EXPECT_EQ(failure.GetErrorCode(), ErrorCode::DiskFull);
    }
}

TEST(BufferedDataWriter, WritesInOrderAndTellsWhatFailed) {
    std::string expected;
    while (expected.size() < 4'000'000) expected += std::to_string(expected.size()) + " ";
    const auto write = [&](ReluctantWriter& target) {
        BufferedDataWriter buffer(target);
        size_t size = 1;
        for (size_t at = 0; at < expected.size(); at += size, size = size * 3 % 1'000'003)
            buffer.Write(expected.data() + at, std::min(size, expected.size() - at));
        buffer.Flush();
    };
    for (const size_t capacity : {size_t{0}, size_t{1'000'000}, size_t{2'000'000}, expected.size() - 1, SIZE_MAX}) {
        ReluctantWriter target(300'000, capacity);
        uint32_t error = 0;
        try {
            write(target);
        } catch (const QVUtilsException& failure) {
            error = failure.GetErrorCode();
        }
        EXPECT_EQ(error, capacity == SIZE_MAX ? 0 : ErrorCode::DiskFull) << capacity;
        EXPECT_TRUE(target.text == expected.substr(0, capacity)) << capacity;
    }
    ReluctantWriter target(300'000, SIZE_MAX);
    target.text.reserve(expected.size());
    const QVTest::LimitedMemory noBlocks(100'000);
    write(target);
    EXPECT_TRUE(target.text == expected);
}
