// qvhost rename and qvhost undo, on real files, in this process.
#include <random>

#include <gtest/gtest.h>

#include "host_runner.h"
#include "win32/windows.h"

namespace {

using namespace QVTest;
using Words = std::vector<std::wstring>;

std::string ContentOf(const std::wstring& name) {
    return {name.begin(), name.end()};
}

/// A folder `d` with files that each hold their own name.
class RenameCommand : public testing::Test {
protected:
    void Fill(const Words& names) {
        CreateDirectoryW((m_host.Folder() / L"d").c_str(), nullptr);
        for (const std::wstring& name : names) m_host.Folder().Write(L"d\\" + name, ContentOf(name));
    }
    std::wstring Path(const std::wstring& name) const { return m_host.Folder() / (L"d\\" + name); }
    HostRun Rename(const Words& names, Words options) const {
        for (const std::wstring& name : names) options.push_back(Path(name));
        options.insert(options.begin(), L"rename");
        return m_host.Run(options);
    }
    std::string Read(const std::wstring& name) const { return m_host.Folder().Read(L"d\\" + name); }
    Words List() const {
        Words names;
        WIN32_FIND_DATAW entry = {};
        const HANDLE find = FindFirstFileW(Path(L"*").c_str(), &entry);
        do {
            if (entry.cFileName[0] != L'.') names.push_back(entry.cFileName);
        } while (FindNextFileW(find, &entry));
        FindClose(find);
        std::sort(names.begin(), names.end());
        return names;
    }

    HostRunner m_host;
};

TEST_F(RenameCommand, PreviewsAndDoesTheSame) {
    Fill({L"a.txt", L"b.txt", L"c.TXT", L"keep"});
    const Words options = {L"--name", L"[F]-[C]", L"--counter", L"5,5,3", L"--case", L"extension-lower"};
    Words preview = options;
    preview.push_back(L"--preview");
    const std::string expected = "a.txt\td-005.txt\trename\nb.txt\td-010.txt\trename\nc.TXT\td-015.txt\trename\n";
    EXPECT_EQ(Rename({L"a.txt", L"b.txt", L"c.TXT"}, preview).out, expected);
    EXPECT_EQ(List(), (Words{L"a.txt", L"b.txt", L"c.TXT", L"keep"}));
    const HostRun run = Rename({L"a.txt", L"b.txt", L"c.TXT"}, options);
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out, "a.txt\td-005.txt\trenamed\nb.txt\td-010.txt\trenamed\nc.TXT\td-015.txt\trenamed\n");
    EXPECT_EQ(Read(L"d-010.txt"), "b.txt");
}

TEST_F(RenameCommand, PreviewsRowsOfManyFoldersInTheirOrder) {
    Fill({});
    for (const wchar_t* folder : {L"one", L"Two"}) CreateDirectoryW(Path(folder).c_str(), nullptr);
    for (const wchar_t* name : {L"one\\a", L"one\\b", L"one\\03", L"Two\\a", L"Two\\b"})
        m_host.Folder().Write(std::wstring(L"d\\") + name, "");
    // The folders take turns, and one is spelled in two ways: all of its rows are judged together.
    const HostRun run = Rename({L"one\\a", L"Two\\a", L"one\\b", L"TWO\\b"}, {L"--name", L"[C]", L"--preview"});
    EXPECT_EQ(run.out, "a\t01\trename\na\t02\trename\nb\t03\tfailed: \"03\" is there already\nb\t04\trename\n");
    EXPECT_EQ(run.status, 1);
    const HostRun same = Rename({L"Two\\a", L"one\\a", L"two\\b"}, {L"--name", L"x", L"--preview"});
    EXPECT_EQ(same.out,
              "a\tx\tfailed: \"x\" would be the name of more than one item\na\tx\trename\n"
              "b\tx\tfailed: \"x\" would be the name of more than one item\n");
    // Nothing is printed of a list with a path that leads nowhere.
    const HostRun none = Rename({L"one\\a", L"Two\\none"}, {L"--name", L"[C]", L"--preview"});
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.status, 2);
}

TEST_F(RenameCommand, PrintsEachRowsVerdict) {
    Fill({L"a", L"b", L"c", L"taken"});
    const HostRun run =
        Rename({L"a", L"b", L"c"}, {L"--find", L"a", L"--replace", L"taken", L"--find", L"c", L"--replace", L"x:y"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "a\ttaken\tfailed: \"taken\" is there already\nb\tb\tignored: the name stays the same\n"
              "c\tx:y\tfailed: the character \":\" cannot be in a name\n");
    EXPECT_EQ(List(), (Words{L"a", L"b", L"c", L"taken"}));
    EXPECT_EQ(m_host.Run({L"undo"}).out, "");
}

TEST_F(RenameCommand, RenamesRingsShiftsAndCaseOnRealFilesAndRestoresThem) {
    const struct {
        const char* why;
        Words names;
        Words options;
        Words after;  // names that hold, in this order, the content of `names`
    } cases[] = {
        {"a ring of three",
         {L"a", L"b", L"c"},
         {L"--regex", L"--find", L"^a$", L"--replace", L"1", L"--find", L"^c$", L"--replace", L"a", L"--find", L"^b$",
          L"--replace", L"c", L"--find", L"^1$", L"--replace", L"b"},
         {L"b", L"c", L"a"}},
        {"a shift up", {L"01", L"02", L"03"}, {L"--name", L"[C2,1,2]"}, {L"02", L"03", L"04"}},
        {"a shift down", {L"02", L"03", L"04"}, {L"--name", L"[C]"}, {L"01", L"02", L"03"}},
        {"case alone", {L"ab.C", L"AB2.c"}, {L"--case", L"upper"}, {L"AB.C", L"AB2.C"}},
    };
    for (const auto& c : cases) {
        Fill(c.names);
        const HostRun run = Rename(c.names, c.options);
        EXPECT_EQ(run.status, 0) << c.why << run.out << run.error;
        Words expected = c.after;
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(List(), expected) << c.why;
        for (size_t at = 0; at < c.names.size(); ++at) EXPECT_EQ(Read(c.after[at]), ContentOf(c.names[at])) << c.why;
        EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).status, 0) << c.why;
        Words names = c.names;
        std::sort(names.begin(), names.end());
        EXPECT_EQ(List(), names) << c.why;
        for (const std::wstring& name : c.names) {
            EXPECT_EQ(Read(name), ContentOf(name)) << c.why;
            DeleteFileW(Path(name).c_str());
        }
        EXPECT_EQ(m_host.Run({L"undo", L"delete", L"last"}).status, 0);
    }
}

TEST_F(RenameCommand, FollowsAFolderThatIsRenamedWithItsContent) {
    Fill({});
    CreateDirectoryW(Path(L"sub").c_str(), nullptr);
    m_host.Folder().Write(L"d\\sub\\x.txt", "x");
    const HostRun run = Rename({L"sub", L"sub\\x.txt"}, {L"--name", L"[N]2"});
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_EQ(Read(L"sub2\\x2.txt"), "x");
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).status, 0);
    EXPECT_EQ(Read(L"sub\\x.txt"), "x");
}

TEST_F(RenameCommand, TakesNamesAndTextsAsTheyAre) {
    const std::wstring astral = L"\xD83D\xDE00";
    Fill({L"[a,b].txt", L"-x", astral});
    EXPECT_EQ(Rename({L"[a,b].txt"}, {L"--preview", L"--find", L"[a,b]", L"--replace", L"-[1,2]"}).out,
              "[a,b].txt\t-[1,2].txt\trename\n");
    EXPECT_EQ(Rename({L"-x"}, {L"--preview", L"--find", L"-", L"--replace", L""}).out, "-x\tx\trename\n");
    EXPECT_EQ(Rename({L"-x"}, {L"--preview", L"--find=-", L"--replace=--"}).out, "-x\t--x\trename\n");
    EXPECT_EQ(Rename({astral}, {L"--preview", L"--name", L"[N1]"}).out.find("\tfailed"), 8u);
}

TEST_F(RenameCommand, KnowsSizesAndDates) {
    Fill({L"12345"});
    const Words cases[] = {{L"[?size]", L"5"}, {L"[?SIZE,{KB}]", L"1"}, {L"[?modified,{yyyy},3,2]", L"20"}};
    for (const Words& c : cases) {
        const std::string out = Rename({L"12345"}, {L"--preview", L"--name", c[0] + L"x"}).out;
        if (c[1].size() == 1) {
            EXPECT_EQ(out, "12345\t" + ContentOf(c[1]) + "x\trename\n");
        }
        EXPECT_NE(out.find("x\trename"), std::string::npos) << out;
    }
    EXPECT_NE(Rename({L"12345"}, {L"--preview", L"--name", L"[?colour]x"}).out.find("failed: the template asks"),
              std::string::npos);
    EXPECT_EQ(
        Rename({L"12345"}, {L"--preview", L"--time", L"2016-03-07T14:29:05", L"--name", L"[Y2][M2][D2]-[h][m][s2]"})
            .out,
        "12345\t160307-142905\trename\n");
}

TEST_F(RenameCommand, SavesAndUsesProfiles) {
    Fill({L"a1", L"a2"});
    EXPECT_EQ(m_host
                  .Run({L"rename", L"--save-profile", L" p ", L"--find", L"a", L"--replace", L" b ", L"--scope",
                        L"name", L"--name", L"[N]-[C]"})
                  .status,
              0);
    EXPECT_EQ(Rename({L"a1"}, {L"--profile", L" p ", L"--preview"}).out, "a1\t b 1-01\trename\n");
    EXPECT_EQ(Rename({L"a1"}, {L"--profile", L" p ", L"--name", L"[N]", L"--preview"}).out, "a1\t b 1\trename\n");
    const HostRun wrong = Rename({L"a1"}, {L"--profile", L"p", L"--preview"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_NE(wrong.error.find("no profile \"p\""), std::string::npos);
}

TEST_F(RenameCommand, RefusesWhatMakesNoSense) {
    Fill({L"a"});
    const struct {
        Words options;
        const char* text;
    } cases[] = {
        {{L"--find", L"a"}, "needs its --replace"},
        {{L"--counter", L"1,x"}, "--counter takes"},
        {{L"--counter", L"2147483648,1,1"}, "--counter takes"},
        {{L"--save-profile", L""}, "--save-profile needs a name"},
        {{L"--case", L"loud"}, "name-lower"},
        {{L"--scope", L"all"}, "extension"},
        {{L"--time", L"2016-02-30T00:00:00"}, "--time takes"},
        {{L"--time", L"soon"}, "--time takes"},
        {{L"--regex", L"--find", L"(", L"--replace", L""}, "no regular expression"},
    };
    for (const auto& c : cases) {
        const HostRun run = Rename({L"a"}, c.options);
        EXPECT_EQ(run.status, 2) << c.text;
        EXPECT_NE(run.error.find(c.text), std::string::npos) << run.error;
    }
    for (const Words& words : {Words{L"rename"},
                               {L"undo", L"restore"},
                               {L"undo", L"dance"},
                               {L"undo", L"restore", L"none"},
                               {L"menus", L"--name", L"x"}})
        EXPECT_EQ(m_host.Run(words).status, 2) << words.size();
    EXPECT_EQ(List(), Words{L"a"});
}

TEST_F(RenameCommand, ListsSessionsAndLeavesNoneWhenAskedNotTo) {
    Fill({L"a", L"b"});
    EXPECT_EQ(Rename({L"a"}, {L"--name", L"a2", L"--no-undo"}).status, 0);
    const HostRun unrecorded =
        Rename({L"a2"}, {L"--name", L"a3", L"--config", QVTest::BesideThisProgram(L"test_batchrename.exe")});
    EXPECT_EQ(unrecorded.status, 1) << "a file is no folder for settings";
    EXPECT_NE(unrecorded.error.find("could not be recorded"), std::string::npos) << unrecorded.error;
    EXPECT_EQ(m_host.Run({L"undo", L"list"}).out, "");
    Rename({L"b"}, {L"--name", L"b2"});
    const std::string list = m_host.Run({L"undo"}).out;
    EXPECT_TRUE(list.starts_with("BatchRenameUndoData-")) << list;
    EXPECT_NE(list.find("\t1 items\t\n"), std::string::npos) << list;
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).out, "b2\tb\trestored\n");
    EXPECT_NE(m_host.Run({L"undo"}).out.find("\t1 items\trestored\n"), std::string::npos);
}

}  // namespace
