// data.h - the files that are worked on: always the same bytes for the same scale, so that figures of different days
// can be compared. A file that is there already is not made again.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace Bench {

/// `scale` 1 means 200 MB of text, 1,000,000 lines to sort, one line of 50 MB, 5,000 small files, 100,000 names.
class Data {
public:
    Data(std::filesystem::path folder, double scale) : m_folder(std::move(folder)), m_scale(scale) {}

    /// Makes `name`, one of: few.txt, many.txt (logs of 80-byte lines with a hit in 100 of them, in each), few16.txt,
    /// many16.txt (the same in UTF-16), crlf.txt, tabs.txt (the same with other breaks, with tabs), line.txt (one line
    /// with a hit every 80 bytes), sort.txt (word;number;date;name), sort-logs.txt (log lines in no order),
    /// sort-words.txt (words, some of them common), sort-alike.txt (addresses that begin alike), bytes.bin; and folders
    /// of files that are listed in NAME.list: small (a hit in each), renamed and names (empty ones).
    /// @throws std::runtime_error for an unknown name or a disk that is full
    std::filesystem::path Make(const std::string& name) const;

    uint64_t TextBytes() const { return Scaled(200'000'000) / 80 * 80; }
    uint64_t LineBytes() const { return Scaled(50'000'000) / 80 * 80; }
    uint64_t SortLines() const { return Scaled(1'000'000); }
    uint64_t SmallFiles() const { return Scaled(5'000); }
    uint64_t RenamedFiles() const { return Scaled(10'000); }
    uint64_t PreviewNames() const { return Scaled(100'000); }

private:
    void Write(const std::string& name, const std::filesystem::path& path) const;
    uint64_t Scaled(double amount) const { return static_cast<uint64_t>(amount * m_scale); }

    std::filesystem::path m_folder;
    double m_scale;
};

}  // namespace Bench
