#include "data.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace Bench {
namespace {

namespace fs = std::filesystem;

constexpr size_t kLine = 80;             // bytes of a log line, its break included
constexpr uint64_t kFewHits = 100;       // in a log with few hits
constexpr uint64_t kFilesAFolder = 500;  // the test platform's cost of a new name grows with its folder
constexpr const char* kHit = "needle";
constexpr const char* kNoHit = "noodle";
constexpr const char* kUtf16Mark = "\xFF\xFE";

using Random = std::mt19937_64;  // the same numbers everywhere

class Output {
public:
    explicit Output(const fs::path& path) : m_path(path), m_file(path, std::ios::binary) {}
    void Write(const std::string& bytes) { m_file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())); }
    void Close() {
        m_file.close();
        if (!m_file) throw std::runtime_error("cannot write " + m_path.string());
    }

private:
    fs::path m_path;
    std::ofstream m_file;
};

std::string Word(Random& random, size_t length) {
    std::string word;
    while (word.size() < length) word += static_cast<char>('a' + random() % 26);
    return word;
}

/// A line of a log, without its break. What is looked for stands at its end, so that a match over two lines can be.
std::string LogLine(Random& random, uint64_t number, bool isHit) {
    char start[64];
    std::snprintf(start, sizeof(start), "2026-03-%02u %02u:%02u worker-%02u request %07u took %04u ms ",
                  static_cast<unsigned>(1 + number % 28), static_cast<unsigned>(number / 60 % 24),
                  static_cast<unsigned>(number % 60), static_cast<unsigned>(random() % 40),
                  static_cast<unsigned>(number % 10'000'000), static_cast<unsigned>(random() % 10'000));
    std::string line = start;
    const size_t padding = kLine - 1 - 1 - std::string(kHit).size();
    line += Word(random, padding - line.size());
    return line + ' ' + (isHit ? kHit : kNoHit);
}

/// Calls `take` with each line of a log of `bytes` bytes.
void ForEachLogLine(uint64_t bytes, bool hasManyHits, const std::function<void(const std::string&)>& take) {
    Random random(1);
    const uint64_t lines = bytes / kLine;
    const uint64_t distance = std::max<uint64_t>(lines / kFewHits, 1);
    for (uint64_t number = 0; number < lines; ++number)
        take(LogLine(random, number, hasManyHits || number % distance == distance / 2));
}

std::string Utf16(const std::string& ascii) {
    std::string wide;
    wide.reserve(2 * ascii.size());
    for (const char unit : ascii) {
        wide += unit;
        wide += '\0';
    }
    return wide;
}

std::string WithTabs(std::string line) {
    for (char& unit : line)
        if (unit == ' ') unit = '\t';
    return line;
}

void WriteLog(const fs::path& path, uint64_t bytes, bool hasManyHits,
              const std::function<std::string(const std::string&)>& form, const std::string& begin = {}) {
    Output out(path);
    out.Write(begin);
    ForEachLogLine(bytes, hasManyHits, [&](const std::string& line) { out.Write(form(line)); });
    out.Close();
}

/// "Word;number;day.month.year;name12.txt": each item has its own order.
void WriteSortLines(const fs::path& path, uint64_t lines) {
    Output out(path);
    Random random(2);
    for (uint64_t line = 0; line < lines; ++line) {
        std::string word = Word(random, 6 + random() % 8);
        if (random() % 2) word[0] = static_cast<char>(word[0] - 'a' + 'A');
        char rest[64];
        std::snprintf(rest, sizeof(rest), ";%u;%02u.%02u.%04u;file%u.txt\n",
                      static_cast<unsigned>(random() % 100'000'000), static_cast<unsigned>(1 + random() % 28),
                      static_cast<unsigned>(1 + random() % 12), static_cast<unsigned>(1971 + random() % 60),
                      static_cast<unsigned>(random() % 1'000'000));
        out.Write(word + rest);
    }
    out.Close();
}

/// `line(random, words)` for each line, with a vocabulary from which the first words come more often.
void WriteWordLines(const fs::path& path, uint64_t lines,
                    const std::function<std::string(Random&, const std::function<std::string()>&)>& line) {
    Output out(path);
    Random random(4);
    std::vector<std::string> vocabulary;
    while (vocabulary.size() < 20'000) vocabulary.push_back(Word(random, 3 + random() % 7));
    const std::function<std::string()> word = [&] {
        return vocabulary[std::min({random() % 20'000, random() % 20'000, random() % 20'000})];
    };
    for (uint64_t number = 0; number < lines; ++number) out.Write(line(random, word) + "\n");
    out.Close();
}

/// Lines of a log at any times, in no order.
void WriteSortLogs(const fs::path& path, uint64_t lines) {
    Output out(path);
    Random random(5);
    for (uint64_t number = 0; number < lines; ++number) {
        const uint64_t when = random() % 10'000'000;
        out.Write(LogLine(random, when, false) + "\n");
    }
    out.Close();
}

void WriteBytes(const fs::path& path, uint64_t bytes) {
    Output out(path);
    Random random(3);
    std::string block(1 << 16, '\0');
    for (uint64_t written = 0; written < bytes; written += block.size()) {
        for (size_t at = 0; at < block.size(); at += 8) {
            const uint64_t value = random();
            for (size_t i = 0; i < 8; ++i) block[at + i] = static_cast<char>(value >> (8 * i));
        }
        block.resize(static_cast<size_t>(std::min<uint64_t>(block.size(), bytes - written)));
        out.Write(block);
    }
    out.Close();
}

/// `count` files in folders of 500, and `folder`.list with their paths, one a line.
void WriteFiles(const fs::path& folder, uint64_t count, const std::function<std::string(uint64_t)>& content) {
    Output list(folder.string() + ".list");
    for (uint64_t number = 0; number < count; ++number) {
        const fs::path inside = folder / std::to_string(number / kFilesAFolder);
        if (number % kFilesAFolder == 0) fs::create_directories(inside);
        const fs::path path = inside / ("Report " + std::to_string(number) + " draft.txt");
        Output file(path);
        file.Write(content(number));
        file.Close();
        list.Write(path.string() + "\n");
    }
    list.Close();
}

}  // namespace

fs::path Data::Make(const std::string& name) const {
    const fs::path path = m_folder / name;
    const fs::path begun = path.string() + ".begun";  // tells what an interrupted run left from what is whole
    if (fs::exists(path) && !fs::exists(begun)) return path;
    fs::remove_all(path);
    fs::create_directories(m_folder);
    Output(begun).Close();
    Write(name, path);
    fs::remove(begun);
    return path;
}

void Data::Write(const std::string& name, const fs::path& path) const {
    const auto endedBy = [](const char* end) { return [end](const std::string& line) { return line + end; }; };
    const auto wide = [](const std::string& line) { return Utf16(line + "\n"); };
    const auto tabbed = [](const std::string& line) { return WithTabs(line) + "\n"; };
    const auto twoLines = [](uint64_t number) {
        Random random(number);
        return LogLine(random, number, true) + "\n" + LogLine(random, number + 1, false) + "\n";
    };
    const auto nothing = [](uint64_t) { return std::string(); };
    const uint64_t text = TextBytes();
    const struct {
        const char* name;
        std::function<void()> write;
    } samples[] = {
        {"few.txt", [&] { WriteLog(path, text, false, endedBy("\n")); }},
        {"many.txt", [&] { WriteLog(path, text, true, endedBy("\n")); }},
        {"few16.txt", [&] { WriteLog(path, text / 2, false, wide, kUtf16Mark); }},
        {"many16.txt", [&] { WriteLog(path, text / 2, true, wide, kUtf16Mark); }},
        {"crlf.txt", [&] { WriteLog(path, text, false, endedBy("\r\n")); }},
        {"tabs.txt", [&] { WriteLog(path, text, false, tabbed); }},
        {"line.txt", [&] { WriteLog(path, LineBytes(), true, endedBy(" ")); }},
        {"sort.txt", [&] { WriteSortLines(path, SortLines()); }},
        {"sort-logs.txt", [&] { WriteSortLogs(path, SortLines()); }},
        {"sort-words.txt",
         [&] {
             WriteWordLines(path, SortLines(), [](Random& random, const auto& word) {
                 std::string line = word();
                 for (uint64_t more = 3 + random() % 6; more > 0; --more) line += ' ' + word();
                 return line;
             });
         }},
        {"sort-alike.txt",
         [&] {
             WriteWordLines(path, SortLines(), [](Random& random, const auto& word) {
                 return "https://www.example.org/archive/" + std::to_string(2000 + random() % 27) + '/' + word() + '/' +
                        word() + '-' + std::to_string(random() % 1000) + ".html";
             });
         }},
        {"bytes.bin", [&] { WriteBytes(path, text); }},
        {"small", [&] { WriteFiles(path, SmallFiles(), twoLines); }},
        {"renamed", [&] { WriteFiles(path, RenamedFiles(), nothing); }},
        {"names", [&] { WriteFiles(path, PreviewNames(), nothing); }},
    };
    for (const auto& sample : samples)
        if (name == sample.name) return sample.write();
    throw std::runtime_error("there is no sample called " + name);
}

}  // namespace Bench
