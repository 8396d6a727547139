// Quick renames and the group rename: the names they make, and the commands from the selection to the folder.
#include "fileutils/names/quick_rename.h"

#include "fileutils/command_runner.h"

namespace {

using FileUtils::QuickRenamed;
using namespace QVTest;

TEST(QuickRename, MakesTheseNames) {
    const std::tuple<uint32_t, const wchar_t*, const wchar_t*, const wchar_t*> cases[] = {
        {30000, L"az \u00E4\u044F.txt", L"AZ \u00E4\u044F.TXT", L"AZ \u00E4\u044F.TXT"},
        {30001, L"AZ \u00C4\u042F.TXT", L"az \u00E4\u044F.txt", L"az \u00E4\u044F.txt"},
        {30001, L"ISTANBUL", L"istanbul", L"istanbul"},
        {30002, L"my file_name.TXT", L"My File_Name.txt", L"My File_Name.Txt"},
        {30002, L"\u00E4B", L"\u00C4b", L"\u00C4b"},
        {30002, L"  x", L"  X", L"  X"},
        {30002, L".profile", L".profile", L".Profile"},
        {30002, L"mr. x", L"Mr. X", L"Mr. X"},
        {30003, L"a_b.c_d", L"a b.c_d", L"a b.c d"},
        {30005, L"a b.c d", L"a_b.c d", L"a_b.c_d"},
        {30007, L"a.b.c", L"a_b.c", L"a_b_c"},
        {30007, L".a", L".a", L"_a"},
        {30009, L"a_b c.d", L"a_b c.d", L"a_b c.d"},
    };
    for (const auto& [id, name, file, folder] : cases) {
        EXPECT_EQ(QuickRenamed(id, name, false), file) << id;
        EXPECT_EQ(QuickRenamed(id, name, true), folder) << id;
    }
}

TEST(QuickRename, RenamesTheSelectionAfterOneQuestion) {
    const CommandRunner runner;
    const std::wstring changed = runner.Write(L"one_two.x_y", "1");
    const std::wstring same = runner.Write(L"Three", "3");
    const std::wstring folder = runner.MakeFolder(L"sub_folder.d_e");

    const Words words = {L"command", L"30002", changed, same, folder};  // only the case of names changes
    HostRun run = runner.Run(words, {L"cancel"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(Holds(run.error, "Names that will change: 2."));
    EXPECT_EQ(runner.List(), (Names{L"Three", L"one_two.x_y", L"sub_folder.d_e"}));

    run = runner.Run(words, {L"ok"});
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(runner.List(), (Names{L"One_Two.x_Y", L"Sub_Folder.D_E", L"Three"}));
    EXPECT_EQ(run.out, "");

    run = runner.Run({L"command", L"30002", same}, {L"ok"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.error, "");  // no name changes, so nothing is asked
}

TEST(RenameGroup, GivesEachFileTheNewNameWithItsOwnExtension) {
    const std::tuple<const char*, std::wstring, Names> cases[] = {
        {"all of the name", L"new", {L"a.b", L"b.txt", L"new", L"new.jpg", L"new.txt"}},
        {"cancelled", L"cancel", {L"a", L"a.b", L"a.jpg", L"a.txt", L"b.txt"}},
        {"the same name", L"a", {L"a", L"a.b", L"a.jpg", L"a.txt", L"b.txt"}},
    };
    for (const auto& [why, answer, after] : cases) {
        const CommandRunner runner;
        Words words = {L"command", L"30020"};
        for (const wchar_t* name : {L"a.txt", L"a.jpg", L"a", L"b.txt"}) words.push_back(runner.Write(name, "x"));
        words.push_back(runner.MakeFolder(L"a.b"));
        const HostRun run = runner.Run(words, {answer});
        EXPECT_EQ(run.status, 0) << why << run.error;
        EXPECT_EQ(runner.List(), after) << why;
    }
}

}  // namespace
