// Links: a junction's bytes, what the system is asked for, and "CreateLink" here and in the elevated process.
#include "fileutils/links/link_creation.h"

#include <cstring>

#include "fileutils/command_runner.h"
#include "win32/files.h"
#include "win32/path.h"

namespace {

using namespace FileUtils;
using namespace QVTest;

/// What the system was asked for; a table of plain functions has no other place for it.
struct Asked {
    Words words;
    ReparseBuffer buffer;
    uint32_t answer = 0;
};
Asked* g_asked = nullptr;

uint32_t Ask(const Words& words) {
    g_asked->words = words;
    return g_asked->answer;
}

constexpr LinkSystem kRecordingSystem = {
    .makeHardLink =
        [](const std::wstring& link, const std::wstring& target) {
            return Ask({L"hard", link, target});
        },
    .makeSymbolicLink =
        [](const std::wstring& link, const std::wstring& target, uint32_t flags) {
            return Ask({L"symbolic", link, target, std::to_wstring(flags)});
        },
    .setReparsePoint =
        [](const std::wstring& folder, const ReparseBuffer& buffer) {
            g_asked->buffer = buffer;
            return Ask({L"reparse", folder, Win32::Exists(folder) ? L"exists" : L"missing"});
        },
    .saveShortcut =
        [](const std::wstring& link, const std::wstring& target, const std::wstring& workingFolder,
           const wchar_t* description) {
            return Ask({L"shortcut", link, target, workingFolder, description});
        },
};

class MakeLinkTest : public testing::Test {
protected:
    MakeLinkTest() { g_asked = &m_asked; }
    ~MakeLinkTest() override { g_asked = nullptr; }

    uint32_t Make(uint32_t type, const std::wstring& link, const std::wstring& target, bool targetIsFolder) {
        m_asked.words.clear();
        return MakeLink({type, link, target, targetIsFolder}, kRecordingSystem);
    }

    TemporaryFolder m_folder;
    Asked m_asked;
};

TEST_F(MakeLinkTest, AsksTheSystemForEachKind) {
    const std::wstring folder = m_folder.Path();
    const std::wstring target = m_folder.Write(L"target.txt", "x");
    const std::wstring link = m_folder / L"link";
    const std::wstring drives = L"C:\\autoexec.bat";
    const std::wstring description = L"Link created by Quorvane";
    const struct {
        uint32_t type;
        std::wstring target;
        bool targetIsFolder;
        Words asked;
    } cases[] = {
        {1, target, false, {L"hard", link, target}},
        {3, L"..\\target.txt", false, {L"symbolic", link, L"..\\target.txt", L"0"}},
        {3, folder, true, {L"symbolic", link, folder, L"1"}},
        {4, target, false, {L"shortcut", link, target, folder, description}},
        {4, drives, false, {L"shortcut", link, drives, L"C:\\", description}},
        {4, folder, true, {L"shortcut", link, folder, L"", description}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Make(c.type, link, c.target, c.targetIsFolder), 0u);
        EXPECT_EQ(m_asked.words, c.asked);
    }
    EXPECT_EQ(Make(4, L"no such link", m_folder.Path(), true), 0u);
    EXPECT_EQ(m_asked.words[1], Win32::FullPath(L"no such link")) << "the shell has no current folder";
}

TEST_F(MakeLinkTest, GivesTheseErrors) {
    const std::wstring target = m_folder.Write(L"target.txt", "x");
    m_asked.answer = 1314;
    EXPECT_EQ(Make(1, m_folder / L"link", target, false), 1314u);
    EXPECT_EQ(Make(3, m_folder / L"link", target, false), 1314u);
    EXPECT_EQ(Make(2, m_folder / L"link", m_folder.Path(), true), 13u);
    EXPECT_EQ(Make(4, m_folder / L"link", target, false), 3u);
    m_asked.answer = 0;
    for (const uint32_t type : {0u, 5u, 0xFFFFFFFFu}) EXPECT_EQ(Make(type, m_folder / L"link", target, false), 13u);
    EXPECT_EQ(Make(4, target, target, false), 3u);  // a shortcut takes no file's place
    EXPECT_TRUE(m_asked.words.empty());
    EXPECT_EQ(m_folder.List(), Names{L"target.txt"});
}

TEST_F(MakeLinkTest, WritesAJunctionIntoANewOrAnEmptyFolder) {
    const std::wstring target = m_folder.MakeFolder(L"target");
    const std::wstring link = m_folder / L"new\\deep\\link";  // from the second time on it is there, and empty
    const std::wstring missing = L"\\??\\X:\\missing";
    for (const auto& [wanted, written] :
         {std::pair(target, L"\\??\\" + target), {missing, missing}, {L"\\\\?\\" + target, L"\\??\\" + target}}) {
        EXPECT_EQ(Make(2, link, wanted, wanted != missing), 0u);
        EXPECT_EQ(m_asked.words, (Names{L"reparse", link, L"exists"}));
        EXPECT_EQ(reinterpret_cast<const wchar_t*>(m_asked.buffer.bytes.data() + 16), written);
        uint32_t tag = 0;  // the fuzz target reads the other fields back
        std::memcpy(&tag, m_asked.buffer.bytes.data(), sizeof(tag));
        EXPECT_EQ(tag, 0xA0000003u);
    }

    EXPECT_EQ(Make(2, m_folder / L"new", target, true), 13u);  // not empty
    EXPECT_EQ(Make(2, m_folder.Write(L"file", "x"), target, true), 13u);
    EXPECT_TRUE(m_asked.words.empty());
    EXPECT_TRUE(Win32::Exists(link));
}

TEST_F(MakeLinkTest, LeavesNoFolderOfAFailedJunctionBehind) {
    m_asked.answer = 50;
    EXPECT_EQ(Make(2, m_folder / L"a\\b\\link", m_folder.Path(), true), 13u);
    EXPECT_EQ(m_asked.words.size(), 3u);
    EXPECT_EQ(Make(2, m_folder / L"link", m_folder / L"missing", true), 13u);
    EXPECT_EQ(m_folder.List(), Names{});
    const std::wstring mine = m_folder.MakeFolder(L"mine");
    EXPECT_EQ(Make(2, mine, m_folder.Path(), true), 13u);
    EXPECT_TRUE(Win32::Exists(mine));  // it was there before
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
