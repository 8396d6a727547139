// elevated_account_test.cpp - elevation with another administrator's account, to which no test can log on: who is
// served by what the system says of users, sessions and programs, and how the system's prompt is asked for.
#include <gtest/gtest.h>

#include <sstream>

#include "host/app/output.h"
#include "host/elevated/elevated_channel.h"
#include "host/elevated/message_pipe.h"
#include "support/replaced_imports.h"

#include <shellapi.h>
#include <wtsapi32.h>

namespace {

using namespace QVHost;
using namespace QVTest;

// What the system says here.
struct Said {
    bool isOtherUser = true;  // this process's user is not the pipe's owner
    std::wstring owner = L"person";
    std::wstring loggedOn = L"Person";
    DWORD session = 1;  // of another process
};
Said g_said;

// What a replaced call did: the host's code has this program's imports.
decltype(&GetTokenInformation) g_getTokenInformation;
decltype(&GetProcAddress) g_getProcAddress;

BOOL WINAPI SayUser(HANDLE token, TOKEN_INFORMATION_CLASS what, void* record, DWORD size, DWORD* needed) {
    const BOOL isDone = g_getTokenInformation(token, what, record, size, needed);
    if (isDone && g_said.isOtherUser) ++*GetSidSubAuthority(static_cast<TOKEN_USER*>(record)->User.Sid, 0);
    return isDone;
}
BOOL WINAPI SayAccount(const wchar_t*, PSID, wchar_t* name, DWORD* nameSize, wchar_t* domain, DWORD* domainSize,
                       SID_NAME_USE*) {
    wcscpy_s(name, *nameSize, g_said.owner.c_str());
    wcscpy_s(domain, *domainSize, L"PC");
    return TRUE;
}
BOOL WINAPI SaySession(HANDLE, DWORD, WTS_INFO_CLASS what, wchar_t** text, DWORD*) {
    *text = _wcsdup(what == WTSUserName ? g_said.loggedOn.c_str() : L"pc");
    return TRUE;
}
void WINAPI FreeSession(void* text) {
    free(text);
}
BOOL WINAPI SaySessionOfProcess(DWORD, DWORD* session) {
    static bool s_isOther = false;
    s_isOther = !s_isOther;  // asked for in pairs, this process first
    *session = s_isOther ? 1 : g_said.session;
    return TRUE;
}

std::vector<std::wstring> g_asked;
BOOL WINAPI AskForElevation(SHELLEXECUTEINFOW* start) {
    g_asked = {start->lpVerb, start->lpFile, start->lpParameters};
    SetLastError(ERROR_CANCELLED);
    return FALSE;
}
/// What is found by name: nothing of the test platform, and the functions of libraries that are loaded when needed.
FARPROC WINAPI FindAsOnWindows(HMODULE module, const char* name) {
    const std::string_view wanted = name;
    if (wanted == "ShellExecuteExW") return reinterpret_cast<FARPROC>(AskForElevation);
    if (wanted == "WTSQuerySessionInformationW") return reinterpret_cast<FARPROC>(SaySession);
    if (wanted == "WTSFreeMemory") return reinterpret_cast<FARPROC>(FreeSession);
    return wanted.starts_with("wine_") ? nullptr : g_getProcAddress(module, name);
}

TEST(ElevatedAccount, IsServedForTheUserOfThisDesktop) {
    const HMODULE program = GetModuleHandleW(nullptr);
    MessagePipe server;
    const std::wstring name = RandomPipeName();
    ASSERT_EQ(server.Create(name), 0u);
    MessagePipe client;
    ASSERT_EQ(client.Open(name), 0u);
    const ReplacedImport replaced[] = {{program, "GetTokenInformation", reinterpret_cast<void*>(SayUser)},
                                       {program, "LookupAccountSidW", reinterpret_cast<void*>(SayAccount)},
                                       {program, "ProcessIdToSessionId", reinterpret_cast<void*>(SaySessionOfProcess)}};
    const ReplacedImport windows(program, "GetProcAddress", reinterpret_cast<void*>(FindAsOnWindows));
    g_getProcAddress = reinterpret_cast<decltype(g_getProcAddress)>(windows.Original());
    g_getTokenInformation = reinterpret_cast<decltype(g_getTokenInformation)>(replaced[0].Original());
    for (const ReplacedImport& import : replaced) ASSERT_NE(import.Original(), nullptr);
    const struct {
        const char* who;
        Said said;
        bool isServed;
    } cases[] = {
        {"the same account", {.isOtherUser = false, .owner = L"nobody"}, true},
        {"another one, for the person who is logged on", {}, true},
        {"another one, for somebody else", {.owner = L"stranger"}, false},
        {"at another desktop", {.session = 2}, false},
        {"the same account at another desktop", {.isOtherUser = false, .session = 2}, false},
    };
    for (const auto& c : cases) {
        g_said = c.said;
        EXPECT_EQ(client.IsMadeByOwnHost(), c.isServed) << c.who;
    }
}

/// A person who says No is not got round by a start without the rights.
TEST(ElevatedAccount, IsAskedForByTheSystemsPrompt) {
    const ReplacedImport windows(GetModuleHandleW(nullptr), "GetProcAddress", reinterpret_cast<void*>(FindAsOnWindows));
    g_getProcAddress = reinterpret_cast<decltype(g_getProcAddress)>(windows.Original());
    std::ostringstream text;
    Output output(text, text, false);
    Log log(output, L"", false);
    ElevatedChannel channel(log, {LR"(C:\a b\host.exe)", {L"--library", LR"(C:\a b\x.dll)"}}, 2);
    EXPECT_FALSE(channel.Connect());
    ASSERT_EQ(g_asked.size(), 3u);
    EXPECT_EQ(g_asked[0], L"runas");
    EXPECT_EQ(g_asked[1], LR"(C:\a b\host.exe)");
    const size_t pipe = g_asked[2].find(LR"(\\.\pipe\qvhost-)");
    ASSERT_NE(pipe, std::wstring::npos);
    EXPECT_EQ(g_asked[2].erase(pipe, 48),
              LR"("elevated-server" "--pipe" "" "--extension" "2" "--library" "C:\a b\x.dll")");
    output.Flush();
    EXPECT_NE(text.str().find("1223"), std::string::npos) << text.str();
}

}  // namespace
