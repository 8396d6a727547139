
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

TEST(BufferedDataWriter, JoinsSmallWritesAndPassesLargeOnesOn) {
    ReluctantWriter target(1000, 1000);
    BufferedDataWriter buffer(target, 10);
    std::string expected;
    for (const size_t size : {3u, 3u, 3u, 2u, 25u, 10u, 1u, 9u, 1u}) {
        const std::string piece(size, static_cast<char>('a' + expected.size() % 26));
        buffer.Write(piece.data(), piece.size());
        expected += piece;
    }
    buffer.Flush();
    EXPECT_EQ(target.text, expected);
    EXPECT_LT(target.calls, 9);
}
