// guide_test.cpp - runs the examples of the users' pages and of the README, so that they stay true. In the pages three
// kinds of fenced blocks count: "file NAME" gives a sample file, "console" holds commands after "> " with lines of
// their output below them, and "show NAME" says what a file holds by then. Each page has one folder, and its order.
#include <algorithm>
#include <filesystem>
#include <set>

#include "batchrename/dialogs/rename_dialog_pages.h"
#include "fileutils/dialog_pages.h"
#include "host/app/host_text.h"
#include "host/app/unix_paths.h"
#include "host/contract/whole_file.h"
#include "host/panel/panel_texts.h"
#include "support/host_run.h"
#include "support/temporary_folder.h"

namespace {

using Lines = std::vector<std::string>;

struct Block {
    std::string kind;
    std::wstring name;
    Lines lines;
};

std::vector<Block> BlocksOf(const std::string& guide) {
    std::vector<Block> blocks;
    bool isInside = false;
    for (const std::string_view line : QVHost::LinesOf(guide)) {
        if (line.starts_with("```")) {
            isInside = !isInside;
            if (!isInside) continue;
            const size_t blank = std::min(line.find(' '), line.size());
            const std::string_view name = line.substr(std::min(blank + 1, line.size()));
            blocks.push_back({std::string(line.substr(3, blank - 3)), QVHost::FromUtf8(name).value_or(L""), {}});
        } else if (isInside) {
            blocks.back().lines.emplace_back(line);
        }
    }
    return blocks;
}

/// The command's output and log, then its notes.
std::string OutputOf(const std::string& command, const std::wstring& config) {
    int count = 0;
    const Win32::LocalMemory memory(CommandLineToArgvW(QVHost::FromUtf8(command).value_or(L"").c_str(), &count));
    auto* const* const first = static_cast<wchar_t* const*>(memory.Get());
    std::vector<std::wstring> words(first, first + count);
    EXPECT_EQ(words.front(), L"qvhost") << command;
    words.front() = config;
    words.insert(words.begin(), L"--config");
    const QVTest::HostRun run = QVTest::RunHost(QV_HOST_PROGRAM, words);
    EXPECT_EQ(run.status, 0) << command << "\n" << run.Said();
    return run.Said();
}

/// "..." in an expected line stands for anything.
bool Fits(std::string_view expected, std::string_view line) {
    const size_t gap = expected.find("...");
    if (gap == std::string_view::npos) return expected == line;
    return line.size() >= expected.size() - 3 && line.starts_with(expected.substr(0, gap)) &&
           line.ends_with(expected.substr(gap + 3));
}

void RunConsole(const Lines& lines, const std::wstring& config) {
    std::string output;
    for (const std::string& line : lines) {
        if (line.starts_with("> ")) {
            output = OutputOf(line.substr(2), config);
            continue;
        }
        const std::vector<std::string_view> given = QVHost::LinesOf(output);
        const bool isThere = std::ranges::any_of(given, [&](std::string_view one) { return Fits(line, one); });
        EXPECT_TRUE(isThere) << "the guide says: " << line << "\nthe output is:\n" << output;
    }
}

/// A document of the project by its place beside the guide.
std::string ReadDocument(const std::wstring& place) {
    std::string text;
    const std::wstring guide = QVHost::FullUserPath(QVHost::FromUtf8(QV_GUIDE).value_or(L""));
    const std::wstring folder = guide.substr(0, guide.find_last_of(L'\\') + 1);
    EXPECT_EQ(QVHost::ReadWholeFile(QVHost::FullUserPath(folder + place), text), 0u);
    return text;
}

/// The folder that commands run in while it lives, with settings of its own.
struct Workplace {
    Workplace() { std::filesystem::current_path(files.Path()); }
    ~Workplace() { std::filesystem::current_path(m_before); }
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    const QVTest::TemporaryFolder files;
    const QVTest::TemporaryFolder config;

private:
    const std::filesystem::path m_before = std::filesystem::current_path();
};

TEST(Readme, GivesExamplesThatDoWhatItSays) {
    const Workplace place;
    place.files.Write(L"server.log", "it took 5 ms\r\n");
    place.files.Write(L"towns.csv", "town,people\r\nOslo,709\r\nBern,134\r\n");
    for (const wchar_t* photo : {L"IMG1.JPG", L"IMG2.JPG"}) place.files.Write(photo, "x");
    constexpr std::string_view kExample = "    qvhost ";
    std::string output;
    const std::string readme = ReadDocument(L"..\\README.md");
    for (const std::string_view line : QVHost::LinesOf(readme))
        if (line.starts_with(kExample)) output += OutputOf(std::string(line.substr(4)), place.config.Path());
    EXPECT_EQ(place.files.Read(L"server.log"), "it was slow\r\n");
    EXPECT_EQ(place.files.Read(L"server.log.bak"), "it took 5 ms\r\n");
    EXPECT_EQ(place.files.Read(L"towns.csv"), "town,people\r\nBern,134\r\nOslo,709\r\n");
    EXPECT_NE(output.find("IMG2.JPG\ttrip-002.JPG\trename"), std::string::npos) << output;
}

class Page : public testing::TestWithParam<const wchar_t*> {};

TEST_P(Page, GivesExamplesThatDoWhatItSays) {
    const std::string guide = ReadDocument(GetParam());
    const Workplace place;
    size_t examples = 0;
    for (const Block& block : BlocksOf(guide)) {
        std::string text;
        for (const std::string& line : block.lines) text += line + "\r\n";
        if (block.kind == "file") place.files.Write(block.name, text);
        if (block.kind == "show") {
            EXPECT_EQ(place.files.Read(block.name), text) << QVHost::ToUtf8(block.name);
        }
        if (block.kind != "console") continue;
        RunConsole(block.lines, place.config.Path());
        ++examples;
    }
    EXPECT_GE(examples, 1u) << "the page's examples are looked for in the wrong way";
}

TEST(Guide, HasTheTopicsThatTheDialogsOpen) {
    const std::string guide = ReadDocument(L"user-guide.md");
    std::set<std::wstring> topics;
    for (const std::string_view line : QVHost::LinesOf(guide)) {
        if (!line.starts_with("##")) continue;
        std::wstring topic;
        for (const char letter : line.substr(line.find(' ') + 1))
            if (letter == ' ')
                topic += L'-';
            else if (isalnum(static_cast<unsigned char>(letter)))
                topic += static_cast<wchar_t>(tolower(static_cast<unsigned char>(letter)));
        topics.insert(topic);
    }
    for (const std::span<const Ui::DialogPage> pages : {FileUtils::DialogPages(), BatchRename::DialogPages()})
        for (const Ui::DialogPage& page : pages) EXPECT_TRUE(topics.contains(page.topic)) << page.dialog;
    EXPECT_TRUE(topics.contains(QVHost::kPanelTopic));
}

INSTANTIATE_TEST_SUITE_P(Every, Page,
                         testing::Values(L"user-guide.md", L"grep-and-sed.md", L"scripts.md", L"file-managers.md",
                                         L"limits.md"));

}  // namespace
