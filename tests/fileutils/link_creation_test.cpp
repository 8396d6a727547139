// Links: a junction's bytes, what the system is asked for, and "CreateLink" here and in the elevated process.
#include "fileutils/link_creation.h"

#include <gtest/gtest.h>

#include "fileutils/command_runner.h"
#include "host/elevated_channel.h"
#include "host/elevated_protocol.h"
#include "host/request_fields.h"
#include "win32/files.h"
#include "win32/path.h"

namespace {

using namespace FileUtils;
using QVTest::CommandRun;
using QVTest::CommandRunner;
using QVTest::TemporaryFolder;
using Names = std::vector<std::wstring>;

TEST(JunctionReparseBuffer, IsTheseBytes) {
    const auto buffer = JunctionReparseBuffer(L"\\??\\C:\\\u4E2D");
    ASSERT_TRUE(buffer);
    const std::vector<uint8_t> expected = {
        0x03, 0x00, 0x00, 0xA0,                                                        // tag
        28,   0,    0,    0,                                                           // data length, reserved
        0,    0,    16,   0,    18,  0, 0,    0,                                       // names: offset, length
        '\\', 0,    '?',  0,    '?', 0, '\\', 0, 'C', 0, ':', 0, '\\', 0, 0x2D, 0x4E,  //
        0,    0,    0,    0,
    };
    ASSERT_EQ(buffer->bytes.size(), kReparseBufferSize);
    EXPECT_EQ(buffer->usedSize, expected.size());
    EXPECT_EQ(buffer->usedSize, 28u + 8);
    EXPECT_EQ(std::vector<uint8_t>(buffer->bytes.begin(), buffer->bytes.begin() + 36), expected);
    EXPECT_EQ(std::vector<uint8_t>(buffer->bytes.begin() + 36, buffer->bytes.end()),
              std::vector<uint8_t>(kReparseBufferSize - 36));
}

TEST(JunctionReparseBuffer, HoldsTheLongestNameThatFits) {
    const size_t longest = (kReparseBufferSize - 16) / 2 - 2;
    const auto buffer = JunctionReparseBuffer(std::wstring(longest, L'a'));
    ASSERT_TRUE(buffer);
    EXPECT_EQ(buffer->usedSize, kReparseBufferSize);
    EXPECT_FALSE(JunctionReparseBuffer(std::wstring(longest + 1, L'a')));
}

/// What the system was asked for; a table of plain functions has no other place for it.
struct Asked {
    std::vector<std::wstring> words;
    ReparseBuffer buffer;
    uint32_t answer = 0;
};
Asked* g_asked = nullptr;

constexpr LinkSystem kRecordingSystem = {
    .makeHardLink =
        [](const std::wstring& link, const std::wstring& target) {
            g_asked->words = {L"hard", link, target};
            return g_asked->answer;
        },
    .makeSymbolicLink =
        [](const std::wstring& link, const std::wstring& target, uint32_t flags) {
            g_asked->words = {L"symbolic", link, target, std::to_wstring(flags)};
            return g_asked->answer;
        },
    .setReparsePoint =
        [](const std::wstring& folder, const ReparseBuffer& buffer) {
            g_asked->words = {L"reparse", folder, Win32::Exists(folder) ? L"exists" : L"missing"};
            g_asked->buffer = buffer;
            return g_asked->answer;
        },
    .saveShortcut =
        [](const std::wstring& link, const std::wstring& target, const std::wstring& workingFolder,
           const wchar_t* description) {
            g_asked->words = {L"shortcut", link, target, workingFolder, description};
            return g_asked->answer;
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
    const std::wstring target = m_folder.Write(L"target.txt", "x");
    const std::wstring link = m_folder / L"link";
    EXPECT_EQ(Make(1, link, target, false), 0u);
    EXPECT_EQ(m_asked.words, (Names{L"hard", link, target}));
    EXPECT_EQ(Make(3, link, L"..\\target.txt", false), 0u);
    EXPECT_EQ(m_asked.words, (Names{L"symbolic", link, L"..\\target.txt", L"0"}));
    EXPECT_EQ(Make(3, link, m_folder.Path(), true), 0u);
    EXPECT_EQ(m_asked.words, (Names{L"symbolic", link, m_folder.Path(), L"1"}));
    const wchar_t* const description = L"Link created by Quorvane";
    EXPECT_EQ(Make(4, link + L".lnk", target, false), 0u);
    EXPECT_EQ(m_asked.words, (Names{L"shortcut", link + L".lnk", target, m_folder.Path(), description}));
    EXPECT_EQ(Make(4, link, L"C:\\autoexec.bat", false), 0u);
    EXPECT_EQ(m_asked.words, (Names{L"shortcut", link, L"C:\\autoexec.bat", L"C:\\", description}));
    EXPECT_EQ(Make(4, link, m_folder.Path(), true), 0u);
    EXPECT_EQ(m_asked.words, (Names{L"shortcut", link, m_folder.Path(), L"", description}));
    for (const wchar_t* relative : {L"no such link", L"Z:no such link", L"\\no such link"}) {
        EXPECT_EQ(Make(4, relative, m_folder.Path(), true), 0u);
        EXPECT_EQ(m_asked.words[1], Win32::FullPath(relative)) << "the shell has no current folder";
    }
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
    const std::wstring target = m_folder / L"target";
    ASSERT_TRUE(CreateDirectoryW(target.c_str(), nullptr));
    const std::wstring expected = L"\\??\\" + target;
    const auto written = [&] {
        const auto* units = reinterpret_cast<const wchar_t*>(m_asked.buffer.bytes.data() + 16);
        return std::wstring(units);
    };
    EXPECT_EQ(Make(2, m_folder / L"new\\deep\\link", target, true), 0u);
    EXPECT_EQ(m_asked.words, (Names{L"reparse", m_folder / L"new\\deep\\link", L"exists"}));
    EXPECT_EQ(written(), expected);
    EXPECT_EQ(Make(2, m_folder / L"new\\deep\\link", L"\\??\\X:\\missing", false), 0u);  // it is there now, and empty
    EXPECT_EQ(written(), L"\\??\\X:\\missing");
    EXPECT_EQ(Make(2, m_folder / L"new\\deep\\link", L"\\\\?\\" + target, true), 0u);
    EXPECT_EQ(written(), expected);

    EXPECT_EQ(Make(2, m_folder / L"new", target, true), 13u);  // not empty
    EXPECT_EQ(Make(2, m_folder.Write(L"file", "x"), target, true), 13u);
    EXPECT_TRUE(m_asked.words.empty());
    EXPECT_TRUE(Win32::Exists(m_folder / L"new\\deep\\link"));
}

TEST_F(MakeLinkTest, LeavesNoFolderOfAFailedJunctionBehind) {
    m_asked.answer = 50;
    EXPECT_EQ(Make(2, m_folder / L"a\\b\\link", m_folder.Path(), true), 13u);
    EXPECT_EQ(m_asked.words.size(), 3u);
    EXPECT_EQ(Make(2, m_folder / L"link", m_folder / L"missing", true), 13u);
    EXPECT_EQ(m_folder.List(), Names{});
    const std::wstring mine = m_folder / L"mine";
    ASSERT_TRUE(CreateDirectoryW(mine.c_str(), nullptr));
    EXPECT_EQ(Make(2, mine, m_folder.Path(), true), 13u);
    EXPECT_TRUE(Win32::Exists(mine));  // it was there before
}

/// Runs "CreateLink" for a target and the link "link" of the runner's folder.
CommandRun Call(const CommandRunner& runner, const std::wstring& type, const std::wstring& target,
                const Names& more = {}) {
    Names words = {L"call", L"CreateLink", L"LNKTYPE=" + type, L"LNKSRC=" + (runner.Folder() / L"link"),
                   L"LNKTRG=" + target};
    words.insert(words.end(), more.begin(), more.end());
    return runner.Run(words);
}

std::string Narrow(const std::wstring& text) {
    return {text.begin(), text.end()};
}

TEST(CreateLinkCommand, LogsAndReportsWhatBecameOfTheLink) {
    const CommandRunner runner;
    const std::wstring target = runner.Folder().Write(L"target", "x");
    const std::string paths =
        "Link : \"" + Narrow(runner.Folder() / L"link") + "\" Link Target : \"" + Narrow(target) + "\"\n";
    CommandRun run = Call(runner, L"1", target);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.log, "Link Created (Hardlink) " + paths);
    EXPECT_EQ(run.notes, "[result] 0\n");
    EXPECT_TRUE(Win32::IsSameFile(target, runner.Folder() / L"link"));

    run = Call(runner, L"1", target);  // the name exists
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.log, "Failed to create link (Hardlink) (Error : 183) " + paths);
    EXPECT_NE(run.notes.find("[result] 183\n"), std::string::npos) << run.notes;
    EXPECT_EQ(Call(runner, L"7", target).log, "Failed to create link (Unknown) (Error : 13) " + paths);
    EXPECT_EQ(Call(runner, L"3", runner.Folder() / L"missing").log, "");
    run = runner.Run({L"call", L"CreateLink", L"LNKTYPE=4", L"LNKSRC=", L"LNKTRG=" + target});
    EXPECT_TRUE(run.log.starts_with("Failed to create link (Unknown) (Error : 3) Link : \"\"")) << run.log;
    const CommandRun incomplete = runner.Run({L"call", L"CreateLink", L"LNKSRC=a", L"LNKTRG=" + target});
    EXPECT_EQ(incomplete.status, 1);
    EXPECT_EQ(incomplete.log, "");

    ASSERT_TRUE(DeleteFileW((runner.Folder() / L"link").c_str()));
    EXPECT_EQ(Call(runner, L"4", target).log, "Link Created (Unknown) " + paths);
    EXPECT_NE(runner.Folder().Read(L"link").size(), 0u);
}

TEST(CreateLinkCommand, AsksTheElevatedProcessAndNoOther) {
    const CommandRunner runner;
    const std::wstring target = runner.Folder().Write(L"target", "x");
    EXPECT_EQ(Call(runner, L"1", target, {L"ASADMIN"}).status, 1);
    EXPECT_EQ(Call(runner, L"1", target, {L"ASADMIN", L"--can-elevate", L"--elevated"}).status, 1);
    EXPECT_EQ(runner.Folder().List(), Names{L"target"});
    CommandRun run = Call(runner, L"1", target, {L"ASADMIN", L"--can-elevate"});
    EXPECT_EQ(run.status, 0) << run.notes;
    EXPECT_TRUE(run.log.starts_with("Link Created (Hardlink) ")) << run.log;
    EXPECT_TRUE(Win32::IsSameFile(target, runner.Folder() / L"link"));
    run = Call(runner, L"1", target, {L"ASADMIN", L"--can-elevate"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.log.starts_with("Failed to create link (Hardlink) (Error : 183) ")) << run.log;
}

TEST(CreateLinkRequest, IsRefusedUnlessItIsWhole) {
    const TemporaryFolder folder;
    const std::wstring target = folder.Write(L"target", "x");
    QVHost::Bytes whole;
    QVHost::AppendNumber(whole, LinkType::HardLink);
    QVHost::AppendString(whole, folder / L"link");
    QVHost::AppendString(whole, target);
    const size_t flagAt = whole.size();
    QVHost::AppendNumber(whole, 0);

    std::ostringstream out;
    QVHost::Output output(out, out, false);
    const TemporaryFolder settings;
    QVHost::ElevatedChannel channel(output, {QV_HOST_PROGRAM, {L"--config", settings.Path()}}, 0);
    ASSERT_TRUE(channel.Connect()) << out.str();
    const auto send = [&](const QVHost::Bytes& bytes) {
        return channel.Send(kCreateLinkRequest, bytes.data(), static_cast<uint32_t>(bytes.size()));
    };
    for (size_t size = 0; size < whole.size(); ++size)
        ASSERT_EQ(send(QVHost::Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size))), 87u) << size;
    QVHost::Bytes bad = whole;
    bad[flagAt] = 2;
    EXPECT_EQ(send(bad), 87u);
    bad = whole;
    QVHost::AppendNumber(bad, 0);
    EXPECT_EQ(send(bad), 87u);
    EXPECT_EQ(folder.List(), Names{L"target"});
    EXPECT_EQ(send(whole), 0u);
    EXPECT_EQ(folder.List(), (Names{L"link", L"target"}));
    channel.Close();
}

}  // namespace
