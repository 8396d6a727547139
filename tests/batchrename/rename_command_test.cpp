// qvhost rename and qvhost undo, on real files, in this process.
#include "host_runner.h"
#include "win32/handle.h"
#include "win32/windows.h"

namespace {

using namespace QVTest;
using Words = std::vector<std::wstring>;

std::string ContentOf(const std::wstring& name) {
    return {name.begin(), name.end()};
}
/// A folder with files that each hold their own name.
class RenameCommand : public testing::Test {
protected:
    void Fill(const Words& names) const {
        for (const std::wstring& name : names) m_files.Write(name, ContentOf(name));
    }
    HostRun Rename(const Words& names, Words options) const {
        for (const std::wstring& name : names) options.push_back(m_files / name);
        options.insert(options.begin(), L"rename");
        return m_host.Run(options);
    }
    /// What would become of the names, as it is printed.
    std::string Preview(const Words& names, Words options) const {
        options.push_back(L"--preview");
        return Rename(names, options).out;
    }

    const HostRunner m_host;
    const TemporaryFolder m_files;
};

TEST_F(RenameCommand, PreviewsRowsOfManyFoldersInTheirOrder) {
    for (const wchar_t* folder : {L"one", L"Two"}) CreateDirectoryW((m_files / folder).c_str(), nullptr);
    for (const wchar_t* name : {L"one\\a", L"one\\b", L"one\\03", L"Two\\a", L"Two\\b"}) m_files.Write(name, "");
    // The folders take turns, and one is spelled in two ways: all of its rows are judged together.
    const HostRun run = Rename({L"one\\a", L"Two\\a", L"one\\b", L"TWO\\b"}, {L"--name", L"[C]", L"--preview"});
    EXPECT_EQ(run.out, "a\t01\trename\na\t02\trename\nb\t03\tfailed: \"03\" is there already\nb\t04\trename\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(Preview({L"Two\\a", L"one\\a", L"two\\b"}, {L"--name", L"x"}),
              "a\tx\tfailed: \"x\" would be the name of more than one item\na\tx\trename\n"
              "b\tx\tfailed: \"x\" would be the name of more than one item\n");
    const HostRun none = Rename({L"one\\a", L"Two\\none"}, {L"--name", L"[C]", L"--preview"});
    EXPECT_EQ(none.out, "") << "nothing is printed of a list with a path that leads nowhere";
    EXPECT_EQ(none.status, 2);
}

TEST_F(RenameCommand, TakesTheNameOnDiskAndEachItemOnce) {
    Fill({L"photo.jpg", L"b"});
    const Words listed = {L"PHOTO.JPG", L"b", L"photo.jpg", L"B", L"Photo.jpg"};
    const char expected[] = "photo.jpg\tphoto-1.jpg\trename\nb\tb-2\trename\n";
    const Words options = {L"--name", L"[N]-[C1,1,1]"};
    EXPECT_EQ(Preview(listed, options), expected);
    const HostRun run = Rename(listed, options);
    EXPECT_EQ(run.out, "photo.jpg\tphoto-1.jpg\trenamed\nb\tb-2\trenamed\n");
    EXPECT_EQ(m_files.List(), (Words{L"b-2", L"photo-1.jpg"}));
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).status, 0);
    EXPECT_EQ(m_files.List(), (Words{L"b", L"photo.jpg"}));
    EXPECT_EQ(Preview({L"PHOTO.JPG"}, {}), "photo.jpg\tphoto.jpg\tignored: the name stays the same\n");
}

TEST_F(RenameCommand, TakesNamesAndTextsAsTheyAre) {
    Fill({L"[a,b].txt", L"-x"});
    EXPECT_EQ(Preview({L"[a,b].txt"}, {L"--find", L"[a,b]", L"--replace", L"-[1,2]"}),
              "[a,b].txt\t-[1,2].txt\trename\n");
    EXPECT_EQ(Preview({L"-x"}, {L"--find=-", L"--replace=--"}), "-x\t--x\trename\n");
}

TEST_F(RenameCommand, KnowsSizesAndDates) {
    Fill({L"12345"});
    const struct {
        const char* why;
        const wchar_t* name;
        const char* shown;
    } cases[] = {
        {"kilobytes, rounded up", L"[?SIZE,{KB}]x", "1x\trename"},
        {"the century", L"[?modified,{yyyy},1,2]x", "20x\trename"},
        {"nothing known", L"[?colour]x", "x\tfailed: the template asks"},
        {"a given time", L"[Y2][M2][D2]-[h][m][s2]", "160307-142905\trename"},
    };
    for (const auto& c : cases) {
        const std::string out = Preview({L"12345"}, {L"--time", L"2016-03-07T14:29:05", L"--name", c.name});
        EXPECT_TRUE(out.starts_with(std::string("12345\t") + c.shown)) << c.why << ": " << out;
    }
}

TEST_F(RenameCommand, SavesAndUsesProfiles) {
    Fill({L"a1"});
    const Words save = {L"--save-profile", L" p ",  L"--find", L"a",      L"--replace", L" b ",
                        L"--scope",        L"name", L"--name", L"[N]-[C]"};
    EXPECT_EQ(Rename({}, save).status, 0);
    EXPECT_EQ(Preview({L"a1"}, {L"--profile", L" p "}), "a1\t b 1-01\trename\n");
    EXPECT_EQ(Preview({L"a1"}, {L"--profile", L" p ", L"--name", L"[N]"}), "a1\t b 1\trename\n");
}

TEST_F(RenameCommand, RefusesWhatMakesNoSense) {
    Fill({L"a"});
    const std::pair<Words, const char*> cases[] = {
        {{L"--find", L"a"}, "needs its --replace"},
        {{L"--counter", L"1,x"}, "--counter takes"},
        {{L"--save-profile", L""}, "--save-profile needs a name"},
        {{L"--profile", L"p"}, "no profile \"p\""},
        {{L"--time", L"2016-02-30T00:00:00"}, "--time takes"},
        {{L"--regex", L"--find", L"(", L"--replace", L""}, "no regular expression"},
    };
    for (const auto& [options, text] : cases) {
        const HostRun run = Rename({L"a"}, options);
        EXPECT_EQ(run.status, 2) << text;
        EXPECT_NE(run.error.find(text), std::string::npos) << run.error;
    }
    for (const Words& words : {Words{L"rename"},
                               {L"undo", L"restore"},
                               {L"undo", L"dance"},
                               {L"undo", L"restore", L"none"},
                               {L"menus", L"--name", L"x"}})
        EXPECT_EQ(m_host.Run(words).status, 2) << words.size();
    EXPECT_EQ(m_files.List(), Words{L"a"});
}

TEST_F(RenameCommand, ListsSessionsAndLeavesNoneWhenAskedNotTo) {
    Fill({L"a", L"b"});
    EXPECT_EQ(Rename({L"a"}, {L"--name", L"a2", L"--no-undo"}).status, 0);
    const HostRun unrecorded =
        Rename({L"a2"}, {L"--name", L"a3", L"--config", BesideThisProgram(L"test_batchrename.exe")});
    EXPECT_EQ(unrecorded.status, 1) << "a file is no folder for settings";
    EXPECT_TRUE(unrecorded.out.starts_with("a2\ta3\tfailed: it could not be recorded for undo")) << unrecorded.out;
    EXPECT_NE(unrecorded.error.find("could not be recorded"), std::string::npos) << unrecorded.error;
    EXPECT_EQ(m_files.List(), (Words{L"a2", L"b"}));
    EXPECT_EQ(m_host.Run({L"undo", L"list"}).out, "");
    Rename({L"b"}, {L"--name", L"b2"});
    const std::string list = m_host.Run({L"undo"}).out;
    EXPECT_TRUE(list.starts_with("BatchRenameUndoData-")) << list;
    EXPECT_NE(list.find("\t1 items\t\n"), std::string::npos) << list;
    {
        const std::wstring session(list.begin(), list.begin() + static_cast<ptrdiff_t>(list.find('\t')));
        const Win32::FileHandle record(CreateFileW((m_host.Folder() / L"config\\Undo\\" + session).c_str(),
                                                   GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).status, 1) << "not without a record";
    }
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).out, "b2\tb\trestored\n");
    EXPECT_NE(m_host.Run({L"undo"}).out.find("\t1 items\trestored\n"), std::string::npos);
}

}  // namespace
