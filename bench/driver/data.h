// data.h - the files that are worked on: always the same bytes for the same scale, so that figures of different days
// can be compared. A file that is there already is not made again.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace Bench {

/// Lines of 80 bytes, the half of them random letters; of a service's log, of any length; and of a few long words that
/// are alike. Each ends in the word that is looked for or in one that begins like it.
enum class TextSet : uint8_t { Random, Logs, Prose };
std::string NameOf(TextSet set);  // in small letters

/// `scale` 1 means 200 MB of text, 1,000,000 lines to sort, one line of 50 MB, 5,000 small files, 100,000 names.
class Data {
public:
    Data(std::filesystem::path folder, double scale) : m_folder(std::move(folder)), m_scale(scale) {}

    /// Makes `name`, one of: SET.HITS.FORM, where HITS is few (100 in all) or many (one a line) and FORM lf, crlf, tabs
    /// (in the place of spaces), utf8 (with mark), utf16 (the same) or line (spaces in the place of breaks);
    /// sort-KIND.FORM, where KIND is table (word;number;date;name), logs, words (some of them common) or alike
    /// (addresses that begin alike), in no order; bytes.bin; and folders of files that are listed in NAME.list: small
    /// (a hit in each), renamed and names (empty ones).
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
