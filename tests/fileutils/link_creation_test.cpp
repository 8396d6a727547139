// Links: what the system is asked for, and "CreateLink" here and in the elevated process.
#include "fileutils/links/link_creation.h"

#include <cstring>
#include <sstream>

#include "fileutils/command_runner.h"
#include "support/replaced_imports.h"
#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"
#include "win32/shortcut.h"

namespace {

using namespace FileUtils;
using namespace QVTest;

// Each call that makes a link is replaced by one that writes down what it gets.
Words g_calls;
bool g_answer = true;

BOOL Note(const Words& words) {
    std::wstring call;
    for (const std::wstring& word : words) call += (call.empty() ? L"" : L" ") + word;
    g_calls.push_back(call);
    if (!g_answer) SetLastError(1314);
    return g_answer;
}

template <class... Number>
std::wstring Hex(Number... numbers) {
    std::wostringstream text;
    text << std::hex;
    ((text << L' ' << numbers), ...);
    return text.str();
}

BOOL WINAPI HardLink(LPCWSTR link, LPCWSTR target, LPSECURITY_ATTRIBUTES security) {
    return Note({L"hard", link, target, security ? L"secured" : L"plain"});
}

BOOLEAN WINAPI SymbolicLink(LPCWSTR link, LPCWSTR target, DWORD flags) {
    return static_cast<BOOLEAN>(Note({L"symbolic", link, target, std::to_wstring(flags)}));
}

decltype(&GetProcAddress) g_find = nullptr;
FARPROC WINAPI Find(HMODULE module, LPCSTR name) {
    const bool isMeant = std::strcmp(name, "CreateSymbolicLinkW") == 0;
    return isMeant ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&SymbolicLink)) : g_find(module, name);
}

HANDLE WINAPI Open(LPCWSTR path, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES, DWORD creation, DWORD flags,
                   HANDLE) {
    EXPECT_TRUE(Win32::Exists(path));
    Note({L"open", path + Hex(access, sharing, creation, flags)});
    return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

/// The fuzz target reads a junction's other fields back.
BOOL WINAPI Control(HANDLE, DWORD code, LPVOID in, DWORD inSize, LPVOID, DWORD outSize, LPDWORD, LPOVERLAPPED) {
    const auto* const bytes = static_cast<const uint8_t*>(in);
    const std::wstring target = reinterpret_cast<const wchar_t*>(bytes + 16);
    uint32_t tag = 0;
    std::memcpy(&tag, bytes, sizeof(tag));
    return Note({L"control" + Hex(code, inSize - target.size() * sizeof(wchar_t), outSize, tag), target});
}

ReplacedImport Replace(const char* name, auto* function) {
    return {GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(function)};
}

class MakeLinkTest : public testing::Test {
protected:
    MakeLinkTest() { g_answer = true; }

    uint32_t Make(uint32_t type, const std::wstring& link, const std::wstring& target, bool targetIsFolder) {
        LinkSystem system = ThisSystem();
        system.saveShortcut = [](const std::wstring& path, const std::wstring& to, const std::wstring& workingFolder,
                                 const wchar_t* description) {
            return Note({L"shortcut", path, to, workingFolder, description}) ? 0u : 1314u;
        };
        const ReplacedImport replaced[] = {Replace("CreateHardLinkW", HardLink), Replace("GetProcAddress", Find),
                                           Replace("CreateFileW", Open), Replace("DeviceIoControl", Control)};
        g_find = reinterpret_cast<decltype(g_find)>(replaced[1].Original());
        g_calls.clear();
        return MakeLink({type, link, target, targetIsFolder}, system);
    }

    TemporaryFolder m_folder;
};

TEST_F(MakeLinkTest, AsksTheSystemForEachKind) {
    const std::wstring folder = m_folder.Path();
    const std::wstring target = m_folder.Write(L"target.txt", "x");
    const std::wstring link = m_folder / L"link";
    const std::wstring shortcut = L"shortcut " + link + L" ", described = L" Link created by Quorvane";
    const struct {
        uint32_t type;
        std::wstring target;
        bool targetIsFolder;
        uint32_t refusal;
        std::wstring call;
    } cases[] = {
        {1, target, false, 1314, L"hard " + link + L" " + target + L" plain"},
        {3, L"..\\target.txt", false, 1314, L"symbolic " + link + L" ..\\target.txt 0"},
        {3, folder, true, 1314, L"symbolic " + link + L" " + folder + L" 1"},
        {4, target, false, 3, shortcut + target + L" " + folder + described},
        {4, L"C:\\autoexec.bat", false, 3, shortcut + L"C:\\autoexec.bat C:\\" + described},
        {4, folder, true, 3, shortcut + folder + L" " + described},
    };
    for (const auto& c : cases)
        for (const bool answer : {true, false}) {
            g_answer = answer;
            EXPECT_EQ(Make(c.type, link, c.target, c.targetIsFolder), answer ? 0 : c.refusal);
            EXPECT_EQ(g_calls, Words{c.call});
        }
    for (const uint32_t type : {0u, 5u, 0xFFFFFFFFu}) EXPECT_EQ(Make(type, link, target, false), 13u);
    EXPECT_EQ(Make(4, target, target, false), 3u) << "a shortcut takes no file's place";
    EXPECT_TRUE(g_calls.empty());
    EXPECT_EQ(m_folder.List(), Names{L"target.txt"});
    Make(4, L"no such link", folder, true);
    EXPECT_TRUE(g_calls[0].starts_with(L"shortcut " + Win32::FullPath(L"no such link"))) << "the shell has no folder";
}

TEST_F(MakeLinkTest, WritesAJunctionIntoANewOrAnEmptyFolder) {
    const std::wstring target = m_folder.MakeFolder(L"target");
    const std::wstring link = m_folder / L"new\\deep\\link";  // from the second time on it is there, and empty
    const std::wstring missing = L"\\??\\X:\\missing";
    for (const auto& [wanted, written] :
         {std::pair(target, L"\\??\\" + target), {missing, missing}, {L"\\\\?\\" + target, L"\\??\\" + target}}) {
        EXPECT_EQ(Make(2, link, wanted, wanted != missing), 0u);
        EXPECT_EQ(g_calls,
                  (Words{L"open " + link + L" c0000000 7 3 2200000", L"control 900a4 14 0 a0000003 " + written}));
    }
    EXPECT_EQ(Make(2, m_folder / L"new", target, true), 13u);  // not empty
    EXPECT_EQ(Make(2, m_folder.Write(L"file", "x"), target, true), 13u);
    EXPECT_TRUE(g_calls.empty());
    EXPECT_TRUE(Win32::Exists(link));
}

TEST_F(MakeLinkTest, LeavesNoFolderOfAFailedJunctionBehind) {
    g_answer = false;
    EXPECT_EQ(Make(2, m_folder / L"a\\b\\link", m_folder.Path(), true), 13u);
    EXPECT_EQ(g_calls.size(), 2u);
    EXPECT_EQ(Make(2, m_folder / L"link", m_folder / L"missing", true), 13u);
    EXPECT_EQ(m_folder.List(), Names{});
    const std::wstring mine = m_folder.MakeFolder(L"mine");
    EXPECT_EQ(Make(2, mine, m_folder.Path(), true), 13u);
    EXPECT_TRUE(Win32::Exists(mine));  // it was there before
}

TEST(LinkShortcut, HasTheseFields) {
    const TemporaryFolder folder;
    const std::wstring target = folder.Write(L"target", "x");
    const std::wstring link = folder / L"link.lnk";
    ASSERT_EQ(ThisSystem().saveShortcut(link, target, folder.Path(), L"words"), 0u);
    EXPECT_EQ(Win32::ReadShortcut(link), (Win32::Shortcut{target, L"", folder.Path(), L"words"}));
    const std::wstring deep = Win32::JoinPath(folder / std::wstring(240, L'd'), L"somewhere else");
    EXPECT_EQ(ThisSystem().saveShortcut(folder / L"deep.lnk", deep, L"", L""), 3u) << "it would lead to another place";
    EXPECT_FALSE(Win32::Exists(folder / L"deep.lnk"));
}

/// Runs "CreateLink" for a target and the link "link" of the runner's folder.
HostRun Call(const CommandRunner& runner, const std::wstring& type, const std::wstring& target,
             const Names& more = {}) {
    const std::wstring link = L"LNKSRC=" + (runner / L"link");
    return runner.Run(Joined({L"call", L"CreateLink", L"LNKTYPE=" + type, link, L"LNKTRG=" + target}, more));
}

TEST(CreateLinkCommand, LogsAndReportsWhatBecameOfTheLink) {
    const CommandRunner runner;
    const std::wstring target = runner.Write(L"target", "x");
    const std::wstring shown = L"Link : \"" + (runner / L"link") + L"\" Link Target : \"" + target + L"\"\n";
    const std::string paths(shown.begin(), shown.end());
    // Asked for as administrator where there is no second process, or this is it.
    EXPECT_TRUE(Holds(Call(runner, L"1", target, {L"ASADMIN"}).error, "[result] error 5 "));
    EXPECT_EQ(Call(runner, L"1", target, {L"ASADMIN", L"--can-elevate", L"--elevated"}).status, 1);
    EXPECT_EQ(runner.List(), Names{L"target"});
    for (const Words& more : {Words(), {L"ASADMIN", L"--can-elevate"}}) {
        const HostRun made = Call(runner, L"1", target, more);
        EXPECT_TRUE(made.status == 0 && made.out.ends_with("Link Created (Hardlink) " + paths))
            << made.out << made.error;
        EXPECT_TRUE(Win32::IsSameFile(target, runner / L"link"));
        const HostRun again = Call(runner, L"1", target, more);
        EXPECT_TRUE(again.status == 1 && Holds(again.out, "Failed to create link (Hardlink) (Error : 183) " + paths));
        EXPECT_TRUE(Holds(again.error, more.empty() ? "[result] 183\n" : "[result] error 183"));
        ASSERT_TRUE(DeleteFileW((runner / L"link").c_str()));
    }
    EXPECT_EQ(Call(runner, L"7", target).out, "Failed to create link (Unknown) (Error : 13) " + paths);
    const HostRun missing = Call(runner, L"3", runner / L"missing");
    EXPECT_TRUE(missing.out.empty() && missing.error.starts_with("[result] error 2 ")) << missing.Said();
    EXPECT_EQ(Call(runner, L"4", target).out, "Link Created (Unknown) " + paths);
    EXPECT_NE(runner.Read(L"link").size(), 0u);
}

}  // namespace
