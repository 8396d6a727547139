// integration_test.cpp - what other programs see of the host: its JSON, its shortcuts, its completion, lists of paths.
#include <nlohmann/json.hpp>

#include "host/app/command_line.h"
#include "host/app/host_text.h"
#include "host/app/json_report.h"
#include "host_runner.h"
#include "win32/shortcut.h"

namespace {

using namespace QVTest;
using Words = std::vector<std::wstring>;
using nlohmann::json;

TEST(Report, EscapesWhateverATextHolds) {
    const std::pair<std::wstring, const char*> cases[] = {
        {L"a\"b\\c/", R"("a\"b\\c/")"},
        {std::wstring(L"\0\t\n\x1F\x7F", 5), R"("\u0000\u0009\u000a\u001f\u007f")"},
        {L"\u00FC \U0001F600", "\"\xC3\xBC \xF0\x9F\x98\x80\""},
        {L"\xD83D", R"("\ud83d")"},
        {L"a\xDE00\xD83D\xD83D\xDE00"
         L"b",
         "\"a\\ude00\\ud83d\xF0\x9F\x98\x80"
         "b\""},
    };
    for (const auto& [text, expected] : cases) {
        std::string written;
        QVHost::AppendJson(written, text);
        EXPECT_EQ(written, expected);
    }
}

TEST(Report, HasOneSchemaForEveryCommandAndOutcome) {
    const HostRunner host;
    const std::wstring good = host.Folder().Write(L"good.txt", "");
    const std::wstring bad = host.Folder().Write(L"bad.txt", "");
    const struct {
        Words words;
        int status;
        json command, name;
        json counts;
        const char* said;  // by one of the messages; "" by none
    } cases[] = {
        {{L"call", L"Echo", L"TEXT=\"x\""}, 0, "call", "Echo", json::object(), "text <\"x\">"},
        {{L"call", L"Refuse", L"CODE=5"}, 1, "call", "Refuse", json::object(), "error 5"},
        {{L"call", L"Echo", L"TEXT={}", L"--files-from", L"-"}, 0, "call", "Echo", {{"done", 2}}, "good.txt"},
        {{L"command", L"40000", good, bad}, 1, "command", "40000", {{"done", 1}, {"failed", 1}}, "good.txt in "},
        {{L"columns", good}, 0, "columns", nullptr, {{"listed", 1}}, ""},
        {{L"rename", good, bad, L"--name", L"a:b", L"--preview"}, 1, "rename", nullptr, {{"failed", 2}}, ""},
        {{L"rename", good, bad, L"--name", L"new [N]"}, 0, "rename", nullptr, {{"renamed", 2}}, ""},
        {{L"undo"}, 0, "undo", nullptr, {{"recorded", 1}}, ""},
        {{L"undo", L"show", L"last"}, 0, "undo", "show", {{"recorded", 2}}, ""},
        {{L"undo", L"restore", L"last", L"--only", L"good*"}, 0, "undo", "restore", {{"restored", 1}}, ""},
        {{L"rename"}, 2, "rename", nullptr, json::object(), "rename needs files"},
        {{L"cal"}, 2, nullptr, nullptr, json::object(), "did you mean call?"},
    };
    for (const auto& c : cases) {
        Words words = c.words;
        words.emplace_back(L"--json");
        const HostRun run = host.Run(words, QVHost::ToUtf8(good + L"\n" + bad));
        EXPECT_EQ(run.status, c.status) << run.out;
        EXPECT_EQ(run.error, "") << "all is in the document";
        const json document = json::parse(run.out, nullptr, false);
        ASSERT_TRUE(document.is_object()) << run.out;
        EXPECT_EQ(document["schema"], 1);
        EXPECT_EQ(document["status"], c.status);
        EXPECT_EQ(document["command"], c.command);
        EXPECT_EQ(document["counts"], c.counts) << run.out;
        EXPECT_EQ(document["name"], c.name);
        std::string messages;
        for (const json& message : document["messages"]) messages += message["text"].get<std::string>() + "\n";
        EXPECT_NE(messages.find(c.said), std::string::npos) << messages;
        EXPECT_EQ(messages.empty(), std::string_view(c.said).empty()) << messages;
    }
    EXPECT_EQ(host.Run({L"menus", L"--json"}).status, 2);
    const HostRun refused = host.Run({L"call", L"Refuse", L"CODE=5", L"TEXT={}", L"--files-from", L"-", L"--json"},
                                     QVHost::ToUtf8(host.Folder().Path()));
    EXPECT_NE(refused.out.find(R"("code": 5, "reason": "error 5 ()"), std::string::npos) << refused.out;
    EXPECT_TRUE(json::accept(host.Run({L"undo", L"--json=true"}).out));
    const HostRun unasked = host.Run({L"call", L"Ask", L"STYLE=35", L"--json"}, {}, Words{L"YES"});
    EXPECT_NE(unasked.out.find("button 7"), std::string::npos) << "nobody sees a question in a document";
}

TEST(SendTo, InstallsItsShortcutsOnceAndTakesAwayNoOthers) {
    const HostRunner host;
    const TemporaryFolder menu;
    const auto run = [&](const wchar_t* what) {
        return RunHost(BesideThisProgram(L"qvhost.exe"), {L"send-to", what, L"--folder", menu.Path()});
    };
    const auto path = [&](const wchar_t* name) { return menu / (std::wstring(name) + L".lnk"); };
    const std::wstring program = BesideThisProgram(L"qvhost.exe");
    menu.Write(L"notes.txt", "somebody's");
    // A person's own shortcut to this program, and one that an older version in another folder has left.
    ASSERT_EQ(Win32::SaveShortcut(path(L"mine"), {.target = program, .arguments = L"panel"}), 0u);
    ASSERT_EQ(Win32::SaveShortcut(path(L"Sort lines"),
                                  {.target = L"C:\\old\\qvhost.exe", .arguments = L"command --no-console 30150 --"}),
              0u);
    const HostRun first = run(L"--install");
    EXPECT_EQ(first.status, 0) << first.Said();
    const Contents installed = menu.ReadAll();
    EXPECT_EQ(installed.size(), 6u);
    const std::pair<const wchar_t*, const wchar_t*> entries[] = {
        {L"Rename many files", L"command --no-console 31000 --"},
        {L"Find and replace", L"command --no-console 30151 --"},
        {L"Sort lines", L"command --no-console 30150 --"},
        {L"Open in QVUtils", L"panel --no-console --"},
    };
    for (const auto& [name, arguments] : entries) {
        const std::optional<Win32::Shortcut> shortcut = Win32::ReadShortcut(path(name));
        ASSERT_TRUE(shortcut) << QVHost::ToUtf8(name);
        EXPECT_EQ(shortcut->target, program);
        EXPECT_EQ(shortcut->arguments, arguments);
    }
    const HostRun second = run(L"--install");
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.out.find("installed"), std::string::npos) << second.out;
    EXPECT_EQ(menu.ReadAll(), installed);
    EXPECT_EQ(run(L"--remove").status, 0);
    EXPECT_EQ(menu.List(), (Words{L"mine.lnk", L"notes.txt"}));
    menu.Write(L"Sort lines.lnk", "no shortcut");
    EXPECT_EQ(run(L"--install").status, 1);
    EXPECT_EQ(menu.Read(L"Sort lines.lnk"), "no shortcut");
}

// With a library that has no such commands; what passes with the right one is an example of docs/scripts.md.
TEST(SelfTest, TellsWhatFailedAndNotWhereAndLeavesNothing) {
    const HostRunner host;
    const TemporaryFolder folder;
    const HostRun run = host.Run({L"selftest", LR"(\\?\)" + folder.Path()});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("not available here: reset access rights: "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("failed: replacing text in a file: qvhost: there is no custom command"), std::string::npos);
    EXPECT_NE(run.out.find("failed: window: sort lines: "), std::string::npos);
    EXPECT_NE(run.out.find("passed: names of 255 characters"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find(" 0 failed"), std::string::npos);
    EXPECT_EQ(folder.List(), Words());
    wchar_t profile[MAX_PATH] = {};
    ASSERT_NE(GetEnvironmentVariableW(L"USERPROFILE", profile, MAX_PATH), 0u);
    const std::pair<std::wstring, const char*> libraries[] = {{folder / L"none.dll", "FOLDER"},
                                                              {BesideThisProgram(L"none.dll"), "PROGRAM"},
                                                              {std::wstring(profile) + L"\\none.dll", "PROFILE"}};
    for (const auto& [library, word] : libraries) {
        const HostRun lost = host.Run({L"selftest", folder.Path(), L"--library", library});
        EXPECT_NE(lost.out.find(std::string("there is no file ") + word), std::string::npos) << lost.out;
    }
    EXPECT_EQ(host.Run({L"selftest", folder / L"none"}).status, 2);
    EXPECT_EQ(host.Run({L"selftest", L""}).status, 2);
}

TEST(FilesFrom, TakesListsAsPeopleAndProgramsWriteThem) {
    const HostRunner host;
    const std::wstring path = host.Folder().Write(L"\u65E5\u672C.txt", "");
    const std::wstring list = L"\"" + path + L"\"\r\n";
    const std::string little = Utf16(L"\xFEFF" + list);
    std::string big = little;
    for (size_t at = 0; at + 1 < big.size(); at += 2) std::swap(big[at], big[at + 1]);
    for (const std::string& bytes : {QVHost::ToUtf8(list), little, big}) {
        const HostRun run = host.Run({L"command", L"40000", path, L"--files-from", L"-"}, bytes);
        EXPECT_EQ(run.error, "[done] " + QVHost::ToUtf8(path) + "\n");
    }
    EXPECT_EQ(host.Run({L"command", L"40000", L"--files-from", L"-"}, "a\xFF").status, 2);
    const HostRun named =
        host.Run({L"rename", path, L"--names-from", L"-", L"--preview"}, Utf16(L"\xFEFFn\u00E9w\r\n"));
    EXPECT_NE(named.out.find("\tn\xC3\xA9w\trename"), std::string::npos) << named.Said();
}

TEST(Completion, KnowsEveryWordOfTheCommandLine) {
    const HostRunner host;
    for (const wchar_t* shell : {L"bash", L"powershell"}) {
        const std::string script = host.Run({L"completion", shell}).out;
        for (const QVHost::CommandWords& command : QVHost::AllWords()) {
            EXPECT_NE(script.find(command.name), std::string::npos) << command.name;
            EXPECT_NE(script.find(command.choices), std::string::npos) << command.choices;
            for (const QVHost::OptionWords& option : command.options)
                EXPECT_NE(script.find(option.name), std::string::npos) << option.name;
        }
        EXPECT_EQ(script.find("elevated-server"), std::string::npos);
        for (const char* word : {"Echo", "TEXT="}) EXPECT_NE(script.find(word), std::string::npos) << word;
    }
    const std::string bash = host.Run({L"completion", L"bash"}).out;
    EXPECT_EQ(bash.find("compgen -f"), std::string::npos) << "names with blanks fall into words";
    EXPECT_NE(bash.find("complete -o default "), std::string::npos) << "files are offered";
    EXPECT_NE(bash.find(R"([ "$before" = = ])"), std::string::npos) << "FILE=S would become FILE=SILENT";
    EXPECT_EQ(host.Run({L"completion", L"fish"}).status, 2);
}

}  // namespace
