// qvhost rename and qvhost undo, on real files, in this process.
#include "host_runner.h"
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
    EXPECT_EQ(Rename(listed, {L"--name", L"[N]-[C1,1,1]"}).out, "photo.jpg\tphoto-1.jpg\trenamed\nb\tb-2\trenamed\n");
    EXPECT_EQ(m_files.List(), (Words{L"b-2", L"photo-1.jpg"}));
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).status, 0);
    EXPECT_EQ(Preview({L"PHOTO.JPG"}, {}), "photo.jpg\tphoto.jpg\tignored: the name stays the same\n");
}

TEST_F(RenameCommand, ShowsAndRestoresPartsOfASessionAndWalksBack) {
    Fill({L"a", L"b.txt", L"c"});
    EXPECT_EQ(Rename({L"a", L"b.txt"}, {L"--name", L"[N]1"}).status, 0);
    EXPECT_EQ(Rename({L"c"}, {L"--name", L"c1"}).status, 0);
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).out, "c1\tc\trestored\n");
    const std::string list = m_host.Run({L"undo"}).out;
    EXPECT_LT(list.find("\t1 item\trestored\nBatchRenameUndoData-"), list.find("\t2 items\t\n")) << list;
    const std::string folder = ContentOf(m_files.Path());
    const std::wstring session(list.begin() + static_cast<ptrdiff_t>(list.rfind("BatchRename")),
                               list.begin() + static_cast<ptrdiff_t>(list.find('\t', list.rfind("BatchRename"))));
    EXPECT_EQ(m_host.Run({L"undo", L"show", session}).out, "a\ta1\t" + folder + "\nb.txt\tb1.txt\t" + folder + "\n");
    const HostRun preview = m_host.Run({L"undo", L"restore", L"last", L"--preview"});
    EXPECT_EQ(preview.out, "b1.txt\tb.txt\trestore\na1\ta\trestore\n");
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last", L"--only", L"*.TXT"}).out, "b1.txt\tb.txt\trestored\n");
    EXPECT_EQ(m_files.List(), (Words{L"a1", L"b.txt", L"c"}));
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last", L"--only", L"x?"}).status, 2);
    m_files.Write(L"a", "another");
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last", L"--preview"}).status, 1);
    const HostRun taken = m_host.Run({L"undo", L"restore", L"last"});
    EXPECT_EQ(taken.status, 1);
    EXPECT_EQ(taken.out, "b.txt\tb.txt\tignored: it has its old name\na1\ta\tfailed: \"a\" is there already\n");
    DeleteFileW((m_files / L"a").c_str());
    for (const int status : {0, 2}) EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).status, status);
    EXPECT_EQ(m_host.Run({L"undo", L"delete", L"last"}).status, 0);
    EXPECT_EQ(m_host.Run({L"undo"}).out.find("1 item\t"), std::string::npos) << "the latest of all";
}

TEST_F(RenameCommand, FindsItemsAgainAndLeavesOthersAlone) {
    Fill({L"a", L"b", L"c", L"d"});
    CreateDirectoryW((m_files / L"in").c_str(), nullptr);
    EXPECT_EQ(Rename({L"a", L"b", L"c", L"d"}, {L"--name", L"[N]1"}).status, 0);
    m_files.Write(L"c1", "edited");
    MoveFileW((m_files / L"a1").c_str(), (m_files / L"in\\mine").c_str());
    for (const wchar_t* gone : {L"b1", L"d1"}) DeleteFileW((m_files / gone).c_str());
    for (const wchar_t* stranger : {L"a1", L"b1", L"d"}) m_files.Write(stranger, "another");
    const HostRun run = m_host.Run({L"undo", L"restore", L"last"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "d1\td\tfailed: there is no such item any more\nc1\tc\trestored\n"
              "b1\tb\tfailed: the item is gone; another one has its name now\nmine\ta\trestored\n");
    EXPECT_EQ(m_files.Read(L"in\\a") + m_files.Read(L"b1"), "aanother");
}

TEST_F(RenameCommand, GivesEachHardLinkItsOwnNameBack) {
    Fill({L"a1"});
    if (!CreateHardLinkW((m_files / L"a2").c_str(), (m_files / L"a1").c_str(), nullptr)) GTEST_SKIP();
    EXPECT_EQ(Rename({L"a1", L"a2"}, {L"--find", L"a", L"--replace", L"b"}).status, 0);
    DeleteFileW((m_files / L"b2").c_str());
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).out,
              "b2\ta2\tfailed: there is no such item any more\nb1\ta1\trestored\n");
}

TEST_F(RenameCommand, TakesNoItemForOneWhoseNameEndsInADot) {
    Fill({L"a"});
    const std::wstring dotted = LR"(\\?\)" + (m_files / L"b.");
    EXPECT_EQ(Rename({L"a"}, {L"--name", L"b"}).status, 0);
    MoveFileW((m_files / L"b").c_str(), dotted.c_str());
    m_files.Write(L"b", "another");
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).out, "b.\ta\trestored\n");
    EXPECT_EQ(m_files.Read(L"a"), "a");
    MoveFileW((m_files / L"a").c_str(), dotted.c_str());
    EXPECT_EQ(m_host.Run({L"rename", dotted, L"--name", L"c"}).status, 0);
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).out, "c\tb.\trestored\n");
    EXPECT_EQ(m_files.Read(L"b"), "another");
    EXPECT_TRUE(DeleteFileW(dotted.c_str()));
}

TEST_F(RenameCommand, SortsAndNumbersAndWarns) {
    Fill({L"x10", L"x2", L"x1", L"y.txt"});
    m_files.Write(L"x1", "the largest one");
    const Words all = {L"x10", L"x2", L"x1"};
    EXPECT_EQ(Preview(all, {L"--sort", L"size", L"--name", L"[C]"}),
              "x2\t01\trename\nx10\t02\trename\nx1\t03\trename\n");
    const Words pairs = {L"--find", L"x10",    L"--replace", L"y.txt",     L"--find", L"x1",         L"--replace",
                         L"y.txt",  L"--find", L"x2",        L"--replace", L"x10",    L"--on-clash", L"number"};
    EXPECT_EQ(Preview(all, pairs), "x10\ty (2).txt\trename\nx2\tx10\trename\nx1\ty (3).txt\trename\n")
        << "after those that stay, free where one leaves";
    EXPECT_EQ(Preview(all, {L"--find", L"2", L"--replace", L"3", L"--only-changes"}), "x2\tx3\trename\n");
    const std::string warned = Preview({L"x1"}, {L"--name", std::wstring(250, L'n')});
    EXPECT_NE(warned.find("\trename: the path will have "), std::string::npos) << warned;
}

TEST_F(RenameCommand, AsksForProperties) {
    Fill({L"12345"});
    EXPECT_EQ(Preview({L"12345"}, {L"--name", L"[?SIZE,{KB}]-[?modified,{yyyy},1,2]"}), "12345\t1-20\trename\n");
    EXPECT_NE(Preview({L"12345"}, {L"--name", L"[?colour]x"}).find("\tx\tfailed: the template asks"),
              std::string::npos);
}

TEST_F(RenameCommand, RefusesWhatMakesNoSense) {
    m_files.Write(L"a", "y\nz\n");
    const std::pair<Words, const char*> cases[] = {
        {{L"--find", L"a"}, "needs its --replace"},
        {{L"--counter", L"1,x"}, "--counter takes"},
        {{L"--save-profile", L""}, "--save-profile needs a name"},
        {{L"--profile", L"p"}, "no profile \"p\""},
        {{L"--time", L"2016-02-30T00:00:00"}, "--time takes"},
        {{L"--regex", L"--find", L"(", L"--replace", L""}, "no regular expression"},
        {{L"--names-from", L"x", L"--name", L"y"}, "--names-from gives"},
        {{L"--names-from", m_files / L"a"}, "(2) are not as many as the files and folders (1)"},
        {{L"--sort", L"x"}, "--sort takes"},
        {{L"--on-clash", L"x"}, "--on-clash takes"},
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

TEST_F(RenameCommand, RecordsNothingWhenAskedNotToAndRenamesNothingWhenItCannot) {
    Fill({L"a"});
    EXPECT_EQ(Rename({L"a"}, {L"--name", L"a2", L"--no-undo"}).status, 0);
    EXPECT_EQ(m_host.Run({L"undo", L"list"}).out, "");
    const HostRun unrecorded =
        Rename({L"a2"}, {L"--name", L"a3", L"--config", BesideThisProgram(L"test_batchrename.exe")});
    EXPECT_EQ(unrecorded.status, 1) << "a file is no folder for settings";
    EXPECT_TRUE(unrecorded.out.starts_with("a2\ta3\tfailed: it could not be recorded for undo")) << unrecorded.out;
    EXPECT_NE(unrecorded.error.find("could not be recorded"), std::string::npos) << unrecorded.error;
    EXPECT_EQ(m_files.List(), Words{L"a2"});
}

}  // namespace
