// qvhost rename and qvhost undo, on real files, in this process.
#include <algorithm>

#include "host_runner.h"
#include "win32/handle.h"
#include "win32/windows.h"

namespace {

using namespace QVTest;
using Words = std::vector<std::wstring>;

std::string ContentOf(const std::wstring& name) {
    return {name.begin(), name.end()};
}
Words Sorted(Words words) {
    std::ranges::sort(words);
    return words;
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

TEST_F(RenameCommand, PreviewsAndDoesTheSame) {
    const Words names = {L"a.txt", L"b.txt", L"c.TXT"};
    Fill(names);
    const Words options = {L"--name", L"[F2,2]-[C]", L"--counter", L"5,5,3", L"--case", L"extension-lower"};
    EXPECT_EQ(Preview(names, options),
              "a.txt\tvt-005.txt\trename\nb.txt\tvt-010.txt\trename\nc.TXT\tvt-015.txt\trename\n");
    EXPECT_EQ(m_files.List(), names);
    const HostRun run = Rename(names, options);
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out, "a.txt\tvt-005.txt\trenamed\nb.txt\tvt-010.txt\trenamed\nc.TXT\tvt-015.txt\trenamed\n");
    EXPECT_EQ(m_files.Read(L"vt-010.txt"), "b.txt");
}

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
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_EQ(m_files.List(), (Words{L"b-2", L"photo-1.jpg"}));
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).status, 0);
    EXPECT_EQ(m_files.List(), (Words{L"b", L"photo.jpg"}));
    EXPECT_EQ(Preview({L"PHOTO.JPG"}, {}), "photo.jpg\tphoto.jpg\tignored: the name stays the same\n");
}

TEST_F(RenameCommand, RenamesRingsShiftsAndCaseOnRealFilesAndRestoresThem) {
    const struct {
        const char* why;
        Words names, options;
        Words after;  // names that hold, in this order, the content of `names`
    } cases[] = {
        {"a ring of three",
         {L"a", L"b", L"c"},
         {L"--regex", L"--find", L"^a$", L"--replace", L"1", L"--find", L"^c$", L"--replace", L"a", L"--find", L"^b$",
          L"--replace", L"c", L"--find", L"^1$", L"--replace", L"b"},
         {L"b", L"c", L"a"}},
        {"a shift up", {L"01", L"02", L"03"}, {L"--name", L"[C2,1,2]"}, {L"02", L"03", L"04"}},
        {"case alone", {L"AB2.c", L"ab.C"}, {L"--case", L"upper"}, {L"AB2.C", L"AB.C"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        Fill(c.names);
        const HostRun run = Rename(c.names, c.options);
        EXPECT_EQ(run.status, 0) << run.out << run.error;
        EXPECT_EQ(m_files.List(), Sorted(c.after));
        for (size_t at = 0; at < c.names.size(); ++at) EXPECT_EQ(m_files.Read(c.after[at]), ContentOf(c.names[at]));
        EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).status, 0);
        EXPECT_EQ(m_files.List(), Sorted(c.names));
        for (const std::wstring& name : c.names) {
            EXPECT_EQ(m_files.Read(name), ContentOf(name));
            DeleteFileW((m_files / name).c_str());
        }
        EXPECT_EQ(m_host.Run({L"undo", L"delete", L"last"}).status, 0);
    }
}

TEST_F(RenameCommand, RestoresWhatAFailedRestoreLeft) {
    const Words names = {L"a", L"b", L"c", L"d"};
    Fill(names);
    const Words swaps = {L"--regex",   L"--find",    L"^a$",       L"--replace", L"1",         L"--find",    L"^b$",
                         L"--replace", L"a",         L"--find",    L"^1$",       L"--replace", L"b",         L"--find",
                         L"^c$",       L"--replace", L"1",         L"--find",    L"^d$",       L"--replace", L"c",
                         L"--find",    L"^1$",       L"--replace", L"d"};
    EXPECT_EQ(Rename(names, swaps).status, 0);
    EXPECT_EQ(m_files.Read(L"a") + m_files.Read(L"d"), "bc");
    const Words restore = {L"undo", L"restore", L"last"};
    const auto held = [](const std::wstring& path) {
        return Win32::FileHandle(
            CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    };
    {
        const Win32::FileHandle file = held(m_files / L"c");
        EXPECT_EQ(m_host.Run(restore).status, 1);
        EXPECT_EQ(m_files.Read(L"a") + m_files.Read(L"d"), "ac");
    }
    {
        const std::string list = m_host.Run({L"undo"}).out;
        const std::wstring session(list.begin(), list.begin() + static_cast<ptrdiff_t>(list.find('\t')));
        const Win32::FileHandle record = held(m_host.Folder() / L"config\\Undo\\" + session);
        EXPECT_EQ(m_host.Run(restore).status, 1);
        EXPECT_EQ(m_files.Read(L"a") + m_files.Read(L"d"), "ac") << "restored without a record";
    }
    EXPECT_EQ(m_host.Run(restore).status, 0);
    for (const std::wstring& name : names) EXPECT_EQ(m_files.Read(name), ContentOf(name));
    const std::string list = m_host.Run({L"undo"}).out;
    EXPECT_NE(list.find("\trestored\n"), std::string::npos);
    EXPECT_EQ(m_host.Run(restore).status, 2) << "no session is left";
    EXPECT_EQ(m_host.Run({L"undo", L"restore", {list.begin(), list.begin() + list.find('\t')}}).status, 0);
    for (const std::wstring& name : names) EXPECT_EQ(m_files.Read(name), ContentOf(name));
}

TEST_F(RenameCommand, ShowsAndRestoresPartsOfASessionAndWalksBack) {
    Fill({L"a", L"b.txt", L"c"});
    EXPECT_EQ(Rename({L"a", L"b.txt"}, {L"--name", L"[N]1"}).status, 0);
    EXPECT_EQ(Rename({L"c"}, {L"--name", L"c1"}).status, 0);
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).out, "c1\tc\trestored\n");
    const std::string folder = ContentOf(m_files.Path());
    EXPECT_EQ(m_host.Run({L"undo", L"show", L"last"}).out, "a\ta1\t" + folder + "\nb.txt\tb1.txt\t" + folder + "\n");
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
}

TEST_F(RenameCommand, FindsItemsAgainAndLeavesOthersAlone) {
    Fill({L"a", L"b", L"c"});
    CreateDirectoryW((m_files / L"in").c_str(), nullptr);
    EXPECT_EQ(Rename({L"a", L"b", L"c"}, {L"--name", L"[N]1"}).status, 0);
    m_files.Write(L"c1", "edited");
    MoveFileW((m_files / L"a1").c_str(), (m_files / L"in\\mine").c_str());
    DeleteFileW((m_files / L"b1").c_str());
    m_files.Write(L"b1", "another");
    const HostRun run = m_host.Run({L"undo", L"restore", L"last"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "c1\tc\trestored\nb1\tb\tfailed: the item is gone; another one has its name now\nmine\ta\trestored\n");
    EXPECT_EQ(m_files.Read(L"in\\a") + m_files.Read(L"b1"), "aanother");
}

TEST_F(RenameCommand, SortsNumbersAndTakesNamesFromAList) {
    Fill({L"x10", L"x2", L"x1", L"y.txt"});
    m_files.Write(L"x1", "the largest one");
    m_files.Write(L"names", "y.txt\nz\n");
    const Words all = {L"x10", L"x2", L"x1"};
    const struct {
        const char* why;
        Words names, options;
        const char* out;
    } cases[] = {
        {"by number",
         all,
         {L"--sort", L"natural", L"--name", L"[C]"},
         "x1\t01\trename\nx2\t02\trename\nx10\t03\trename\n"},
        {"by size", all, {L"--sort", L"size", L"--name", L"[C]"}, "x2\t01\trename\nx10\t02\trename\nx1\t03\trename\n"},
        {"numbered after those that stay, free where one leaves",
         all,
         {L"--on-clash", L"number", L"--find", L"x10", L"--replace", L"y", L"--find", L"x1", L"--replace", L"x2",
          L"--find", L"x2", L"--replace", L"y", L"--extension", L"txt"},
         "x10\ty (2).txt\trename\nx2\ty (3).txt\trename\nx1\ty (4).txt\trename\n"},
        {"only what changes",
         {L"x2", L"x1"},
         {L"--find", L"2", L"--replace", L"3", L"--only-changes"},
         "x2\tx3\trename\n"},
        {"the names of a list",
         {L"x2", L"x1"},
         {L"--names-from", m_files / L"names"},
         "x2\ty.txt\tfailed: \"y.txt\" is there already\nx1\tz\trename\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(Preview(c.names, c.options), c.out) << c.why;
    EXPECT_EQ(Rename({L"x1"}, {L"--names-from", m_files / L"names"}).status, 2) << "two names for one file";
    EXPECT_EQ(Rename({L"x1", L"x2"}, {L"--names-from", m_files / L"names", L"--on-clash", L"number"}).status, 0);
    EXPECT_EQ(m_files.Read(L"y (2).txt"), "the largest one");
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).status, 0);
    const std::string warned = Preview({L"x1"}, {L"--name", std::wstring(250, L'n')});
    EXPECT_NE(warned.find("\trename: the path will have "), std::string::npos) << warned;
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
        {{L"--names-from", L"x", L"--name", L"y"}, "--names-from gives"},
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
    EXPECT_EQ(m_host.Run({L"undo", L"restore", L"last"}).out, "b2\tb\trestored\n");
    EXPECT_NE(m_host.Run({L"undo"}).out.find("\t1 items\trestored\n"), std::string::npos);
}

}  // namespace
