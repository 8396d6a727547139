// copy_loop.cpp - copies a file as the library reads and writes, and does nothing else: what no work on a large file
// can do without.
#include <memory>

#include "textio/data_reader.h"
#include "textio/data_writer.h"

int wmain(int argc, wchar_t** argv) {
    if (argc != 3) return 2;
    constexpr uint32_t kBlock = 128 * 1024;  // bytes
    QVUtils::FileDataReader reader(argv[1]);
    QVUtils::FileDataWriter file;
    file.Open(argv[2], true);
    QVUtils::BufferedDataWriter writer(file);
    const auto block = std::make_unique_for_overwrite<char[]>(kBlock);
    for (;;) {
        uint32_t size = 0;
        reader.Read(block.get(), kBlock, size);
        if (size == 0) break;
        QVUtils::WriteAll(writer, block.get(), size);
    }
    writer.Flush();
    file.Close();
    return 0;
}
