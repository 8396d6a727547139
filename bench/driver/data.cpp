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

constexpr size_t kLine = 80;             // bytes of a line of random text and logs to sort, its break included
constexpr uint64_t kFewHits = 100;       // in a text with few hits
constexpr uint64_t kFilesAFolder = 500;  // the test platform's cost of a new name grows with its folder
using Random = std::mt19937_64;          // the same numbers everywhere

/// What becomes of each line of a text on its way into the file.
class Form {
public:
    explicit Form(const std::string& name) : m_name(name) {
        for (const char* known : {"lf", "crlf", "tabs", "utf8", "utf16", "line"})
            if (name == known) return;
        throw std::runtime_error("there is no form of text called " + name);
    }

    std::string Begin() const { return m_name == "utf8" ? "\xEF\xBB\xBF" : m_name == "utf16" ? "\xFF\xFE" : ""; }
    std::string Line(std::string line) const {
        if (m_name == "tabs") std::ranges::replace(line, ' ', '\t');
        line += m_name == "crlf" ? "\r\n" : m_name == "line" ? " " : "\n";
        if (m_name != "utf16") return line;
        std::string wide(2 * line.size(), '\0');
        for (size_t at = 0; at < line.size(); ++at) wide[2 * at] = line[at];
        return wide;
    }

private:
    std::string m_name;
};

class Output {
public:
    explicit Output(const fs::path& path, const Form& form = Form("lf"))
        : m_path(path), m_form(form), m_file(path, std::ios::binary) {
        Write(form.Begin());
    }
    void Write(const std::string& bytes) { m_file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())); }
    void WriteLine(std::string line) { Write(m_form.Line(std::move(line))); }
    void Close() {
        m_file.close();
        if (!m_file) throw std::runtime_error("cannot write " + m_path.string());
    }

private:
    fs::path m_path;
    Form m_form;
    std::ofstream m_file;
};

std::string Word(Random& random, size_t length) {
    std::string word;
    while (word.size() < length) word += static_cast<char>('a' + random() % 26);
    return word;
}

std::string Format(const char* format, auto... values) {
    char text[160];
    std::snprintf(text, sizeof(text), format, values...);
    return text;
}

// Lines without their break. What is looked for stands at the end, so that a match over two lines can be.

std::string RandomLine(Random& random, uint64_t number, bool isHit) {
    std::string line = Format("2026-03-%02u %02u:%02u worker-%02u request %07u took %04u ms ",
                              unsigned(1 + number % 28), unsigned(number / 60 % 24), unsigned(number % 60),
                              unsigned(random() % 40), unsigned(number % 10'000'000), unsigned(random() % 10'000));
    line += Word(random, kLine - 1 - std::string(" needle").size() - line.size());
    return line + (isHit ? " needle" : " noodle");
}

std::string LogLine(Random& random, uint64_t number, bool isHit) {
    static constexpr const char* kPaths[] = {"orders", "customers/addresses", "search", "basket/items", "login"};
    return Format("2026-03-%02uT%02u:%02u:%02u.%03uZ node-%02u gateway[%u]: INFO request GET /api/v2/%s/%u took %u ms ",
                  unsigned(1 + number % 28), unsigned(number / 3600 % 24), unsigned(number / 60 % 60),
                  unsigned(number % 60), unsigned(random() % 1000), unsigned(random() % 40),
                  unsigned(1000 + random() % 8), kPaths[random() % 5], unsigned(random() % 100'000),
                  unsigned(random() % 2000)) +
           (isHit ? "rejected" : "received");
}

std::string ProseLine(Random& random, uint64_t number, bool isHit) {
    static constexpr const char* kWords[] = {
        "the",         "international",  "government",    "of",       "organisation",
        "because",     "development",    "and",           "internal", "constitution",
        "in",          "interpretation", "international", "to",       "government",
        "information", "which",          "administrative"};
    std::string line = Format("Chapter %02u", unsigned(1 + number % 28));
    // The first words come more often.
    for (uint64_t words = 4 + random() % 8; words > 0; --words)
        line += std::string(" ") + kWords[std::min(random() % std::size(kWords), random() % std::size(kWords))];
    return line + (isHit ? " internationally" : " internationalism");
}

const struct {
    const char* name;
    std::string (*line)(Random&, uint64_t, bool);
} kSets[] = {{"random", RandomLine}, {"logs", LogLine}, {"prose", ProseLine}};

/// `bytes` as they are in 8-bit text.
void WriteText(const fs::path& path, std::string (*line)(Random&, uint64_t, bool), uint64_t bytes, bool hasManyHits,
               const Form& form) {
    Output out(path, form);
    Random random(1);
    const uint64_t distance = std::max<uint64_t>(bytes / kLine / kFewHits, 1);
    for (uint64_t number = 0, written = 0; written < bytes; ++number) {
        std::string text = line(random, number, hasManyHits || number % distance == distance / 2);
        written += text.size() + 1;
        out.WriteLine(std::move(text));
    }
    out.Close();
}

/// "Word;number;day.month.year;name12.txt": each item has its own order.
std::string TableLine(Random& random) {
    std::string word = Word(random, 6 + random() % 8);
    if (random() % 2) word[0] = static_cast<char>(word[0] - 'a' + 'A');
    return word + Format(";%u;%02u.%02u.%04u;file%u.txt", unsigned(random() % 100'000'000), unsigned(1 + random() % 28),
                         unsigned(1 + random() % 12), unsigned(1971 + random() % 60), unsigned(random() % 1'000'000));
}

/// A word of a vocabulary from which the first words come more often.
std::string CommonWord(Random& random) {
    static const std::vector<std::string> kVocabulary = [] {
        Random fixed(4);
        std::vector<std::string> words(20'000);
        for (std::string& word : words) word = Word(fixed, 3 + fixed() % 7);
        return words;
    }();
    return kVocabulary[std::min({random() % 20'000, random() % 20'000, random() % 20'000})];
}

std::string WordsLine(Random& random) {
    std::string line = CommonWord(random);
    for (uint64_t more = 3 + random() % 6; more > 0; --more) line += ' ' + CommonWord(random);
    return line;
}

std::string AddressLine(Random& random) {
    return "https://www.example.org/archive/" + std::to_string(2000 + random() % 27) + '/' + CommonWord(random) + '/' +
           CommonWord(random) + '-' + std::to_string(random() % 1000) + ".html";
}

const struct {
    const char* name;
    std::string (*line)(Random&);
} kSorts[] = {
    {"sort-table", TableLine},
    {"sort-logs", [](Random& random) { return RandomLine(random, random() % 10'000'000, false); }},
    {"sort-words", WordsLine},
    {"sort-alike", AddressLine},
};

void WriteLines(const fs::path& path, std::string (*line)(Random&), uint64_t lines, const Form& form) {
    Output out(path, form);
    Random random(2);
    for (uint64_t number = 0; number < lines; ++number) out.WriteLine(line(random));
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
    const auto twoLines = [](uint64_t number) {
        Random random(number);
        return RandomLine(random, number, true) + "\n" + RandomLine(random, number + 1, false) + "\n";
    };
    const auto nothing = [](uint64_t) { return std::string(); };
    if (name == "bytes.bin") return WriteBytes(path, TextBytes());
    if (name == "small") return WriteFiles(path, SmallFiles(), twoLines);
    if (name == "renamed") return WriteFiles(path, RenamedFiles(), nothing);
    if (name == "names") return WriteFiles(path, PreviewNames(), nothing);
    const size_t first = name.find('.'), last = name.rfind('.');
    const std::string kind = name.substr(0, first), form = name.substr(last + 1);
    for (const auto& sort : kSorts)
        if (kind == sort.name) return WriteLines(path, sort.line, SortLines(), Form(form));
    for (const auto& set : kSets)
        if (kind == set.name && first != last) {
            const uint64_t bytes = form == "line" ? LineBytes() : form == "utf16" ? TextBytes() / 2 : TextBytes();
            return WriteText(path, set.line, bytes, name.substr(first + 1, last - first - 1) == "many", Form(form));
        }
    throw std::runtime_error("there is no sample called " + name);
}

std::string NameOf(TextSet set) {
    return kSets[static_cast<size_t>(set)].name;
}

}  // namespace Bench
