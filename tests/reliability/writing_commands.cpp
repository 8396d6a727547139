#include "reliability/writing_commands.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace QVTest {
namespace {

using Words = std::vector<std::wstring>;

const Contents kTexts = {{L"a.txt", "b\r\na\r\n"}, {L"b.txt", "c\nb\na\n"}};

/// One call of a custom command for each file.
Words Call(const wchar_t* name, Words parameters) {
    Words words = {L"call", name, L"FILE={}", L"SILENT"};
    words.insert(words.end(), parameters.begin(), parameters.end());
    return words;
}
Words Replace(Words parameters) {
    parameters.insert(parameters.end(), {L"FIND=b", L"REPLACEWITH=xyz"});
    return Call(L"FindAndReplace", std::move(parameters));
}
/// One command over all files, with the answer to its question.
Words Command(const wchar_t* id, const wchar_t* answer = L"yes") {
    return {L"--answer", answer, L"command", id};
}

}  // namespace

const std::vector<WritingCommand>& WritingCommands() {
    static const std::string encoded = "MIME-Version: 1.0\r\nContent-Type: x; name=\"";
    static const std::vector<WritingCommand> commands = {
        {"replace in place", Replace({L"DELETE"}), kTexts},
        {"replace, keep a backup", Replace({L"KEEPBACKUP"}), kTexts},
        {"replace, overwrite", Replace({L"OVERWRITE"}), kTexts},
        {"replace onto itself by a pattern", Replace({L"TARGET=*.*", L"OVERWRITE"}), kTexts},
        {"replace into new files", Replace({L"TARGET=*_2.*"}), kTexts},
        {"replace over existing files",
         Replace({L"TARGET=*_2.*", L"OVERWRITE"}),
         {{L"a.txt", "b"}, {L"a_2.txt", "old"}, {L"b.txt", "ab"}, {L"b_2.txt", "old"}}},
        {"sort in place", Call(L"SortLines", {L"DELETE"}), kTexts},
        {"sort, keep a backup", Call(L"SortLines", {L"KEEPBACKUP"}), kTexts},
        {"sort, overwrite", Call(L"SortLines", {L"OVERWRITE"}), kTexts},
        {"sort into new files", Call(L"SortLines", {L"TARGET=*_2.*"}), kTexts},
        {"convert line ends", Command(L"30101"), {{L"a.txt", "1\r\n2\r\n"}, {L"b.txt", "\r\n"}}, L".temp"},
        {"encode", Command(L"30210"), kTexts},
        {"decode",
         Command(L"30211"),
         {{L"a.b64", encoded + "a.bin\"\r\n\r\nYWJj"}, {L"b.b64", encoded + "b.bin\"\r\n\r\nYWJj"}}},
        {"make hard links", {L"call", L"CreateLink", L"LNKTYPE=1", L"LNKSRC={}.lnk", L"LNKTRG={}"}, kTexts},
        {"make XML readable", Command(L"30200"), {{L"a.xml", "<a><b/></a>"}, {L"b.xml", "<c><d/></c>"}}},
        {"rename by a quick command", Command(L"30005", L"ok"), {{L"a 1.txt", "1"}, {L"b 2.txt", "2"}}},
    };
    return commands;
}

void ExpectNothingLost(const WritingCommand& command, const Contents& done, const Contents& now) {
    for (const auto& [name, content] : command.files)
        EXPECT_TRUE(std::ranges::count(now, content, &Contents::value_type::second) > 0 ||
                    IsSafe(name, content, done, now) || now == done)
            << "content is lost: " << testing::PrintToString(now);
}

WorkFolder::WorkFolder(const WritingCommand& command) : m_command(command) {
    for (const auto& [name, content] : command.files) m_folder.Write(name, content);
}

std::vector<std::wstring> WorkFolder::Arguments() const {
    std::string list;
    for (const auto& [name, content] : m_command.files) {
        if (name.find(L"_2") != std::wstring::npos) continue;  // a target
        const std::wstring path = m_folder / name;
        list += std::string(path.begin(), path.end()) + "\n";
    }
    Words words = m_command.arguments;
    words.insert(words.begin(), {L"--config", m_settings.Path()});
    words.insert(words.end(), {L"--files-from", m_settings.Write(L"list.txt", list)});
    return words;
}

}  // namespace QVTest
