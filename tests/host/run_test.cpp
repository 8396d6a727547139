// run_test.cpp - whole runs of the host with the test extension.
#include "host/app/host_text.h"
#include "host/app/output.h"
#include "host_runner.h"
#include "textio/replace_file.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace {

using namespace QVTest;
using Words = std::vector<std::wstring>;

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(QvHost, ListsWhatTheLibraryRegisters) {
    EXPECT_TRUE(Contains(HostRunner().Run({L"extensions"}).out, "0  Test Extension\n"));
    EXPECT_TRUE(Contains(HostRunner().Run({L"menus"}).out, "Test\n  Sub\n    40000  Do it"));
}

TEST(QvHost, HandsParametersOverWhole) {
    const HostRunner host;
    const std::pair<Words, const char*> cases[] = {
        {{L"Echo", L"TEXT=[a,b]"}, "text <[a,b]> number 7 default switch off\n"},
        {{L"Echo", L"TEXT=-x=y ", L"FLAG"}, "text <-x=y > number 7 default switch on\n"},
        {{L"Echo", L"TEXT=", L"NUMBER=4294967295"}, "text <> number 4294967295 given switch off\n"},
        {{L"Echo", L"NUMBER=0x10", L"TEXT=gr\u00FC\u00DFe \U0001F600"},
         "text <gr\xC3\xBC\xC3\x9F"
         "e \xF0\x9F\x98\x80> number 16 given switch off\n"},
    };
    for (const auto& [arguments, logged] : cases) {
        const HostRun run = host.Call(arguments);
        EXPECT_EQ(run.out, logged);
        EXPECT_EQ(run.status, 0) << run.error;
    }
}

TEST(QvHost, CallsACommandOnceForEachPathOfAList) {
    const HostRunner host;
    const std::string first = QVHost::ToUtf8(host.Folder().Write(L"{a}.txt", ""));
    const std::string second = QVHost::ToUtf8(host.Folder().Write(L"b.txt", ""));
    const auto runOn = [&](const wchar_t* text, const std::string& list) {
        return host.Run({L"call", L"Echo", text, L"--files-from", L"-"}, list);
    };
    const HostRun run = runOn(L"TEXT=<{}> {}", first + "\n" + second);
    for (const std::string& path : {first, second})
        EXPECT_TRUE(Contains(run.out, "text <<" + path + "> " + path + "> number")) << run.out;
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(runOn(L"TEXT=x", first).status, 2);
    const HostRun refused = runOn(L"TEXT={}", second + std::string(1, '\0') + "c.txt");
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(Contains(refused.error, "line 1 of the standard input holds a zero character")) << refused.error;
}

TEST(QvHost, EndsWithAStatusThatTellsWhatHappened) {
    const HostRunner host;
    host.Folder().Write(L"good.txt", "");
    host.Folder().Write(L"bad.txt", "");
    host.Folder().Write(L"odd", "");
    const std::wstring odd = LR"(\\?\)" + (host.Folder() / L"odd.");
    ASSERT_TRUE(CopyFileW((host.Folder() / L"odd").c_str(), odd.c_str(), TRUE));
    const std::tuple<const char*, Words, int, const char*> cases[] = {
        {"a failed file", {L"command", L"40000", host.Folder() / L"bad.txt"}, 1, "[failed] "},
        {"not handled", {L"command", L"9"}, 1, "no extension handles the command 9"},
        {"wildcards", {L"command", L"40000", host.Folder() / L"g?od.*"}, 0, "good.txt\n"},
        {"wildcards that match nothing", {L"command", L"40000", host.Folder() / L"no*.txt"}, 2, "no*.txt"},
        {"a name that the system cuts", {L"command", L"40000", host.Folder() / L"od*"}, 2, "odd.\" leads to another"},
        {"the same in full", {L"command", L"40000", odd}, 0, "odd.\n"},
        {"a missing file", {L"command", L"40000", L"none.txt"}, 2, "there is no file or folder none.txt"},
        {"no id", {L"command", L"x"}, 2, "\"x\" is no command id"},
        {"required parameter missing", {L"call", L"Echo"}, 1, "Echo needs TEXT"},
        {"not done", {L"call", L"Refuse", L"CODE=0"}, 1, "gives no reason; it got CODE=\"0\""},
        {"not allowed", {L"call", L"Refuse", L"CODE=5"}, 1, "only with --can-elevate"},
        {"unknown command", {L"call", L"Ehco"}, 2, "there is no custom command \"Ehco\", did you mean Echo?"},
        {"unknown parameter", {L"call", L"Echo", L"TXET=a"}, 2, "has no parameter \"TXET\", did you mean TEXT?"},
        {"text without a value", {L"call", L"Echo", L"TEXT"}, 2, "TEXT needs a value"},
        {"switch with a value", {L"call", L"Echo", L"FLAG=1"}, 2, "FLAG is a switch"},
        {"no number", {L"call", L"Echo", L"NUMBER=1x"}, 2, "NUMBER needs a number"},
        {"given twice", {L"call", L"Echo", L"TEXT=a", L"TEXT=b"}, 2, "TEXT is given twice"},
        {"a log that takes nothing", {L"call", L"Echo", L"TEXT=a", L"--log", L"/dev/full"}, 1, "the log file "},
        {"no library", {L"menus", L"--library", L"none.dll"}, 2, "none.dll"},
        {"wrong use", {L"comands", L"--quiet"}, 2, "there is no \"comands\", did you mean commands?"},
    };
    for (const auto& [why, arguments, status, said] : cases) {
        const HostRun run = host.Run(arguments);
        EXPECT_EQ(run.status, status) << why << ": " << run.error;
        EXPECT_TRUE(Contains(run.error, said)) << why << ": " << run.error;
    }
    EXPECT_TRUE(DeleteFileW(odd.c_str()));
}

TEST(QvHost, CountsAStopAsAFailureOfWhateverRan) {
    const HostRunner host;
    const std::wstring path = host.Folder().Write(L"good.txt", "");
    const std::atomic<bool> isStopped = true;
    for (const Words& arguments : {Words{L"command", L"40000", path},
                                   {L"call", L"Echo", L"TEXT={}", L"--files-from", L"-"},
                                   {L"columns", path},
                                   {L"rename", path, L"--name", L"new"}}) {
        const HostRun run = host.Run(arguments, QVHost::ToUtf8(path), {}, &isStopped);
        EXPECT_EQ(run.status, 1) << run.Said();
        EXPECT_TRUE(Contains(run.error, "qvhost: the run was stopped\n")) << run.error;
    }
}

TEST(QvHost, TakesPathsOfAnyLengthAndScript) {
    const HostRunner host;
    std::wstring folder = host.Folder().Path();
    for (int level = 0; level < 3; ++level) {
        folder = Win32::JoinPath(folder, std::wstring(100, L'd'));
        ASSERT_EQ(Win32::MakeFolders(folder), 0u);
    }
    const std::wstring name = L"\u65E5\u672C \U0001F600.txt";
    const std::wstring path = Win32::JoinPath(folder, name);
    ASSERT_EQ(QVUtils::ReplaceRecord(path, "x", true), 0u);
    const std::string list = "\xEF\xBB\xBF" + QVHost::ToUtf8(path) + "\r\n";
    for (const HostRun& run :
         {host.Run({L"command", L"40000", path}), host.Run({L"command", L"40000", L"--files-from", L"-"}, list)}) {
        EXPECT_EQ(run.status, 0) << run.error;
        EXPECT_EQ(run.error, "[done] " + QVHost::ToUtf8(path) + "\n");
        EXPECT_TRUE(Contains(run.out, QVHost::ToUtf8(name + L" in " + folder + L", attributes"))) << run.out;
    }
}

TEST(QvHost, AnswersQuestionsFromTheScriptOrOnTheConsoleUntilItUnderstands) {
    const HostRunner host;
    const struct {
        const char* why;
        Words arguments;
        const char *logged, *said;
        std::optional<Words> lines = {};
    } cases[] = {
        {"yes", {L"Ask", L"STYLE=36", L"--answer", L"Yes"}, "button 6\n", "[question] Test: Really? Sure? -> yes\n"},
        {"nobody answers", {L"Ask", L"STYLE=35"}, "button 7\n", "Sure? -> no\n"},
        {"a choice", {L"Choose", L"--answer", L"replace"}, "chosen 0\n", "Replace here? -> Replace\n"},
        {"no such choice", {L"Choose", L"--answer", L"dance"}, "cancelled 0\n", "[note] \"dance\" is none"},
        {"too long an input", {L"Enter", L"--answer", L"1234567890123456"}, "cancelled <proposed>\n", "longer than 15"},
        {"asked again", {L"Ask", L"STYLE=35"}, "button 6\n", "", Words{L"perhaps", L"YES"}},
        {"the console ends", {L"Ask", L"STYLE=35"}, "button 7\n", "", Words{}},
        {"by number", {L"Choose"}, "chosen 2\n", "", Words{L"9", L"3"}},
        {"an empty line", {L"Choose"}, "cancelled 0\n", "", Words{L""}},
        {"which takes what is proposed", {L"Enter"}, "entered <proposed>\n", "", Words{L""}},
    };
    for (const auto& c : cases) {
        const HostRun run = host.Call(c.arguments, c.lines);
        EXPECT_EQ(run.out, c.logged) << c.why;
        EXPECT_TRUE(Contains(run.error, c.said)) << c.why << ": " << run.error;
    }
}

TEST(QvHost, KeepsLogLinesWholeAndInTheFile) {
    const HostRunner host;
    const std::wstring log = host.Folder() / L"log.txt";
    host.Call({L"Echo", L"TEXT=a\nb", L"--quiet", L"--log", log});
    const HostRun second = host.Call({L"Echo", L"TEXT=c", L"--log", log});
    EXPECT_EQ(second.out, "text <c> number 7 default switch off\n");
    EXPECT_EQ(host.Folder().Read(L"log.txt"), "text <a b> number 7 default switch off\n" + second.out);
}

TEST(QvHost, SurvivesAFaultyExtension) {
    const HostRunner host;
    const HostRun run = host.Run({L"call", L"Misuse"});
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out, std::string(100000, 'x') + "\n");
}

}  // namespace
