// engines.cpp - what a whole process hides: each engine alone, over text that is in memory already, against the
// memory's own speed in the same process. Only the ratios mean something.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "fileutils/conversions/base64.h"
#include "fileutils/conversions/text_conversion.h"
#include "findreplace/line_matcher.h"
#include "findreplace/passing_pairs.h"
#include "findreplace/wildcard.h"
#include "linesorter/date_key.h"
#include "linesorter/line_compare.h"
#include "linesorter/sort_key.h"
#include "rename/rename_plan.h"
#include "rename/rename_rule.h"
#include "textio/encoding.h"
#include "windows_bench.h"

namespace {

constexpr size_t kText = 16'000'000;  // bytes
constexpr int kRounds = 5;
constexpr size_t kRows = 100'000;

// What a job computes goes in here, so that the compiler cannot leave the job out.
volatile uint64_t g_result;

/// The cheapest of some runs, in seconds: whatever disturbs a run makes it longer.
double Seconds(const std::function<uint64_t()>& job) {
    double best = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        const auto begin = std::chrono::steady_clock::now();
        g_result = job();
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    return best;
}

std::string MakeText() {
    std::string text;
    text.reserve(kText);
    for (unsigned number = 0; text.size() + 80 <= kText; ++number) {
        char line[96];
        std::snprintf(line, sizeof(line),
                      "%07u;%02u.%02u.2024;request took %04u ms in the northern branch office xyz\r\n",
                      number * 7919 % 10'000'000, number % 28 + 1, number % 12 + 1, number % 5000);
        text += line;
    }
    return text;
}

std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = text.find("\r\n", begin);
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 2;
    }
    return lines;
}

uint64_t Convert(FileUtils::TextConversion conversion, const std::string& text, std::vector<char>& out) {
    FileUtils::TextConverter converter(conversion, 4);
    return converter.Convert(text.data(), text.size(), out.data());
}

uint64_t Search(QVFindAndReplace::LineMatcher<char>& matcher, std::string_view text) {
    return matcher.FindCandidate(text) != nullptr;
}

uint64_t SearchLines(QVFindAndReplace::LineMatcher<char>& matcher, const std::vector<std::string_view>& lines) {
    uint64_t hits = 0;
    QVFindAndReplace::Span span;
    for (const std::string_view line : lines) hits += matcher.Find(line, span);
    return hits;
}

/// As if the text were 16,000 files.
uint64_t DetectSamples(std::string_view text) {
    constexpr size_t kSample = 1024;
    uint64_t sum = 0;
    for (size_t at = 0; at + kSample <= text.size(); at += kSample)
        sum +=
            static_cast<uint64_t>(QVUtils::DetectEncoding(reinterpret_cast<const uint8_t*>(text.data()) + at, kSample));
    return sum;
}

uint64_t SumOfItems(const std::vector<std::string_view>& lines) {
    QVLineSorter::KeyRule<char> rule;
    rule.kind = QVLineSorter::KeyRule<char>::Kind::Item;
    rule.separator = ';';
    rule.itemNumber = 3;
    uint64_t sum = 0;
    for (const std::string_view line : lines) sum += QVLineSorter::FindKey(line, rule).offset;
    return sum;
}

uint64_t SumOfKeys(const std::vector<std::string_view>& lines) {
    uint64_t sum = 0;
    for (const std::string_view line : lines)
        sum += static_cast<uint64_t>(QVLineSorter::ParseInteger<char>(line).value);
    return sum;
}

uint64_t SumOfDates(const std::vector<std::string_view>& lines) {
    QVLineSorter::DateKeyReader reader;
    uint64_t sum = 0;
    for (const std::string_view line : lines)
        sum += static_cast<uint64_t>(reader.Read<char>(line.substr(8, 10), "%d.%m.%Y"));
    return sum;
}

uint64_t Compare(QVLineSorter::LineCompare_TextBase<char>& compare, const std::vector<std::string_view>& lines) {
    uint64_t less = 0;
    for (size_t i = 1; i < lines.size(); ++i)
        less += compare.Less(lines[i - 1].data(), static_cast<uint32_t>(lines[i - 1].size()), lines[i].data(),
                             static_cast<uint32_t>(lines[i].size()));
    return less;
}

BatchRename::RenameItems MakeRows() {
    BatchRename::RenameItems rows;
    for (size_t number = 0; number < kRows; ++number) {
        auto row = std::make_shared<BatchRename::BatchRenameItem>();
        row->location = L"C:\\Photos\\" + std::to_wstring(number / 500);
        row->currentName = L"Holiday picture " + std::to_wstring(number) + L".JPG";
        rows.push_back(std::move(row));
    }
    return rows;
}

uint64_t ComputeNames(const BatchRename::RenameItems& rows) {
    BatchRename::RuleDefinition definition;
    definition.nameTemplate = L"[C1,1,6]_[N]";
    definition.options = BatchRename::RenameOption::LowerBoth | BatchRename::RenameOption::ScopeBoth;
    definition.items = std::make_shared<const BatchRename::SearchAndReplaceItems>(
        BatchRename::SearchAndReplaceItems{{L"picture", L"photo"}});
    BatchRename::RenameRule rule;
    rule.SetRule(definition, {});
    uint64_t units = 0;
    for (const auto& row : rows) {
        rule.Compute(*row);
        units += row->newName.size();
    }
    return units;
}

std::vector<BatchRename::FolderNames> ListingsOf(const BatchRename::RenameItems& rows) {
    std::vector<BatchRename::FolderNames> folders;
    for (const std::wstring& folder : BatchRename::FoldersOf(rows)) folders.push_back({folder, {}, 0});
    for (size_t row = 0; row < rows.size(); ++row) folders[row / 500].names.Add(rows[row]->currentName);
    return folders;
}

}  // namespace

/// With an argument: the engines whose names hold it.
int main(int argc, char** argv) {
    const std::string_view wanted = argc > 1 ? argv[1] : "";
    const std::string text = MakeText();
    const std::vector<std::string_view> lines = LinesOf(text);
    std::vector<char> out(2 * text.size() + 2);
    const std::string encoded = [&] {
        std::string base64(FileUtils::CBase64::EncodedSize(text.size()), '\0');
        FileUtils::CBase64::Encode(reinterpret_cast<const uint8_t*>(text.data()), text.size(), base64.data());
        return base64;
    }();
    const auto plain = QVFindAndReplace::MakePlainMatcher<char>("northerly", false);
    QVFindAndReplace::PassingPair<char> pair("request", "a longer one");
    QVFindAndReplace::PassingText<char> passed;
    const auto anyCase = QVFindAndReplace::MakePlainMatcher<char>("NORTHERN", true);
    const auto wildcard = QVFindAndReplace::MakeWildcardMatcher<char>("req*ms", false);
    const auto counted = QVFindAndReplace::MakeWildcardMatcher<char>("to{2}k", false);
    QVLineSorter::LineCompare_OrdinalA ordinal(false);
    QVLineSorter::LineCompare_LanguageAware_StringCompareA language;
    const BatchRename::RenameItems rows = MakeRows();
    const std::vector<BatchRename::FolderNames> listings = ListingsOf(rows);
    const auto bytes = reinterpret_cast<uint8_t*>(out.data());
    using FileUtils::TextConversion;

    const double copy =
        Seconds([&] { return reinterpret_cast<uint64_t>(std::memcpy(out.data(), text.data(), text.size())); });
    const double look =
        Seconds([&] { return reinterpret_cast<uint64_t>(std::memchr(text.data(), '\1', text.size())); });
    const struct {
        const char* name;
        double yardstick;
        std::function<uint64_t()> job;
    } jobs[] = {
        {"encoding detection", look, [&] { return DetectSamples(text); }},
        {"search, plain, no hit", look, [&] { return Search(*plain, text); }},
        {"search, plain, line by line", look, [&] { return SearchLines(*plain, lines); }},
        {"search, ignore case, a hit a line", look, [&] { return SearchLines(*anyCase, lines); }},
        {"replacement, plain, a hit a line", copy,
         [&] {
             uint64_t changes = 0;
             pair.Replace(text, true, passed, changes);
             return changes;
         }},
        {"wildcard with a star", look, [&] { return SearchLines(*wildcard, lines); }},
        {"wildcard with a count", look, [&] { return SearchLines(*counted, lines); }},
        {"to LF", copy, [&] { return Convert(TextConversion::ToLf, text, out); }},
        {"to CR LF", copy, [&] { return Convert(TextConversion::ToCrLf, text, out); }},
        {"Base64 encode", copy,
         [&] {
             return FileUtils::CBase64::Encode(reinterpret_cast<const uint8_t*>(text.data()), text.size(), out.data());
         }},
        {"Base64 decode", copy, [&] { return FileUtils::CBase64().Decode(encoded.data(), encoded.size(), bytes); }},
        {"item keys", look, [&] { return SumOfItems(lines); }},
        {"number keys", look, [&] { return SumOfKeys(lines); }},
        {"date keys", look, [&] { return SumOfDates(lines); }},
        {"compare lines", look, [&] { return Compare(ordinal, lines); }},
        {"compare lines, language-aware", look, [&] { return Compare(language, lines); }},
        {"names of 100,000 rows", look, [&] { return ComputeNames(rows); }},
        {"plan of 100,000 rows", look, [&] { return BatchRename::PlanRenames(rows, listings).steps.size(); }},
    };
    Bench::ShowWindows(wanted, rows, listings);
    std::printf("%-36s %10s %s\n", "engine, over 16 MB or as said", "ms", "times memcpy or memchr");
    std::printf("%-36s %10.2f\n%-36s %10.2f\n", "memcpy", copy * 1e3, "memchr", look * 1e3);
    for (const auto& job : jobs) {
        if (std::string_view(job.name).find(wanted) == std::string_view::npos) continue;
        const double seconds = Seconds(job.job);
        std::printf("%-36s %10.2f %8.1f\n", job.name, seconds * 1e3, seconds / job.yardstick);
    }
    return 0;
}
